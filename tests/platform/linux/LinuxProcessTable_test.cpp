#include "platform/linux/LinuxProcessTable.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/TempHome.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

/// A recorded tree of processes, as below /proc.
struct ProcessTableTest : testing::Test {
    TempHome proc;
    std::shared_ptr<const ApplicationIndex> index;
    std::unique_ptr<LinuxProcessTable> table =
        std::make_unique<LinuxProcessTable>(LinuxProcessTable::Sources{
            .proc = proc.path(), .ownProcess = 77, .applications = [this] { return index; }});

    struct Recorded {
        int pid;
        int parent = 1;
        std::string command = "worker";
        std::string executable = "/usr/bin/worker";
        std::uint64_t ticks = 0;
        std::uint64_t faults = 10;
        std::uint64_t kilobytes = 4096;  // of its own
        std::uint64_t start = 1000;
        char state = 'S';
        std::string group = "0::/init.scope\n";
    };

    void record(const Recorded& one) {
        const std::string folder = std::to_string(one.pid);
        proc.text(folder + "/stat",
                  fmt::format("{} ({}) {} {} 1 1 0 -1 4194560 {} 0 2 0 {} 5 0 0 20 0 1 0 {} "
                              "1000000 {} 18446744073709551615 1 1 0 0 0 0 0\n",
                              one.pid, one.command, one.state, one.parent, one.faults, one.ticks,
                              one.start, one.kilobytes / 4 + 100));
        proc.text(folder + "/status",
                  fmt::format("Name:\t{}\nVmRSS:\t {} kB\nRssAnon:\t {} kB\nRssFile:\t 400 kB\n"
                              "VmSwap:\t 1024 kB\n",
                              one.command, one.kilobytes + 400, one.kilobytes));
        proc.text(folder + "/cgroup", one.group);
        if (!one.executable.empty() && !proc.exists(folder + "/exe")) {
            proc.link(folder + "/exe", one.executable);
        }
    }
    void end(int pid) {
        proc.text(fmt::format("{}/stat", pid), "");
        ::unlink(proc.path(fmt::format("{}/stat", pid)).c_str());
    }
};

TEST_F(ProcessTableTest, AProcessHasItsParentNameTimeAndMemory) {
    record({.pid = 100, .parent = 42, .ticks = 250});
    const auto infos = table->list();
    ASSERT_EQ(infos.size(), 1u);
    EXPECT_EQ(infos.at(100).ppid, 42);
    EXPECT_EQ(infos.at(100).name, "worker");
    const auto usage = table->usage(100);
    ASSERT_TRUE(usage);
    const auto tick = 1e9 / static_cast<double>(sysconf(_SC_CLK_TCK));
    EXPECT_EQ(usage->time, static_cast<std::uint64_t>(255 * tick));  // user and system
    EXPECT_EQ(usage->footprint, (4096u + 1024u) * 1024);             // its own and swapped out
    EXPECT_EQ(table->executablePath(100), "/usr/bin/worker");
}

/// Lines of proc_pid_io(5).
std::string io(std::uint64_t read, std::uint64_t written) {
    return fmt::format(
        "rchar: 323934931\nwchar: 323929600\nsyscr: 632687\nsyscw: 632675\n"
        "read_bytes: {}\nwrite_bytes: {}\ncancelled_write_bytes: 0\n",
        read, written);
}

TEST_F(ProcessTableTest, ItsTrafficIsReadWhenTheProcessHasDoneAnything) {
    record({.pid = 100, .ticks = 10});
    proc.text("100/io", io(4096, 512));
    EXPECT_TRUE(table->list().at(100).isOwn);
    EXPECT_EQ(table->usage(100)->traffic, (ProcessTraffic{4096, 512}));
    proc.text("100/io", io(8192, 1024));
    EXPECT_EQ(table->usage(100)->traffic, (ProcessTraffic{4096, 512}));
    record({.pid = 100, .ticks = 11});
    EXPECT_EQ(table->usage(100)->traffic, (ProcessTraffic{8192, 1024}));
    proc.text("100/io", io(8192, 2048));
    record({.pid = 100, .ticks = 11, .faults = 11});
    EXPECT_EQ(table->usage(100)->traffic, (ProcessTraffic{8192, 2048}));
}

