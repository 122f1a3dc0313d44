#include "platform/linux/LinuxIcons.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/linux/icon_theme_name.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/exhaustive.h"
#include "support/linux/icon_worker.h"
#include "support/made_picture.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

constexpr Colour darkRed{200, 10, 10, 255};
constexpr std::string_view start = "data:image/png;base64,iVBORw0KGgo";  // of every PNG

class LinuxIconsTest : public testing::Test {
protected:
    /// A bundle whose icon file holds `content`.
    std::string bundle(const std::string& content, const std::string& named = "Icon") {
        home.text("App.app/Contents/Info.plist",
                  xmlPropertyList(textDictionary({{"CFBundleIconFile", named}})));
        home.text("App.app/Contents/Resources/Icon.icns", content);
        return home.path("App.app");
    }
    bool hasIcon(const std::string& path, int pixels = 32) {
        const auto url = icons.pngDataURL(path, pixels);
        return url && url->starts_with(start);
    }

    TempHome home;
    PosixFileManager files;
    LinuxIcons icons{files, iconWorker, {{"user", home.path("share/applications")}}};
};

TEST_F(LinuxIconsTest, TheIconOfABundleIsShown) {
    EXPECT_TRUE(hasIcon(bundle(iconFile({{"ic07", pngPicture(128, 128, darkRed)}}))));
    EXPECT_TRUE(hasIcon(bundle(iconFile(oldIconEntries(darkRed)))));
    EXPECT_TRUE(hasIcon(bundle(iconFile({{"ic07", pngPicture(128, 128, darkRed)}}), "Icon.icns")));
}

TEST_F(LinuxIconsTest, TheIconOfAnEntryIsThatOfTheDesktopsTheme) {
    home.text("share/applications/a.desktop",
              "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sleep\nIcon=a\n");
    home.text("share/icons/hicolor/48x48/apps/a.png", pngPicture(48, 48, darkRed));
    home.text("share/icons/Mine/index.theme",
              "[Icon Theme]\nDirectories=apps/48\n[apps/48]\nSize=48\n");
    const std::string entry = home.path("share/applications/a.desktop");
    const auto plain = icons.pngDataURL(entry, 32);
    ASSERT_TRUE(plain);
    LinuxIcons themed{
        files, iconWorker, {{"user", home.path("share/applications")}}, [] { return "Mine"; }};
    EXPECT_EQ(themed.pngDataURL(entry, 32), plain) << "the theme has none";
    home.text("share/icons/Mine/apps/48/a.png", pngPicture(48, 48, {0, 0, 9}));
    const auto own = themed.pngDataURL(entry, 32);
    ASSERT_TRUE(own);
    EXPECT_NE(own, plain);
}

TEST(IconThemeName, IsWhatTheToolkitsSettingsSay) {
    TempHome home;
    PosixFileManager files;
    home.text("gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=breeze-dark\n");
    EXPECT_EQ(iconThemeName(files, home.path()), "breeze-dark");
    home.text("gtk-4.0/settings.ini",
              "[Settings]\ngtk-theme-name=x\ngtk-icon-theme-name = Papirus\n");
    EXPECT_EQ(iconThemeName(files, home.path()), "Papirus");
}

TEST_F(LinuxIconsTest, OneColourOfOneSizeIsThePicture) {
    // Scaling a picture of one colour gives that picture in the other size: every way leads to one.
    const auto direct =
        icons.pngDataURL(home.text("a.png", pngPicture(32, 32, darkRed)).path(), 32);
    ASSERT_TRUE(direct);
    EXPECT_EQ(icons.pngDataURL(bundle(iconFile({{"ic10", pngPicture(64, 64, darkRed)}})), 32),
              direct);
    EXPECT_NE(icons.pngDataURL(bundle(iconFile({{"ic07", pngPicture(64, 64, {0, 0, 9})}})), 32),
              direct);
    EXPECT_EQ(icons.pngDataURL(bundle(iconFile(oldIconEntries(darkRed))), 32), direct);
}

