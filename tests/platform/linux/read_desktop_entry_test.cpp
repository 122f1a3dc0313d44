#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/DesktopEntry.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto {
namespace {

const std::string entry = "[Desktop Entry]\nType=Application\nName=Sleeper\nExec=sleep 1\n";

TEST(ReadDesktopEntry, APipeThatIsCalledLikeAnEntryHoldsNothingUp) {
    TempHome home;
    ASSERT_EQ(mkfifo(home.path("x.desktop").c_str(), 0600), 0);
    home.link("link.desktop", "x.desktop");
    EXPECT_FALSE(readDesktopEntry(home.path("x.desktop")));
    EXPECT_FALSE(readDesktopEntry(home.path("link.desktop")));
}

TEST(ReadDesktopEntry, AnEntryMayBeALink) {
    TempHome home;
    home.text("real", entry);
    home.link("link.desktop", "real");
    const auto read = readDesktopEntry(home.path("link.desktop"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->name, "Sleeper");
}

TEST(ReadDesktopEntry, AnEntryLongerThanAnyIsNotRead) {
    TempHome home;
    const auto with = [&](std::size_t bytes) {
        return home.text("long.desktop", entry + "# " + std::string(bytes, 'x') + "\n").path();
    };
    EXPECT_TRUE(readDesktopEntry(with(100'000)));
    EXPECT_FALSE(readDesktopEntry(with(300'000)));
    EXPECT_FALSE(readDesktopEntry(home.sparse("sparse.desktop", 3'000'000'000).path()));
}

TEST(DesktopEntryFiles, AFolderThatSomebodyHasFilledHidesNoOther) {
    TempHome home;
    for (int number = 0; number < 21'000; ++number)
        home.text("user/" + std::to_string(number) + ".txt", "");
    home.text("system/app.desktop", entry);
    const auto found = desktopEntryFiles(
        PosixFileManager(), {{"user", home.path("user")}, {"system", home.path("system")}});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found.front().id, "app");
}

}  // namespace
}  // namespace velto