TEST_F(ProcessTableTest, AKernelThatDoesNotTellTheTrafficIsNoFailure) {
    record({.pid = 100});
    table->list();
    EXPECT_FALSE(table->usage(100)->traffic);
    record({.pid = 101});
    proc.text("101/io", "rchar: 1\nread_bytes: 5\n");
    table->list();
    EXPECT_FALSE(table->usage(101)->traffic);
}

TEST_F(ProcessTableTest, AProcessIsKnownAgainByItsStart) {
    record({.pid = 100, .start = 4711});
    EXPECT_EQ(table->list().at(100).start, 4711u);
    EXPECT_EQ(table->startOf(100), 4711u);
    record({.pid = 100, .start = 4712});  // the number is another one's by now
    EXPECT_EQ(table->startOf(100), 4712u);
    record({.pid = 100, .start = 4712, .state = 'Z'});
    EXPECT_FALSE(table->startOf(100));
    EXPECT_FALSE(table->startOf(101));
}

TEST_F(ProcessTableTest, AThreadOfTheKernelHasNoMemoryAndNoProgram) {
    record({.pid = 2, .parent = 0, .command = "kthreadd", .executable = ""});
    proc.text("2/status", "Name:\tkthreadd\n");
    EXPECT_EQ(table->list().at(2).ppid, 0);
    EXPECT_EQ(table->usage(2)->footprint, 0u);
    EXPECT_EQ(table->executablePath(2), "");
}

TEST_F(ProcessTableTest, ANameWithParenthesesAndBlanksIsReadWhole) {
    record({.pid = 100, .parent = 42, .command = "a) S (b 9"});
    EXPECT_EQ(table->list().at(100).name, "a) S (b 9");
    EXPECT_EQ(table->list().at(100).ppid, 42);
}

TEST_F(ProcessTableTest, ANameThatTheKernelCutOffIsCompleted) {
    record({.pid = 100, .command = "gnome-text-edit", .executable = "/usr/bin/gnome-text-editor"});
    record({.pid = 101, .command = "Isolated Web Co", .executable = "/usr/lib/firefox/firefox"});
    EXPECT_EQ(table->list().at(100).name, "gnome-text-editor");
    EXPECT_EQ(table->list().at(101).name, "Isolated Web Co");
}

TEST_F(ProcessTableTest, ThisProgramAndWhatIsNoProcessAreLeftOut) {
    record({.pid = 77});
    record({.pid = 78});
    proc.folder("self");
    proc.folder("12x");
    proc.folder("99");  // has ended since the folder was listed
    EXPECT_EQ(table->list().size(), 1u);
    EXPECT_TRUE(table->list().contains(78));
}

TEST_F(ProcessTableTest, AProcessThatEndsIsGoneAndItsFileIsClosed) {
    record({.pid = 100});
    record({.pid = 101});
    table->list();
    EXPECT_EQ(table->openFiles(), 2u);
    end(100);
    EXPECT_FALSE(table->usage(100));
    EXPECT_FALSE(table->usage(100));
    EXPECT_TRUE(table->usage(101));
    EXPECT_EQ(table->openFiles(), 1u);
    end(101);
    EXPECT_TRUE(table->list().empty());
    EXPECT_EQ(table->openFiles(), 0u);
    EXPECT_EQ(table->executablePath(100), "");
}

TEST_F(ProcessTableTest, WhatHasEndedAndWaitsForItsParentIsLeftOut) {
    record({.pid = 100, .state = 'Z'});
    EXPECT_TRUE(table->list().empty());
    record({.pid = 100});
    EXPECT_EQ(table->list().size(), 1u);
    record({.pid = 100, .state = 'Z'});
    EXPECT_FALSE(table->usage(100));
}

