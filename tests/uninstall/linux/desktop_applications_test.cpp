#include "uninstall/desktop_applications.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "../UninstallWorld.h"
#include "platform/linux/LinuxIcons.h"
#include "support/linux/icon_worker.h"
#include "support/made_picture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A Linux home; the folders of the system's entries lie on a made disk.
class DesktopTest : public testing::Test, protected UninstallWorld {
protected:
    DesktopTest() : UninstallWorld(buildVolume()) {
        std::filesystem::remove_all(home.path("Library"));
        HomeLayout layout = HomeLayout::freedesktop(
            home.path(), [](const std::string&) { return std::nullopt; }, "");
        layout.desktopEntries = {{entryOrigin::user, home.path(".local/share/applications")},
                                 {entryOrigin::userFlatpak,
                                  home.path(".local/share/flatpak/exports/share/applications")},
                                 {entryOrigin::flatpak, disk.path("flatpak/share/applications")},
                                 {entryOrigin::system, disk.path("usr/share/applications")},
                                 {entryOrigin::snap, disk.path("snap/applications")}};
        machine.platform.layout = layout;
    }

    std::string program(const std::string& path) {
        home.text(path, "#!/bin/sh\n");
        chmod(home.path(path).c_str(), 0755);
        return home.path(path);
    }
    void entry(const std::string& file, const std::string& name, const std::string& command,
               const std::string& more = "") {
        put(file,
            "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + command + "\n" + more);
    }
    void userEntry(const std::string& id, const std::string& name, const std::string& command,
                   const std::string& more = "") {
        entry(home.path(".local/share/applications/" + id + ".desktop"), name, command, more);
    }
    void systemEntry(const std::string& id, const std::string& name, const std::string& command,
                     const std::string& more = "") {
        entry(disk.path("usr/share/applications/" + id + ".desktop"), name, command, more);
    }
    std::optional<AppEntry> listed(const std::string& name) {
        for (AppEntry& one : apps.listApps()) {
            if (one.name == name) return one;
        }
        return std::nullopt;
    }
};

TEST_F(DesktopTest, AnAppImageOfTheHomeCanBeRemovedAsItsFile) {
    const std::string path = program("Applications/Foobar-1.2.AppImage");
    userEntry("foobar", "Foobar", path + " %U", "X-AppImage-Version=1.2\n");
    const auto found = listed("Foobar");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, path);
    EXPECT_EQ(found->bid, "foobar");
    EXPECT_EQ(found->version, "1.2");
    EXPECT_EQ(found->exec, "Foobar-1.2");
    EXPECT_FALSE(found->apple || found->store || found->running);
    EXPECT_EQ(apps.readApp(path), found);
}

TEST_F(DesktopTest, AFolderNamedLikeTheProgramIsTheApplication) {
    userEntry("foobar", "Foobar", program("apps/foobar-2.0/bin/foobar"));
    userEntry("other", "Other", program("apps/other/other"));
    EXPECT_EQ(listed("Foobar")->path, home.path("apps/foobar-2.0"));
    EXPECT_EQ(listed("Other")->path, home.path("apps/other"));
}

TEST_F(DesktopTest, AFolderOfManyThingsIsNotTheApplication) {
    const std::string inProjects = program("projects/run");
    const std::string inBin = program(".local/bin/tool");
    const std::string inHome = program("solo");
    const std::string inDocuments = program("Documents/documents");
    userEntry("run", "Run", inProjects);
    userEntry("tool", "Tool", inBin);
    userEntry("solo", "Solo", inHome);
    userEntry("documents", "Documents", inDocuments);
    EXPECT_EQ(listed("Run")->path, inProjects);
    EXPECT_EQ(listed("Tool")->path, inBin);
    EXPECT_EQ(listed("Solo")->path, inHome);
    EXPECT_EQ(listed("Documents")->path, inDocuments);
}

