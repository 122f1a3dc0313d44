#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/DesktopEntry.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto {
namespace {

const std::string sleeper = "[Desktop Entry]\nType=Application\nName=Sleeper\nExec=sleep 1\n";

TEST(ReadDesktopEntry, APipeThatIsCalledLikeAnEntryHoldsNothingUp) {
    TempHome home;
    ASSERT_EQ(mkfifo(home.path("x.desktop").c_str(), 0600), 0);
    home.link("link.desktop", "x.desktop");
    EXPECT_FALSE(readDesktopEntry(home.path("x.desktop")));
    EXPECT_FALSE(readDesktopEntry(home.path("link.desktop")));
}

TEST(ReadDesktopEntry, AnEntryMayBeALink) {
    TempHome home;
    home.text("real", sleeper);
    home.link("link.desktop", "real");
    const auto read = readDesktopEntry(home.path("link.desktop"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->name, "Sleeper");
}

/// An entry that starts a program of that name with the arguments.
std::optional<DesktopEntry> entryOf(TempHome& home, const std::string& program,
                                    const std::string& arguments) {
    home.text("bin/" + program, "#!/bin/sh\n");
    chmod(home.path("bin/" + program).c_str(), 0755);
    home.text("e.desktop", "[Desktop Entry]\nType=Application\nName=X\nExec=" +
                               home.path("bin/" + program) + " " + arguments + "\n");
    return readDesktopEntry(home.path("e.desktop"));
}

TEST(ReadDesktopEntry, WhatOnlyStartsSomethingElseIsNotTheApplication) {
    TempHome home;
    for (const char* launcher :
         {"flatpak", "flatpak-spawn", "snap", "sh", "bash", "python3.12", "wine", "umu-run",
          "distrobox-enter", "toolbox", "prime-run", "gamemoderun", "systemd-run", "firejail",
          "nice", "dbus-run-session", "kdesu", "appimage-run"}) {
        const auto read = entryOf(home, launcher, "run org.acme.Mine");
        ASSERT_TRUE(read) << launcher;
        EXPECT_TRUE(read->startsScript) << launcher;
    }
    EXPECT_FALSE(entryOf(home, "timeshift", "--gtk")->startsScript);
}

TEST(ReadDesktopEntry, TheCommandOfEnvComesAfterItsOptionsAndAssignments) {
    TempHome home;
    entryOf(home, "mine", "");
    for (const char* words : {"A=1 B=2", "-i", "-u DISPLAY A=1", "--unset=X -C /tmp"}) {
        home.text("e.desktop", std::string("[Desktop Entry]\nType=Application\nName=X\nExec=env ") +
                                   words + " " + home.path("bin/mine") + " %U\n");
        const auto read = readDesktopEntry(home.path("e.desktop"));
        ASSERT_TRUE(read) << words;
        EXPECT_EQ(read->executable, home.path("bin/mine")) << words;
        EXPECT_FALSE(read->startsScript);
    }
}

TEST(ReadDesktopEntry, AnEntryLongerThanAnyIsNotRead) {
    TempHome home;
    const auto with = [&](std::size_t bytes) {
        return home.text("long.desktop", sleeper + "# " + std::string(bytes, 'x') + "\n").path();
    };
    EXPECT_TRUE(readDesktopEntry(with(100'000)));
    EXPECT_FALSE(readDesktopEntry(with(300'000)));
    EXPECT_FALSE(readDesktopEntry(home.sparse("sparse.desktop", 3'000'000'000).path()));
}

TEST(DesktopEntryFiles, AFolderThatSomebodyHasFilledHidesNoOther) {
    TempHome home;
    for (int number = 0; number < 21'000; ++number)
        home.text("user/" + std::to_string(number) + ".txt", "");
    home.text("system/app.desktop", sleeper);
    const auto found = desktopEntryFiles(
        PosixFileManager(), {{"user", home.path("user")}, {"system", home.path("system")}});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found.front().id, "app");
}

}  // namespace
}  // namespace velto