TEST_F(ProcessTableTest, AnotherProcessUnderTheSameNumberIsNotTakenForTheOldOne) {
    record({.pid = 100, .ticks = 500});
    table->list();
    record({.pid = 100, .command = "other", .ticks = 3, .start = 9999});
    EXPECT_FALSE(table->usage(100));
    EXPECT_EQ(table->list().at(100).name, "other");
    EXPECT_TRUE(table->usage(100));
}

TEST_F(ProcessTableTest, MemoryFollowsWhenItGrowsShrinksOrIsSwappedOut) {
    record({.pid = 100});
    table->list();
    const auto before = table->usage(100)->footprint;
    record({.pid = 100, .faults = 5000, .kilobytes = 4096});
    proc.text("100/status", "RssAnon:\t 9000 kB\nVmSwap:\t 0 kB\n");
    EXPECT_EQ(table->usage(100)->footprint, 9000u * 1024);
    record({.pid = 100, .faults = 5000, .kilobytes = 1024});
    EXPECT_EQ(table->usage(100)->footprint, (1024u + 1024u) * 1024);
    EXPECT_NE(table->usage(100)->footprint, before);
}

TEST_F(ProcessTableTest, AnOldKernelGivesTheSumInsteadOfTheParts) {
    EXPECT_EQ(footprintIn("VmRSS:\t 500 kB\nVmSwap:\t 100 kB\n"), 600u * 1024);
}

TEST_F(ProcessTableTest, AProcessThatTurnsIntoAnotherProgramIsRecognised) {
    record({.pid = 100, .command = "bash", .executable = "/usr/bin/bash"});
    table->list();
    ::unlink(proc.path("100/exe").c_str());
    record({.pid = 100, .command = "make", .executable = "/usr/bin/make"});
    table->usage(100);
    EXPECT_EQ(table->executablePath(100), "/usr/bin/make");
}

ListedApplication firefox() {
    return {"firefox", "Firefox", "/usr/share/applications/firefox.desktop",
            "/usr/lib/firefox/firefox", false};
}

TEST_F(ProcessTableTest, ABrowserOfThirtyProcessesIsOneApplicationAndNotItsStartersPart) {
    index = std::make_shared<const ApplicationIndex>(std::vector<ListedApplication>{
        firefox(), {"files", "Files", "/f", "/usr/bin/files", false}});
    record({.pid = 50, .command = "files", .executable = "/usr/bin/files"});
    record(
        {.pid = 100, .parent = 50, .command = "firefox", .executable = "/usr/lib/firefox/firefox"});
    for (int helper = 101; helper < 130; ++helper) {
        record({.pid = helper,
                .parent = 100,
                .command = "Web Content",
                .executable = helper % 2 == 0 ? "/usr/lib/firefox/firefox" : ""});
    }
    const auto infos = table->list();
    const auto apps = table->runningApps();
    EXPECT_EQ(infos.at(100).ppid, 1);
    EXPECT_EQ(infos.at(102).ppid, 100);
    EXPECT_EQ(infos.at(101).ppid, 100);  // cannot be looked into, but its parent can
    EXPECT_FALSE(apps.contains(101));
    EXPECT_EQ(apps.at(102).name, "Firefox");
    EXPECT_EQ(apps.at(102).bundle, "firefox");
    EXPECT_EQ(apps.at(50).name, "Files");
}

