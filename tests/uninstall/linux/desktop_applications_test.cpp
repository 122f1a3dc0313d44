#include "uninstall/desktop_applications.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "DesktopWorld.h"
#include "platform/linux/LinuxIcons.h"
#include "support/linux/icon_worker.h"
#include "support/made_picture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DesktopTest : public testing::Test, protected DesktopWorld {};

TEST_F(DesktopTest, AnAppImageOfTheHomeCanBeRemovedAsItsFile) {
    const std::string path = program("Applications/Foobar-1.2.AppImage");
    userEntry("foobar", "Foobar", path + " %U", "X-AppImage-Version=1.2\n");
    const auto found = find("Foobar");
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
    EXPECT_EQ(find("Foobar")->path, home.path("apps/foobar-2.0"));
    EXPECT_EQ(find("Other")->path, home.path("apps/other"));
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
    EXPECT_EQ(find("Run")->path, inProjects);
    EXPECT_EQ(find("Tool")->path, inBin);
    EXPECT_EQ(find("Solo")->path, inHome);
    EXPECT_EQ(find("Documents")->path, inDocuments);
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
        ASSERT_TRUE(find("One")) << path;
        EXPECT_EQ(find("One")->path, file);
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
        ASSERT_TRUE(find("One")) << path;
        EXPECT_EQ(find("One")->path, home.path(folder));
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

TEST_F(DesktopTest, WhatAPackageHasInstalledIsAnApplicationLikeOthers) {
    systemEntry("sleeper", "Sleeper", "/bin/sleep 1");
    const auto found = find("Sleeper");
    ASSERT_TRUE(found);
    EXPECT_FALSE(found->apple);
    EXPECT_EQ(found->path, disk.path("usr/share/applications/sleeper.desktop"));
}

TEST_F(DesktopTest, OnlyThePartsOfADesktopCameWithTheSystem) {
    systemEntry("org.gnome.Nautilus", "Files", "/bin/sleep 2");
    userEntry("thunar", "My Thunar", program("Applications/Thunar/thunar"));
    EXPECT_TRUE(find("Files")->apple);
    EXPECT_FALSE(find("My Thunar")->apple) << "the user's own";
}

TEST_F(DesktopTest, FlatpaksAndSnapsComeFromAStore) {
    home.folder(".local/share/flatpak/app/org.acme.Mine");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", "/bin/true run org.acme.Mine", "X-Flatpak=org.acme.Mine\n");
    entry(disk.path("flatpak/share/applications/org.acme.All.desktop"), "All", "/bin/true",
          "X-Flatpak=org.acme.All\n");
    entry(disk.path("snapd/desktop/applications/foo_foo.desktop"), "Snapped", "/bin/true",
          "X-SnapInstanceName=foo\n");
    EXPECT_TRUE(find("Mine")->store && find("All")->store && find("Snapped")->store);
    EXPECT_EQ(find("Mine")->path, home.path(".local/share/flatpak/app/org.acme.Mine"));
    EXPECT_EQ(find("Mine")->bid, "org.acme.Mine");
    EXPECT_EQ(find("All")->path, disk.path("flatpak/share/applications/org.acme.All.desktop"));
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

TEST_F(DesktopTest, EveryEntryIsAnApplicationWhateverProgramItSharesWithOthers) {
    systemEntry("office", "Office", "/bin/sleep");
    systemEntry("office-calc", "Office Calc", "/bin/sleep --calc");
    systemEntry("one", "One", "sh -c one");
    systemEntry("two", "Two", "sh -c two");
    // As browsers, Steam, Wine and Distrobox write them for what they start.
    userEntry("chrome-abc-Default", "Web App", "/bin/cat --profile-directory=Default --app-id=abc");
    userEntry("chrome-def-Default", "Web App 2", "/bin/cat --profile-directory=Default --app-id=d");
    userEntry("Some Game", "Some Game", "/bin/tee steam://rungameid/4000");
    userEntry("Other Game", "Other Game", "/bin/tee steam://rungameid/4001");
    const std::string box = program(".local/bin/distrobox-enter");
    userEntry("box-editor", "Editor in a box", box + " -n box -- editor %F");
    userEntry("box-player", "Player in a box", box + " -n box -- player");
    EXPECT_THAT(listedNames(),
                ElementsAre("Editor in a box", "Office", "Office Calc", "One", "Other Game",
                            "Player in a box", "Some Game", "Two", "Web App", "Web App 2"));
    for (const AppEntry& entry : apps.listApps())
        EXPECT_NE(entry.path, box) << entry.name << ": what all of them share goes with none";
}

// The form of the file's path is Wine's own (share/applications/wine/Programs/...).
TEST_F(DesktopTest, EntriesInFoldersOfFoldersAreListedByTheirStandardId) {
    entry(home.path(".local/share/applications/wine/Programs/Maker/Tool.desktop"), "Tool",
          "env WINEPREFIX=/home/me/.wine /bin/sh 'C:\\\\Tool.exe'");
    entry(disk.path("usr/share/applications/kde/foo.desktop"), "Foo", "/bin/sleep");
    entry(disk.path("usr/share/applications/kde-foo.desktop"), "Foo again", "/bin/sleep");
    ASSERT_TRUE(find("Tool"));
    EXPECT_EQ(find("Tool")->bid, "wine-Programs-Maker-Tool");
    EXPECT_NE(find("Foo").has_value(), find("Foo again").has_value()) << "one id, one entry";
    // The user's file of that id stands before both.
    userEntry("kde-foo", "Mine", "/bin/sleep", "Hidden=true\n");
    EXPECT_THAT(listedNames(), ElementsAre("Tool"));
}

TEST_F(DesktopTest, AFolderOfEntriesThatLeadsIntoItselfIsReadOnce) {
    systemEntry("a", "A", "/bin/sleep");
    std::filesystem::create_directory_symlink(".", disk.path("usr/share/applications/again"));
    EXPECT_THAT(listedNames(), ElementsAre("A"));
}

TEST_F(DesktopTest, OneOfTheEntriesOfAProgramOfTheHomeIsTheProgramAndTheOthersAreThemselves) {
    const std::string path = program("apps/foobar/foobar");
    userEntry("foobar-page", "Foobar Page", path + " --app=https://example.com");
    userEntry("foobar", "Foobar", path + " %U");
    userEntry("foobar-handler", "Foobar Handler", path + " %u");
    EXPECT_THAT(listedNames(), ElementsAre("Foobar", "Foobar Page"));
    EXPECT_EQ(find("Foobar")->path, home.path("apps/foobar"));
    EXPECT_EQ(find("Foobar Page")->path,
              home.path(".local/share/applications/foobar-page.desktop"));
    auto& process = machine.running.add({.executable = path});
    EXPECT_TRUE(find("Foobar")->running);
    EXPECT_FALSE(find("Foobar Page")->running);
    EXPECT_EQ(remover.quitApp(*find("Foobar Page")), 0);
    EXPECT_FALSE(process.terminated);
    EXPECT_EQ(remover.quitApp(*find("Foobar")), 1);
}

TEST_F(DesktopTest, SeveralEntriesOfAUsersFlatpakAreOneApplication) {
    home.folder(".local/share/flatpak/app/org.acme.Office");
    for (const char* part : {"", ".calc", ".writer"}) {
        entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Office" +
                        std::string(part) + ".desktop"),
              "Office" + std::string(part), "/bin/true run org.acme.Office",
              "X-Flatpak=org.acme.Office\n");
    }
    EXPECT_THAT(listedNames(), ElementsAre("Office"));
    EXPECT_EQ(find("Office")->path, home.path(".local/share/flatpak/app/org.acme.Office"));
    EXPECT_EQ(find("Office")->exec, "") << "flatpak itself is not the application";
}

