// What goes when an application goes whose program lies in the home, and whether it can.

#include "uninstall/removable_path.h"

#include <gmock/gmock.h>

#include "DesktopWorld.h"
#include "uninstall/app_removal.h"

namespace velto {
namespace {

class RemovablePath : public testing::Test, protected DesktopWorld {
protected:
    /// Below the home.
    std::string pathOf(const std::string& file, const std::string& name, const std::string& id) {
        userProgram(id, name, program(file));
        const std::string path = listed(name).path;
        std::filesystem::remove(home.path(".local/share/applications/" + id + ".desktop"));
        return path.substr(home.path().size() + 1);
    }
    AppRemoval removalOf(const AppEntry& entry) {
        return appRemoval(machine.platform, apps, entry).value();
    }
};

TEST_F(RemovablePath, AFolderThatIsRecognisablyTheApplicationsGoesAsAWhole) {
    const struct {
        const char *file, *name, *id, *path;
    } rows[] = {
        {"apps/VSCode-linux-x64/code", "Visual Studio Code", "code", "apps/VSCode-linux-x64"},
        {"Apps/android-studio/bin/studio.sh", "Android Studio", "jetbrains-studio",
         "Apps/android-studio"},
        {".local/share/JetBrains/Toolbox/apps/IDEA-U/ch-0/231.8109.175/bin/idea.sh",
         "IntelliJ IDEA Ultimate", "jetbrains-idea", ".local/share/JetBrains/Toolbox/apps/IDEA-U"},
        {".local/share/JetBrains/Toolbox/apps/intellij-idea-ultimate/bin/idea",
         "IntelliJ IDEA 2024.1", "jetbrains-idea-1",
         ".local/share/JetBrains/Toolbox/apps/intellij-idea-ultimate"},
        {"opt/pycharm-community-2023.1/bin/pycharm.sh", "PyCharm", "jetbrains-pycharm",
         "opt/pycharm-community-2023.1"},
        {"apps/blender-4.1.0-linux-x64/blender", "Blender", "blender",
         "apps/blender-4.1.0-linux-x64"},
        {"apps/tor-browser/Browser/start-tor-browser", "Tor Browser", "torbrowser",
         "apps/tor-browser"},
        {"apps/Zettel Box/bin/run", "Zettel Box", "zettel", "apps/Zettel Box"},
        {"apps/zettelbox-1.2/lib/zb/start", "Z", "org.acme.Zettelbox", ""},
        {".local/opt/foobar/foobar", "Foobar", "foobar", ".local/opt/foobar"},
        {".local/share/pipx/venvs/foobar/bin/foobar", "Foobar 2", "foobar2",
         ".local/share/pipx/venvs/foobar"},
    };
    for (const auto& [file, name, id, path] : rows)
        EXPECT_EQ(pathOf(file, name, id), *path == '\0' ? file : path) << file;
}

TEST_F(RemovablePath, AFolderThatMayBeMoreGoesNotAtAll) {
    home.folder("foobar-project/.git");
    home.folder("Zettel Box");
    const struct {
        const char *file, *name, *id;
    } rows[] = {
        {"foobar-project/foobar", "Foobar", "foobar"},  // the user's own work
        {"code/code", "Visual Studio Code", "code"},    // where people keep their sources
        {"code/bin/code", "Visual Studio Code", "code"},
        {"notes/start.sh", "Notes", "notes"},             // where people keep their notes
        {"Zettel Box/start.sh", "Zettel Box", "zettel"},  // documents, as far as one can tell
        {".cargo/bin/foobar", "Foobar", "foobar"},
        {".local/bin/foobar", "Foobar", "foobar"},
        {".local/lib/foobar", "Foobar", "foobar"},
        {".local/share/JetBrains/Toolbox/bin/jetbrains-toolbox", "JetBrains Toolbox",
         "jetbrains-toolbox"},
        {"Documents/documents", "Documents", "documents"},
        {".local/share/evolution/evolution", "Evolution", "evolution"},
    };
    for (const auto& [file, name, id] : rows)
        EXPECT_EQ(pathOf(file, name, id), file) << file;
}

TEST_F(RemovablePath, ProgramsInTheUsersOwnHiddenFoldersCanBeRemoved) {
    for (const char* file : {".cargo/bin/foobar", ".local/opt/foobar/foobar",
                             ".local/lib/foobar/foobar", ".npm-global/foobar/foobar"}) {
        userProgram("foobar", "Foobar", program(file));
        home.text(".cargo/registry/x", "x");
        const AppEntry entry = listed("Foobar");
        EXPECT_EQ(removalOf(entry).stays, "") << file;
        EXPECT_EQ(remover.uninstall(entry, {entry.path}).removed, 1) << file;
        EXPECT_FALSE(home.exists(file)) << file;
        EXPECT_TRUE(home.exists(".cargo/registry/x"));
    }
}

TEST_F(RemovablePath, WhatOneProgramFileLeavesAroundItIsKnown) {
    userProgram("run", "Run", program("apps/thing/run"));
    EXPECT_EQ(removalOf(listed("Run")), AppRemoval{}) << "nothing else is in the folder";
    home.text("apps/thing/data", "x");
    EXPECT_EQ(removalOf(listed("Run")),
              (AppRemoval{.stays = "", .folder = home.path("apps/thing")}));
    for (const char* file : {"apps/thing/Run.AppImage", ".local/bin/tool", "Applications/tool",
                             ".cargo/bin/tool", "tool", "Downloads/tool"}) {
        program(".local/bin/other");
        userProgram("run", "Run", program(file));
        EXPECT_EQ(removalOf(listed("Run")), AppRemoval{}) << file;
    }
}

TEST_F(RemovablePath, WhyAnApplicationStaysIsKnownBeforehand) {
    entry(disk.path("usr/share/applications/sleeper.desktop"), "Sleeper", "/bin/sleep 1");
    EXPECT_EQ(removalOf(listed("Sleeper")).stays, "admin");
    entry(disk.path("flatpak/share/applications/org.acme.All.desktop"), "All", "/bin/true",
          "X-Flatpak=org.acme.All\n");
    EXPECT_EQ(removalOf(listed("All")).stays, "admin");
    const std::string elsewhere = disk.path("opt/foobar/foobar");
    put(elsewhere, "#!/bin/sh\n");
    chmod(elsewhere.c_str(), 0755);
    userProgram("foobar", "Foobar", elsewhere);
    EXPECT_EQ(removalOf(listed("Foobar")).stays, "admin");
    entry(home.path(".local/share/applications/page.desktop"), "Page",
          program("apps/java") + " -jar page.jar");
    EXPECT_EQ(removalOf(listed("Page")).stays, "entry");
    userProgram("keys", "Keys", program(".ssh/bin/keys"));
    EXPECT_EQ(removalOf(listed("Keys")).stays, "protected");
    const AppEntry shared{.bid = "x", .name = "X", .path = home.folder(".local/opt")};
    EXPECT_EQ(removalOf(shared).stays, "shared");
    userProgram("own", "Own", program("apps/own/own"));
    EXPECT_EQ(removalOf(listed("Own")), AppRemoval{});
    home.folder(".local/share/flatpak/app/org.acme.Mine");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", "/bin/true", "X-Flatpak=org.acme.Mine\n");
    EXPECT_EQ(removalOf(listed("Mine")), AppRemoval{});
}

TEST_F(RemovablePath, OnAMacsHomeNothingIsSaidOfIt) {
    machine.platform.layout = HomeLayout::macOS(home.path());
    EXPECT_EQ(appRemoval(machine.platform, apps, {.bid = "x", .path = "/Applications/X.app"}),
              std::nullopt);
}

}  // namespace
}  // namespace velto