TEST_F(DesktopTest, AFolderThatOnlyHoldsTheProgramsNameInItsOwnIsNotTheApplication) {
    const char* const kept[] = {
        "games/game",        "tools/bin/tool",    "work/k",    "work/wo",
        "my-foobar/foobar",  "foobarista/foobar", "tool/tool", "Editor/editor",
        "shared/bin/shared", "tools-2/tools",     "ab/ab",     "ab-1/ab",
        "x/.appimage",       "projects/.sh"};
    for (const char* path : kept) {
        const std::string file = program(path);
        userEntry("one", "One", file);
        ASSERT_TRUE(listed("One")) << path;
        EXPECT_EQ(listed("One")->path, file);
    }
    const std::pair<const char*, const char*> taken[] = {
        {"apps/foobar/foobar", "apps/foobar"},
        {"apps/Foobar_1/foobar", "apps/Foobar_1"},
        {"apps/foobar.d/FOOBAR", "apps/foobar.d"},
        {"apps/foobar 3/foobar", "apps/foobar 3"},
        {"apps/foobar4/bin/foobar", "apps/foobar4"},
        {"apps/foobar-5/foobar.sh", "apps/foobar-5"},
        {"apps/abc/abc", "apps/abc"}};
    for (const auto& [path, folder] : taken) {
        userEntry("one", "One", "\"" + program(path) + "\"");
        ASSERT_TRUE(listed("One")) << path;
        EXPECT_EQ(listed("One")->path, home.path(folder));
    }
}

TEST_F(DesktopTest, TheProgramsOwnTimerAndServiceStay) {
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", path);
    const HomeLayout& layout = machine.platform.layout;
    put(layout.agentFile, "[Timer]");
    put(layout.agentService, "[Service]");
    const auto failures =
        remover.uninstall(*apps.readApp(path), {layout.agentFile, layout.agentService}).failures;
    ASSERT_EQ(failures.size(), 2u);
    EXPECT_EQ(failures[0].reason, "protected");
    EXPECT_EQ(failures[1].reason, "protected");
    EXPECT_THAT(machine.tools.commands, IsEmpty());
    EXPECT_TRUE(machine.platform.files->exists(layout.agentFile));
    EXPECT_TRUE(machine.platform.files->exists(layout.agentService));
}

TEST_F(DesktopTest, WhatBelongsToTheSystemsPackagesIsMarked) {
    systemEntry("sleeper", "Sleeper", "/bin/sleep 1");
    const auto found = listed("Sleeper");
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->apple);
    EXPECT_EQ(found->path, disk.path("usr/share/applications/sleeper.desktop"));
}

TEST_F(DesktopTest, FlatpaksAndSnapsComeFromAStore) {
    home.folder(".local/share/flatpak/app/org.acme.Mine");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", "/bin/true run org.acme.Mine", "X-Flatpak=org.acme.Mine\n");
    entry(disk.path("flatpak/share/applications/org.acme.All.desktop"), "All", "/bin/true",
          "X-Flatpak=org.acme.All\n");
    entry(disk.path("snap/applications/foo_foo.desktop"), "Snapped", "/bin/true",
          "X-SnapInstanceName=foo\n");
    EXPECT_TRUE(listed("Mine")->store && listed("All")->store && listed("Snapped")->store);
    EXPECT_EQ(listed("Mine")->path, home.path(".local/share/flatpak/app/org.acme.Mine"));
    EXPECT_EQ(listed("Mine")->bid, "org.acme.Mine");
    EXPECT_EQ(listed("All")->path, disk.path("flatpak/share/applications/org.acme.All.desktop"));
}

TEST_F(DesktopTest, HiddenAndBrokenEntriesAreNotListed) {
    systemEntry("a", "A", "/bin/sleep", "NoDisplay=true\n");
    systemEntry("b", "B", "/bin/sleep", "Hidden=true\n");
    systemEntry("c", "C", "/no/such/program");
    systemEntry("d", "D", "/bin/sleep", "TryExec=/no/such/program\n");
    systemEntry("e", "E", "/bin/sleep", "OnlyShowIn=NoSuchDesktop;\n");
    systemEntry("f", "F", "\"unclosed");
    put(disk.path("usr/share/applications/g.desktop"), "no entry");
    EXPECT_THAT(listedNames(), IsEmpty());
}

TEST_F(DesktopTest, AUsersEntryTakesThePlaceOfTheSystemsWithTheSameName) {
    systemEntry("sleeper", "Sleeper", "/bin/sleep 1");
    userEntry("sleeper", "Mine", "/bin/sleep 2", "NoDisplay=true\n");
    EXPECT_THAT(listedNames(), IsEmpty());
}