TEST_F(DesktopTest, AnAppImageWithoutAnEntryIsListedByItsPath) {
    const std::string first = program("Applications/Foo_Bar-1.2.3-x86_64.AppImage");
    const std::string second = program("Downloads/obsidian-v1.5.appimage");
    const std::string third = program(".local/bin/nvim.appimage");
    const std::string listedOne = program("Applications/Known.AppImage");
    userEntry("known", "Known", listedOne + " %U");
    home.link("Applications/link.AppImage", "Known.AppImage");
    home.folder("Applications/Folder.AppImage");
    program("Applications/deeper/Deep.AppImage");
    program("Applications/Velto-1.0.AppImage");
    EXPECT_THAT(listedNames(), ElementsAre("Foo_Bar", "Known", "nvim", "obsidian"));
    const auto found = apps.readApp(first);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->bid, first);
    EXPECT_EQ(found->version, "1.2.3");
    EXPECT_FALSE(found->apple || found->store || found->running);
    machine.running.add({.executable = first});
    EXPECT_TRUE(apps.readApp(first)->running);
    EXPECT_FALSE(apps.readApp(second)->running);
    EXPECT_EQ(remover.uninstall(*apps.readApp(first), {first}).removed, 1);
    EXPECT_FALSE(isThere(first));
    EXPECT_TRUE(isThere(second) && isThere(third));
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
    machine.platform.icons = std::make_unique<LinuxIcons>(*machine.platform.files, iconWorker,
                                                          machine.platform.layout.desktopEntries);
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", path, "Icon=foobar\n");
    EXPECT_EQ(apps.iconDataURL(find("Foobar")->path, 32), std::nullopt);
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