// A Snap as Ubuntu runs it; its helpers have no program that could be looked at.
TEST_F(ProcessTableTest, ABrowserThatIsASnapIsOneApplication) {
    index = std::make_shared<const ApplicationIndex>(std::vector<ListedApplication>{
        {.identifier = "firefox_firefox",
         .name = "Firefox",
         .path = "/var/lib/snapd/desktop/applications/firefox_firefox.desktop",
         .executable = "/usr/bin/snap",
         .startsAnything = true,
         .script = "",
         .flatpak = "",
         .snap = "firefox"}});
    const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
    const std::string uuid = "77218fe2-ab29-4bc5-a7be-30a9d58bbaf2";
    record({.pid = 100,
            .command = "firefox",
            .executable = "/snap/firefox/4793/usr/lib/firefox/firefox",
            .group = slice + "snap.firefox.firefox." + uuid + ".scope\n"});
    record({.pid = 101,
            .parent = 100,
            .command = "Web Content",
            .executable = "",
            .group = slice + "snap.firefox.firefox-" + uuid + ".scope\n"});
    record({.pid = 102,
            .command = "geckodriver",
            .executable = "/snap/firefox/4793/usr/lib/firefox/geckodriver",
            .group = slice + "snap.firefox.geckodriver-" + uuid + ".scope\n"});
    record({.pid = 103,
            .command = "helper",
            .executable = "/snap/firefox/4793/usr/lib/firefox/helper",
            .group = "0::/user.slice/user-1000.slice/session-2.scope\n"});
    table->list();
    const auto apps = table->runningApps();
    ASSERT_EQ(apps.size(), 4u);
    for (const auto& [process, app] : apps)
        EXPECT_EQ(app.bundle, "firefox_firefox") << process;
}

TEST_F(ProcessTableTest, WhatTheWebViewStartsIsThisProgramsAlsoInsideASandboxOfItsOwn) {
    const std::string engine = "/usr/lib/x86_64-linux-gnu/webkitgtk-6.0/";
    record({.pid = 77, .command = "velto", .executable = "/usr/bin/velto"});
    record({.pid = 100,
            .parent = 77,
            .command = "WebKitNetworkProcess",
            .executable = engine + "WebKitNetworkProcess"});
    record({.pid = 101, .parent = 77, .command = "bwrap", .executable = "/usr/bin/bwrap"});
    record({.pid = 102, .parent = 101, .command = "bwrap", .executable = "/usr/bin/bwrap"});
    record({.pid = 103,
            .parent = 102,
            .command = "WebKitWebProces",
            .executable = engine + "WebKitWebProcess"});
    record({.pid = 104, .parent = 77, .command = "velto-icons", .executable = "/x/velto-icons"});
    record({.pid = 105,
            .parent = 1,
            .command = "WebKitWebProces",
            .executable = engine + "WebKitWebProcess"});  // another program's
    table->list();
    const auto apps = table->runningApps();
    EXPECT_EQ(apps.size(), 5u);
    for (int process : {100, 101, 102, 103, 104}) {
        ASSERT_TRUE(apps.contains(process)) << process;
        EXPECT_EQ(apps.at(process).bundle, "app.velto");
        EXPECT_EQ(apps.at(process).name, "Velto");
    }
}

TEST_F(ProcessTableTest, StartedInATerminalTheEngineIsThisProgramsAndTheBrowserItOpensIsNot) {
    index = std::make_shared<const ApplicationIndex>(std::vector<ListedApplication>{
        firefox(),
        {"org.kde.konsole", "Konsole", "/k", "/usr/bin/konsole", false},
        {"app.velto", "Velto (desktop)", "/v.desktop", "/usr/bin/velto", false}});
    const std::string group = "0::/user.slice/app.slice/app-org.kde.konsole-4558.scope\n";
    record({.pid = 77, .command = "velto", .executable = "/usr/bin/velto", .group = group});
    record({.pid = 90, .command = "bash", .executable = "/usr/bin/bash", .group = group});
    record({.pid = 100,
            .parent = 77,
            .command = "WebKitWebProces",
            .executable = "/usr/lib/webkitgtk-6.0/WebKitWebProcess",
            .group = group});
    record({.pid = 101,
            .parent = 77,
            .command = "firefox",
            .executable = "/usr/lib/firefox/firefox",
            .group = group});
    table->list();
    const auto apps = table->runningApps();
    EXPECT_EQ(apps.at(90).name, "Konsole");
    EXPECT_EQ(apps.at(100).name, "Velto (desktop)");
    EXPECT_NE(apps.at(101).name, "Velto (desktop)");
}