TEST_F(DesktopTest, SeveralEntriesOfOneApplicationCountOnce) {
    systemEntry("office", "Office", "/bin/sleep");
    systemEntry("office-calc", "Office Calc", "/bin/sleep --calc");
    put(disk.path("usr/share/applications/kde/office-more.desktop"),
        "[Desktop Entry]\nType=Application\nName=More\nExec=/bin/sleep\n");
    EXPECT_THAT(listedNames(), ElementsAre("Office"));
    // What only runs something else tells nothing about which application it is.
    systemEntry("one", "One", "sh -c one");
    systemEntry("two", "Two", "sh -c two");
    EXPECT_THAT(listedNames(), ElementsAre("Office", "One", "Two"));
}

TEST_F(DesktopTest, AProgramThatRunsIsAnApplicationThatRuns) {
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", "env LANG=C " + path);
    machine.running.add({.executable = path});
    const auto found = listed("Foobar");
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->running);
    EXPECT_EQ(found->last, machine.clock.time);
    EXPECT_EQ(usage.launches().at("foobar"), machine.clock.time);
}

TEST_F(DesktopTest, TheUseOfListedApplicationsIsRecordedAndOfNoOthers) {
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", path);
    machine.running.add({.executable = path});
    machine.running.add({.executable = "/bin/true"});
    usage.start();
    machine.dispatcher.runAll();
    EXPECT_THAT(usage.launches(), ElementsAre(std::pair("foobar", machine.clock.time)));
    machine.clock.time += 60;
    machine.running.onUse({.executable = path});
    EXPECT_THAT(usage.launches(), ElementsAre(std::pair("foobar", machine.clock.time)));
}

TEST_F(DesktopTest, TheIconIsThatOfTheTheme) {
    machine.platform.icons = std::make_unique<LinuxIcons>(*machine.platform.files, iconWorker);
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", path, "Icon=foobar\n");
    EXPECT_EQ(apps.iconDataURL(listed("Foobar")->path, 32), std::nullopt);
    put(home.path(".local/share/icons/hicolor/48x48/apps/foobar.png"),
        pngPicture(48, 48, {1, 2, 3}));
    EXPECT_TRUE(apps.iconDataURL(path, 32).value_or("").starts_with("data:image/png;base64,"));
}

TEST_F(DesktopTest, AnAppImageGoesWithWhatItLeft) {
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", path);
    put(home.path(".config/foobar/settings"), "x");
    put(home.path(".cache/foobar/x"), "x");
    put(home.path(".config/systemd/user/foobar.service"), "[Service]");
    put(home.path(".ssh/id"), "secret");
    auto& process = machine.running.add({.executable = path});
    const auto result = remover.uninstall(
        *apps.readApp(path), {path, home.path(".config/foobar"), home.path(".cache/foobar"),
                              home.path(".config/systemd/user/foobar.service"),
                              home.path(".ssh/id"), home.path(".config"), "/usr/bin/env"});
    EXPECT_EQ(result.removed, 4);
    EXPECT_EQ(result.closed, 1);
    EXPECT_TRUE(process.terminated);
    EXPECT_THAT(result.failures,
                ElementsAre(AppRemover::Failure{"id", home.path(".ssh/id"), "protected"},
                            AppRemover::Failure{".config", home.path(".config"), "protected"},
                            AppRemover::Failure{"env", "/usr/bin/env", "admin"}));
    EXPECT_THAT(machine.tools.commands,
                ElementsAre(ElementsAre("/usr/bin/systemctl", "--user", "disable", "--now", "--",
                                        "foobar.service")));
    EXPECT_TRUE(home.exists(".ssh/id"));
    EXPECT_FALSE(home.exists(".config/foobar"));
}

TEST_F(DesktopTest, AUsersFlatpakIsRemovedByFlatpak) {
    const std::string path = home.folder(".local/share/flatpak/app/org.acme.Mine");
    const AppEntry mine{.bid = "org.acme.Mine", .name = "Mine", .path = path};
    EXPECT_EQ(remover.uninstall(mine, {path}).removed, 1);
    EXPECT_THAT(machine.tools.commands.back(),
                ElementsAre("/usr/bin/flatpak", "uninstall", "--user", "--noninteractive",
                            "--assumeyes", "org.acme.Mine"));
    EXPECT_TRUE(home.exists(".local/share/flatpak/app/org.acme.Mine")) << "that is flatpak's to do";
    machine.tools.result.exitStatus = 1;
    const auto failures = remover.uninstall(mine, {path}).failures;
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(failures[0].reason, "other");
}

}  // namespace
}  // namespace velto
