#include "uninstall/words.h"

#include <gmock/gmock.h>

#include "support/fakes.h"
#include "uninstall/figures.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const FakeLocale locale;

TEST(Words, EverySeparatorTakesANameApart) {
    for (const char* name : {"Foobar Widget", "Foobar-Widget", "Foobar_Widget", "Foobar·Widget",
                             "Foobar(Widget", "Foobar)Widget", "Foobar.Widget"}) {
        EXPECT_THAT(namePieces(name), ElementsAre("Foobar", "Widget")) << name;
    }
    EXPECT_THAT(namePieces("Foobar,Widget"), ElementsAre("Foobar,Widget"));
    EXPECT_THAT(namePieces(" Foobar (Widget) - 2.0_"), ElementsAre("Foobar", "Widget", "2", "0"));
    EXPECT_THAT(namePieces("Áçè·Ñandú"), ElementsAre("Áçè", "Ñandú"));
    EXPECT_THAT(namePieces(" -_·()."), IsEmpty());
    EXPECT_THAT(namePieces(""), IsEmpty());
}

TEST(Words, EveryGenericFolderNameIsNobodysName) {
    const char* const names[] = {"Applications", "Library",   "Documents", "Downloads", "Desktop",
                                 "Movies",       "Music",     "Pictures",  "Public",    "Plugins",
                                 "Preferences",  "Utilities", "System",    "Users",     "Volumes",
                                 "Developer",    "Sites",     "Templates", "Shared"};
    for (const char* name : names) {
        EXPECT_TRUE(isGenericFolderName(name)) << name;
        EXPECT_EQ(nameKey(name), std::nullopt) << name;
        EXPECT_THAT(nameTokens(name, locale), IsEmpty()) << name;
    }
    EXPECT_EQ(std::size(names), 19u);
    EXPECT_EQ(nameKey("music"), "music");
    EXPECT_EQ(nameKey("Musics"), "Musics");
}

TEST(Words, EveryGenericWordTellsNothingOfAnApplication) {
    const char* const words[] = {"Mini",   "Mac",     "Pro",   "Desktop", "Client", "App",
                                 "Beta",   "Helper",  "Tool",  "Tools",   "Studio", "Home",
                                 "Plus",   "Lite",    "Free",  "Version", "Player", "Reader",
                                 "Editor", "Manager", "Suite", "Cloud"};
    for (const char* word : words) {
        EXPECT_TRUE(isGenericWord(word)) << word;
        EXPECT_THAT(nameTokens(std::string("Foobar ") + word, locale), ElementsAre("foobar"))
            << word;
    }
    EXPECT_EQ(std::size(words), 22u);
    EXPECT_THAT(nameTokens("Foobar studio", locale), ElementsAre("foobar", "studio"));
}

TEST(Words, AKeyHasThreeLettersAndNoSpaceAroundIt) {
    EXPECT_EQ(nameKey("Fo"), std::nullopt);
    EXPECT_EQ(nameKey("Foo"), "Foo");
    EXPECT_EQ(nameKey(" \t Foo\u00A0\n"), "Foo");
    EXPECT_EQ(nameKey(" Fo "), std::nullopt);
    EXPECT_EQ(nameKey("éñ"), std::nullopt);
    EXPECT_EQ(nameKey("éñü"), "éñü");
    EXPECT_EQ(nameKey(" Music "), std::nullopt);
    EXPECT_EQ(nameKey(""), std::nullopt);
}

TEST(Words, AKeyNamesOneFileAndLeadsNowhereElse) {
    EXPECT_EQ(nameKey("../../Documents"), std::nullopt);
    EXPECT_EQ(nameKey("Foo/Bar"), std::nullopt);
    EXPECT_EQ(nameKey(std::string("Foo\0Bar", 7)), std::nullopt);
    EXPECT_FALSE(isEntryName("."));
    EXPECT_FALSE(isEntryName(".."));
    EXPECT_FALSE(isEntryName(""));
    EXPECT_TRUE(isEntryName("..."));
}

TEST(Words, ATokenHasFourLetters) {
    EXPECT_THAT(nameTokens("Foobar Pro", locale), ElementsAre("foobar"));
    EXPECT_THAT(nameTokens("Foo Pro", locale), IsEmpty());
    EXPECT_THAT(nameTokens("Acme Studio Foobar", locale), ElementsAre("acme", "foobar"));
}

TEST(Words, TheSecondWordIsTheSecondPiece) {
    EXPECT_EQ(secondWord("Acme Studio Foobar", locale), "studio");
    EXPECT_EQ(secondWord("Acme  -  Studio", locale), "studio");
    EXPECT_EQ(secondWord("Foobar", locale), std::nullopt);
    EXPECT_EQ(secondWord("Foobar ", locale), std::nullopt);
}

TEST(Figures, ThousandthsRoundHalvesAwayFromZero) {
    EXPECT_EQ(roundedToThousandth(0.0005), 0.001);
    EXPECT_EQ(roundedToThousandth(0.00049), 0);
    EXPECT_EQ(roundedToThousandth(1.2344), 1.234);
    EXPECT_EQ(roundedToThousandth(-0.0005), -0.001);
}

}  // namespace
}  // namespace velto