TEST_F(ProcessTableTest, AnApplicationThatIsInstalledLaterIsRecognised) {
    record({.pid = 100, .command = "firefox", .executable = "/usr/lib/firefox/firefox (deleted)"});
    table->list();
    EXPECT_TRUE(table->runningApps().empty());
    index = std::make_shared<const ApplicationIndex>(std::vector<ListedApplication>{firefox()});
    table->list();
    EXPECT_EQ(table->runningApps().at(100).name, "Firefox");
    index = nullptr;
    table->list();
    EXPECT_TRUE(table->runningApps().empty());
}

TEST_F(ProcessTableTest, InAMacsHomeABundleIsAnApplicationWithAllThatRunsInIt) {
    record({.pid = 100, .executable = "/Users/me/Applications/Player.app/Contents/MacOS/Player"});
    record({.pid = 101,
            .parent = 100,
            .executable = "/Users/me/Applications/Player.app/Contents/Helper.app/Helper"});
    const auto infos = table->list();
    const auto apps = table->runningApps();
    EXPECT_EQ(apps.at(100).name, "Player");
    EXPECT_EQ(apps.at(101).path, "/Users/me/Applications/Player.app");
    EXPECT_EQ(apps.at(101).bundle, apps.at(100).bundle);
    EXPECT_EQ(infos.at(101).ppid, 100);
}

TEST_F(ProcessTableTest, ABundlesOwnNameAndIdentifierCount) {
    TempHome home;
    home.text("Player.app/Contents/Info.plist",
              xmlPropertyList(textDictionary({{"CFBundleName", "Great Player"},
                                              {"CFBundleIdentifier", "com.example.player"}})));
    record({.pid = 100, .executable = home.path("Player.app/Contents/MacOS/Player")});
    table->list();
    const RunningApp app = table->runningApps().at(100);
    EXPECT_EQ(app.name, "Great Player");
    EXPECT_EQ(app.bundle, "com.example.player");
    EXPECT_EQ(app.path, home.path("Player.app"));
}

TEST_F(ProcessTableTest, NothingIsKeptOfABundleThatNothingRunsFromAnyMore) {
    int asked = 0;
    table = std::make_unique<LinuxProcessTable>(
        LinuxProcessTable::Sources{.proc = proc.path(), .bundle = [&](const std::string& path) {
                                       ++asked;
                                       return RunningApp{.name = path};
                                   }});
    record({.pid = 100, .executable = "/A/Player.app/Contents/MacOS/Player"});
    record({.pid = 101, .executable = "/A/Player.app/Contents/MacOS/Player"});
    table->list();
    end(101);
    table->list();
    EXPECT_EQ(asked, 1);
    end(100);
    table->list();
    record({.pid = 102, .executable = "/A/Player.app/Contents/MacOS/Player"});
    table->list();
    EXPECT_EQ(table->runningApps().at(102).name, "/A/Player.app");
    EXPECT_EQ(asked, 2);
}

TEST_F(ProcessTableTest, AnAppImageIsOneApplicationWhereverItIsMounted) {
    index = std::make_shared<const ApplicationIndex>(std::vector<ListedApplication>{
        {"painter", "Painter", "/p", "/home/me/Painter-1.2.AppImage", false}});
    record({.pid = 100, .executable = "/tmp/.mount_PainteXy/usr/bin/painter"});
    using namespace std::string_literals;
    proc.text("100/environ", "HOME=/home/me\0APPIMAGE=/home/me/Painter-1.2.AppImage\0ARGV0=x\0"s);
    record({.pid = 101, .executable = "/tmp/.mount_Other/usr/bin/other"});
    table->list();
    EXPECT_EQ(table->runningApps().at(100).name, "Painter");
    EXPECT_FALSE(table->runningApps().contains(101));
}

TEST(ProcessStatusIn, DamagedTextIsNothing) {
    EXPECT_FALSE(processStatusIn(""));
    EXPECT_FALSE(processStatusIn("100 (x"));
    EXPECT_FALSE(processStatusIn("100 )x("));
    EXPECT_FALSE(processStatusIn("100 (x)"));
    EXPECT_FALSE(processStatusIn("100 (x) S 1 2 3"));
}

}  // namespace
}  // namespace velto