TEST_F(LinuxIconsTest, ThePictureClosestToTheSizeIsTaken) {
    const std::string file = iconFile({{"ic10", pngPicture(4, 4, darkRed)},
                                       {"ic12", pngPicture(2, 2, darkRed)},
                                       {"ic07", pngPicture(3, 3, darkRed)}});
    EXPECT_EQ(pngInIconFile(file, 32), pngPicture(2, 2, darkRed));
    EXPECT_EQ(pngInIconFile(file, 128), pngPicture(3, 3, darkRed));
    EXPECT_EQ(pngInIconFile(file, 2048), pngPicture(4, 4, darkRed));
}

TEST_F(LinuxIconsTest, WhatIsNoIconIsNone) {
    const std::string whole = iconFile({{"ic07", pngPicture(128, 128, darkRed)}});
    EXPECT_FALSE(hasIcon(bundle("no icon at all")));
    EXPECT_FALSE(hasIcon(bundle("")));
    EXPECT_FALSE(hasIcon(bundle(whole.substr(0, whole.size() / 2))));
    EXPECT_FALSE(hasIcon(bundle(std::string("icns\xFF\xFF\xFF\xFFic07\0\0\0\0", 16))));
    EXPECT_FALSE(hasIcon(home.path("nothing")));
    EXPECT_FALSE(hasIcon(home.folder("plain folder")));
    EXPECT_FALSE(hasIcon(bundle(whole), 0));
}

TEST_F(LinuxIconsTest, ADamagedIconIsNeverTheProgramsEnd) {
    auto entries = oldIconEntries(darkRed);
    entries.emplace_back("ic07", pngPicture(128, 128, darkRed));
    const std::string original = iconFile(entries);
    const std::string png = pngPicture(64, 64, darkRed);
    const int rounds = isExhaustive() ? 20'000 : 300;
    std::mt19937 random(20240718);
    int shown = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string bytes = round % 2 == 0 ? original : png;
        // Most often where lengths and kinds stand.
        const std::size_t range = random() % 3 == 0 ? bytes.size() : 64;
        for (auto change = 1 + random() % 4; change > 0; --change)
            bytes[random() % range] = static_cast<char>(random());
        if (random() % 5 == 0) bytes.resize(random() % bytes.size());
        shown += hasIcon(bundle(bytes)) ? 1 : 0;
    }
    EXPECT_GT(shown, 0) << "nothing was ever decoded";
    EXPECT_LT(shown, rounds);
}

TEST_F(LinuxIconsTest, APictureThatClaimsToBeHugeIsNotDecoded) {
    std::string png = pngPicture(4, 4, darkRed);
    png.replace(16, 8, std::string("\0\0\xEA\x60\0\0\xEA\x60", 8));  // 60,000 by 60,000
    EXPECT_FALSE(hasIcon(home.text("huge.png", png).path()));
    EXPECT_FALSE(hasIcon(home.text("wide.png", pngPicture(5000, 1, darkRed)).path()));
}

TEST_F(LinuxIconsTest, ADesktopEntryHasThePictureThatItNames) {
    const auto entryWith = [&](const std::string& icon) {
        return home
            .text("share/applications/sleeper.desktop",
                  "[Desktop Entry]\nType=Application\nName=Sleeper\nExec=sleep 1\n" + icon)
            .path();
    };
    home.text("share/icons/hicolor/48x48/apps/sleeper.png", pngPicture(48, 48, darkRed));
    const std::string beside = home.text("beside.png", pngPicture(48, 48, darkRed)).path();
    EXPECT_TRUE(hasIcon(entryWith("Icon=sleeper\n"), 28));
    EXPECT_TRUE(hasIcon(entryWith("Icon=" + beside + "\n"), 28));
    EXPECT_FALSE(hasIcon(entryWith("Icon=another\n"), 28));
    EXPECT_FALSE(hasIcon(entryWith("Icon=../../beside\n"), 28));
    EXPECT_FALSE(hasIcon(entryWith(""), 28));
    EXPECT_FALSE(hasIcon(home.path("share/applications/missing.desktop"), 28));
}

TEST_F(LinuxIconsTest, TheNameOfAnIconLeadsNowhereElse) {
    home.text("secret.icns", iconFile({{"ic07", pngPicture(128, 128, darkRed)}}));
    EXPECT_FALSE(hasIcon(bundle("", "../../../secret")));
}

}  // namespace
}  // namespace velto
