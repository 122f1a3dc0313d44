#include "uninstall/left_behind.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "DesktopWorld.h"
#include "cleaning/VeltoTrashService.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr double day = 24 * 60 * 60;

/// A Linux home that an application has left, beside a made system.
class LeftBehindTest : public testing::Test, protected DesktopWorld {
protected:
    LeftBehindTest() {
        const HomeLayout& layout = machine.platform.layout;
        places.programs = {disk.path("usr/bin"), disk.path("opt"), disk.path("snap"),
                           home.path("Applications"), home.path(".local/bin")};
        places.packages = {disk.path("dpkg/info")};
        places.descriptions = {disk.path("usr/share/metainfo"), disk.path("dbus-1/services"),
                               disk.path("schemas"), layout.autostart};
        places.flatpaks = {home.path(".local/share/flatpak"), disk.path("var/lib/flatpak")};
        places.moreFlatpaks = {disk.path("etc/flatpak/installations.d")};
        places.containers = {home.path(".local/share/containers/storage/overlay-containers")};
    }

    /// A folder of data that nothing has changed for so long.
    std::string data(const std::string& below, double days = 90) {
        put(home.path(below + "/file"), std::string(600'000, 'x'));
        const auto seconds = static_cast<time_t>(machine.clock.time - days * day);
        const timespec times[] = {{seconds, 0}, {seconds, 0}};
        utimensat(AT_FDCWD, home.path(below + "/file").c_str(), times, 0);
        utimensat(AT_FDCWD, home.path(below).c_str(), times, 0);
        return home.path(below);
    }
    std::vector<LeftBehind> found() {
        return leftBehind(machine.platform, InstalledNames(machine.platform, places));
    }
    std::vector<std::string> paths() {
        std::vector<std::string> all;
        for (const LeftBehind& item : found())
            all.push_back(item.path);
        return all;
    }
    std::string entry(const std::string& more = "") {
        return "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sleep 1\n" + more;
    }

    InstalledNames::Places places;
};

TEST_F(LeftBehindTest, DataOfApplicationsThatAreGoneIsFoundWithWhatSaysSo) {
    const std::string sandbox = data(".var/app/org.acme.Gone", 1);
    const std::string settings = data(".config/com.example.Gone");
    const std::string browser = data(".cache/google-chrome");
    const auto items = found();
    ASSERT_EQ(items.size(), 3u);
    for (const LeftBehind& item : items) {
        EXPECT_GT(item.gb, 0) << item.path;
        EXPECT_LT(item.last, machine.clock.time);
        if (item.path == sandbox) {
            EXPECT_EQ(item.why, "flatpak");
            EXPECT_EQ(item.identifier, "org.acme.Gone");
        } else if (item.path == settings) {
            EXPECT_EQ(item.why, "identifier");
            EXPECT_EQ(item.identifier, "com.example.Gone");
        } else {
            EXPECT_EQ(item.path, browser);
            EXPECT_EQ(item.why, "package");
            EXPECT_EQ(item.identifier, "google-chrome");
        }
    }
}

/// Everything that can stand on a machine for an application, and the names of its data.
struct Installed {
    const char* what;
    const char* file;     // what says that it is installed: "~/" in the home, else on the disk
    const char* content;  // of that file; "/" makes it a folder
    const char* data;     // below the home
};

const Installed installedInSomeWay[] = {
    {"an entry of the system", "usr/share/applications/org.acme.Foo.desktop", "Exec=/bin/sleep\n",
     ".config/org.acme.Foo"},
    {"an entry in other letters", "usr/share/applications/org.acme.foo.desktop", "",
     ".config/org.acme.Foo"},
    {"a hidden entry", "usr/share/applications/org.acme.Foo.desktop",
     "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sleep\nHidden=true\n",
     ".local/share/org.acme.Foo"},
    {"an entry that is not displayed", "usr/share/applications/org.acme.Foo.desktop",
     "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sleep\nNoDisplay=true\n",
     ".cache/org.acme.Foo"},
    {"an entry of another desktop", "usr/share/applications/org.acme.Foo.desktop",
     "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sleep\nOnlyShowIn=KDE;\n",
     ".cache/org.acme.Foo"},
    {"an entry whose program is not found", "usr/share/applications/org.acme.Foo.desktop",
     "[Desktop Entry]\nType=Application\nName=A\nExec=no-such-program\nTryExec=no-such\n",
     ".cache/org.acme.Foo"},
    {"a broken entry", "usr/share/applications/org.acme.Foo.desktop", "no entry",
     ".cache/org.acme.Foo"},
    {"an entry of the user", "~/.local/share/applications/org.acme.Foo.desktop", "",
     ".cache/org.acme.Foo"},
    {"an entry in subfolders", "usr/share/applications/kde/more/org.acme.Foo.desktop", "",
     ".cache/org.acme.Foo"},
    {"an entry of another name for its windows", "usr/share/applications/foo.desktop",
     "[Desktop Entry]\nType=Application\nName=A\nExec=/bin/sleep\nStartupWMClass=org.acme.Foo\n",
     ".cache/org.acme.Foo"},
    {"an entry of another name with its icon", "usr/share/applications/foo.desktop",
     "[Desktop Entry]\nType = Application\nName = A\nIcon = org.acme.Foo\n", ".cache/org.acme.Foo"},
    {"an entry that starts it", "usr/share/applications/browser.desktop",
     "[Desktop Entry]\nExec=env A=b /x/y/google-chrome-stable %U\n", ".config/google-chrome"},
    {"an entry of a Flatpak", "~/.local/share/flatpak/exports/share/applications/x.desktop",
     "[Desktop Entry]\nX-Flatpak=org.acme.Foo\n", ".var/app/org.acme.Foo"},
    {"a Flatpak of the user", "~/.local/share/flatpak/app/org.acme.Foo", "/",
     ".var/app/org.acme.Foo"},
    {"a Flatpak of all users", "var/lib/flatpak/app/org.acme.Foo", "/", ".var/app/org.acme.Foo"},
    {"a Flatpak that uses the home's folders", "var/lib/flatpak/app/org.acme.Foo", "/",
     ".config/org.acme.Foo"},
    {"a Flatpak of a known package", "var/lib/flatpak/app/com.google.Chrome", "/",
     ".config/google-chrome"},
    {"a runtime", "var/lib/flatpak/runtime/org.acme.Foo", "/", ".var/app/org.acme.Foo"},
    {"a part of a Flatpak", "var/lib/flatpak/app/org.acme.Foo", "/", ".config/org.acme.Foo.Helper"},
    {"a whole of which a part is installed", "usr/share/applications/org.acme.Foo-daemon.desktop",
     "", ".config/org.acme.Foo"},
    {"a Snap", "snap/spotify", "/", ".config/spotify"},
    {"an entry of a Snap", "snapd/desktop/applications/spotify_spotify.desktop",
     "[Desktop Entry]\nX-SnapInstanceName=spotify\nExec=/snap/bin/spotify\n", ".cache/spotify"},
    {"a package", "dpkg/info/google-chrome-stable.list", "", ".config/google-chrome"},
    {"a package of an architecture", "dpkg/info/vlc:amd64.list", "", ".config/vlc"},
    {"a program", "usr/bin/obsidian", "", ".config/obsidian"},
    {"a program of the home", "~/.local/bin/codium", "", ".config/VSCodium"},
    {"a program of the last word", "usr/bin/foo", "", ".config/org.acme.Foo"},
    {"a folder of programs", "opt/Slack", "/", ".config/Slack"},
    {"an AppImage", "~/Applications/Obsidian-1.5.3.AppImage", "", ".config/obsidian"},
    {"a description", "usr/share/metainfo/org.acme.Foo.metainfo.xml", "", ".cache/org.acme.Foo"},
    {"a service", "dbus-1/services/org.acme.Foo.service", "", ".cache/org.acme.Foo"},
    {"a schema", "schemas/org.acme.Foo.gschema.xml", "", ".cache/org.acme.Foo"},
    {"what starts with the session", "~/.config/autostart/org.acme.Foo.desktop", "",
     ".cache/org.acme.Foo"},
};

TEST_F(LeftBehindTest, TheDataOfNothingThatIsInstalledIsListed) {
    for (const Installed& row : installedInSomeWay) {
        const std::string path = data(row.data);
        ASSERT_THAT(paths(), ElementsAre(path)) << row.what << ": the row would prove nothing";
        const std::string name = row.file;
        const std::string file =
            name.starts_with("~/") ? home.path(name.substr(2)) : disk.path(name);
        if (std::string_view(row.content) == "/") {
            std::filesystem::create_directories(file);
        } else {
            put(file, row.content);
        }
        EXPECT_THAT(paths(), IsEmpty()) << row.what;
        std::filesystem::remove_all(file);
        std::filesystem::remove_all(path);
    }
}

TEST_F(LeftBehindTest, FurtherInstallationsOfFlatpakCount) {
    const std::string path = data(".var/app/org.acme.Foo");
    put(disk.path("etc/flatpak/installations.d/extra.conf"),
        "[Installation \"extra\"]\nPath=" + disk.path("extra") + "\nDisplayName=Extra\n");
    EXPECT_THAT(paths(), ElementsAre(path));
    disk.folder("extra/app/org.acme.Foo");
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(LeftBehindTest, WhatRunsIsNotGone) {
    data(".var/app/org.acme.One");
    data(".config/org.acme.Two");
    data(".config/obsidian");
    machine.running.add({.executable = "/app/bin/one", .flatpak = "org.acme.One"});
    machine.running.add({.executable = "/usr/bin/python3", .entry = "org.acme.Two"});
    machine.running.add({.executable = home.path("somewhere/obsidian")});
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(LeftBehindTest, WhereProgramsMayBeThatCannotBeSeenOnlyFlatpaksAreKnownToBeGone) {
    const std::string sandbox = data(".var/app/org.acme.Gone");
    const std::string settings = data(".config/org.acme.Other");
    home.text(".local/share/containers/storage/overlay-containers/containers.lock", "");
    EXPECT_THAT(paths(), UnorderedElementsAre(sandbox, settings));
    home.folder(".local/share/containers/storage/overlay-containers/0a1b2c3d");
    EXPECT_THAT(paths(), ElementsAre(sandbox));
}

TEST_F(LeftBehindTest, WhatHasChangedInTheLastMonthIsInUseByWhateverItIs) {
    data(".config/org.acme.Used", 29);
    data(".config/obsidian", 29);
    data(".config/org.acme.Inside");
    put(home.path(".config/org.acme.Inside/new"), "x");
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_THAT((data(".config/org.acme.Old", 31), paths()),
                ElementsAre(home.path(".config/org.acme.Old")));
}

TEST_F(LeftBehindTest, NamesThatAreNoIdentifiersAndFoldersOfDesktopsStay) {
    for (const char* name :
         {".config/old.backup.folder", ".config/my.settings", ".config/org.acme", ".config/foo",
          ".config/org.gnome.Thing", ".local/share/org.kde.syntax-highlighting",
          ".cache/org.freedesktop.Thing", ".config/com..x", ".config/org.1acme.Foo", ".var/app/old",
          ".var/app/org.acme", ".local/share/Velto/x", ".config/autostart/x"}) {
        data(name);
    }
    put(home.path(".config/org.acme.File"), "a file");
    data("elsewhere");
    home.link(".config/org.acme.Link", "../elsewhere");
    home.link(".var/app/org.acme.Link", "../../elsewhere");
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(LeftBehindTest, WhereFlatpakCannotBeLookedAtNothingIsSaidToBeGone) {
    data(".var/app/org.acme.Gone");
    data(".config/org.acme.Other");
    // A file in the place of the folder of further installations tells as much as none.
    home.folder(".local/share/flatpak/app");
    ASSERT_EQ(paths().size(), 2u);
    home.link("loop", "loop");
    std::filesystem::remove_all(home.path(".local/share/flatpak/app"));
    home.link(".local/share/flatpak/app", home.path("loop"));
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(LeftBehindTest, AllThatIsOfferedGoesToTheTrashAndComesBack) {
    for (const char* name : {".var/app/org.acme.Gone", ".config/org.acme.Other", ".cache/spotify"})
        data(name);
    const std::vector<std::string> offered = paths();
    ASSERT_EQ(offered.size(), 3u);
    const Platform& platform = machine.platform;
    VeltoTrashService trash{*platform.files, *platform.mover, machine.clock, machine.log,
                            platform.layout};
    const std::string operation = trash.moveToTrash(offered, "wind").id;
    EXPECT_THAT(paths(), IsEmpty());
    for (const std::string& path : offered)
        EXPECT_FALSE(isThere(path));
    trash.undoOperation(operation);
    EXPECT_EQ(paths(), offered);
}

TEST_F(LeftBehindTest, AMacsHomeHasNone) {
    machine.platform.layout = HomeLayout::macOS(home.path());
    data(".config/org.acme.Gone");
    EXPECT_THAT(paths(), IsEmpty());
}

}  // namespace
}  // namespace velto
