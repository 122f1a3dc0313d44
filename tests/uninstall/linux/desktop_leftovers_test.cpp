// What applications of a Linux home leave behind, in made homes.

#include "uninstall/desktop_leftovers.h"

#include <gmock/gmock.h>

#include "DesktopWorld.h"

namespace velto {
namespace {

using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

class DesktopLeftovers : public testing::Test, protected DesktopWorld {
protected:
    AppEntry foobar(const std::string& id = "org.acme.Foobar") {
        userProgram(id, "Foobar", program("apps/foobar/foobar"));
        return listed("Foobar");
    }
};

TEST_F(DesktopLeftovers, WhatIsRegisteredUnderItsIdentifierIsCertain) {
    const AppEntry entry = foobar();
    const std::string data = ".local/share/";
    const std::vector<std::string> own{
        ".config/org.acme.Foobar/x",
        ".config/autostart/org.acme.Foobar.desktop",
        ".config/systemd/user/org.acme.Foobar.service",
        ".config/systemd/user/org.acme.Foobar.socket",
        data + "dbus-1/services/org.acme.Foobar.service",
        data + "metainfo/org.acme.Foobar.metainfo.xml",
        data + "appdata/org.acme.Foobar.appdata.xml",
        data + "mime/packages/org.acme.Foobar.xml",
        data + "icons/org.acme.Foobar.xpm",
        data + "icons/hicolor/48x48/apps/org.acme.Foobar.png",
        data + "icons/hicolor/symbolic/apps/org.acme.Foobar-symbolic.svg",
        ".org.acme.Foobar/x"};
    for (const std::string& path : own)
        home.text(path, "x");
    // Of others: an identifier that begins so, and the picture of a theme that the user has chosen.
    for (const char* path :
         {"icons/hicolor/48x48/apps/org.acme.Foobar.Beta.png",
          "icons/hicolor/48x48/apps/org.acme.Foobarista.png",
          "icons/Chosen/48x48/apps/org.acme.Foobar.png", "icons/Chosen/index.theme"})
        home.text(data + path, "x");
    std::vector<std::string> expected{data + "applications/org.acme.Foobar.desktop"};
    for (const std::string& path : own)
        expected.push_back(path.ends_with("/x") ? path.substr(0, path.size() - 2) : path);
    EXPECT_THAT(leftoversOf(entry, "certain"), testing::UnorderedElementsAreArray(expected));
    EXPECT_THAT(leftoversOf(entry, "possible"), IsEmpty());
}

TEST_F(DesktopLeftovers, CommandsThatLeadIntoTheApplicationAreAPartOfIt) {
    const AppEntry entry = foobar();
    ASSERT_EQ(entry.path, home.path("apps/foobar"));
    program(".local/bin/other");
    home.link(".local/bin/foobar", home.path("apps/foobar/foobar"));
    home.link(".local/bin/elsewhere", program("apps/other/tool"));
    home.link(".local/bin/nowhere", home.path("apps/foobar/gone"));
    EXPECT_THAT(leftoversOf(entry, "certain"),
                UnorderedElementsAre(".local/share/applications/org.acme.Foobar.desktop",
                                     ".local/bin/foobar"));
    const auto analysis = Leftovers::analyze(machine.platform, apps, entry, true);
    EXPECT_TRUE(Leftovers::linkTargets(machine.platform, apps, analysis).empty());
    const auto result = remover.uninstall(entry, {entry.path, home.path(".local/bin/foobar")});
    EXPECT_EQ(result.removed, 2) << "also when what it leads to is gone already";
    EXPECT_TRUE(home.exists(".local/bin/other"));
}

TEST_F(DesktopLeftovers, AHiddenFolderOfTheHomeMayGoWithItsApplicationAlone) {
    const AppEntry entry = foobar("foobar");
    home.text(".foobar/settings", "x");
    home.text(".Foobar/more", "x");
    home.text(".foobarista/settings", "x");
    home.text(".other/settings", "x");
    EXPECT_THAT(leftoversOf(entry, "certain"), Contains(".foobar"));
    EXPECT_THAT(leftoversOf(entry, "possible"), UnorderedElementsAre(".Foobar"));
    const auto result = remover.uninstall(
        entry, {home.path(".foobar"), home.path(".other"), home.path(".foobarista")});
    EXPECT_EQ(result.removed, 1);
    EXPECT_THAT(result.failures,
                testing::ElementsAre(
                    AppRemover::Failure{".other", home.path(".other"), "protected"},
                    AppRemover::Failure{".foobarista", home.path(".foobarista"), "protected"}));
    EXPECT_FALSE(home.exists(".foobar"));
}

TEST_F(DesktopLeftovers, AFileIsNoHiddenFolder) {
    const AppEntry entry = foobar("foobar");
    home.text(".foobar", "a file of settings that somebody wrote");
    EXPECT_THAT(leftoversOf(entry), Not(Contains(".foobar")));
}

TEST_F(DesktopLeftovers, AFlatpakIsNotOfferedFlatpakItself) {
    home.folder(".local/share/flatpak/app/org.acme.Mine");
    home.text(".local/share/flatpak/repo/config", "x");
    home.text(".cache/flatpak/x", "x");
    home.text(".var/app/org.acme.Mine/config/x", "x");
    // The very program that Flatpak's own entries start.
    const std::string flatpak = program("usr/bin/flatpak");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", flatpak + " run --command=mine org.acme.Mine", "X-Flatpak=org.acme.Mine\n");
    const AppEntry mine = listed("Mine");
    EXPECT_EQ(mine.exec, "");
    EXPECT_THAT(leftoversOf(mine), UnorderedElementsAre(".var/app/org.acme.Mine"));
    EXPECT_THAT(leftoversOf(mine, "certain"), UnorderedElementsAre(".var/app/org.acme.Mine"));
}

TEST_F(DesktopLeftovers, ASnapLeavesItsFolder) {
    home.text("snap/foo/current/x", "x");
    home.text("snap/other/current/x", "x");
    entry(disk.path("snapd/desktop/applications/foo_bar.desktop"), "Snapped", "/bin/true",
          "X-SnapInstanceName=foo\n");
    EXPECT_THAT(leftoversOf(listed("Snapped")), UnorderedElementsAre("snap/foo"));
    EXPECT_THAT(leftoversOf({.bid = "foo_bar", .name = "Other", .path = home.path("x.desktop")}),
                IsEmpty());
}

TEST_F(DesktopLeftovers, WhatIsCalledLikeAPlaceOfOthersIsOfferedNoneOfIt) {
    for (const char* path :
         {".local/share/keyrings/login.keyring", ".local/share/evolution/calendar/x",
          ".local/share/fonts/mine.ttf", ".config/dconf/user", ".local/share/calendar/x",
          ".config/evolution/mail/x", ".cache/evolution/calendar/x", ".mail/inbox", "Mail/inbox",
          ".local/share/flatpak/repo/x", ".local/share/containers/storage/x", ".mozilla/firefox/x",
          ".thunderbird/profile/x", ".local/share/Trash/files/x", ".password-store/x"})
        home.text(path, "x");
    for (const char* name :
         {"Calendar", "Mail", "Fonts", "keyrings", "dconf", "Keyrings", "evolution", "containers",
          "flatpak", "mozilla", "firefox", "thunderbird", "trash", "password-store"}) {
        const AppEntry entry{
            .bid = name, .name = name, .exec = name, .path = home.path("apps/x/x")};
        const auto found = leftoversOf(entry, "certain");
        EXPECT_THAT(found, IsEmpty()) << name;
        EXPECT_THAT(leftoversOf(entry), Each(testing::StrEq(".mozilla/firefox"))) << name;
    }
}

TEST_F(DesktopLeftovers, TheEntryOfAnApplicationIsItsOwnHoweverCommonItsNameIs) {
    home.text(".config/notes/diary", "x");
    userProgram("notes", "Notes", program("apps/scribbler/scribbler"));
    const AppEntry entry = listed("Notes");
    EXPECT_THAT(leftoversOf(entry, "certain"),
                UnorderedElementsAre(".local/share/applications/notes.desktop"));
    EXPECT_THAT(leftoversOf(entry, "possible"), UnorderedElementsAre(".config/notes"));
}

TEST_F(DesktopLeftovers, TheSearchByNameGoesPastHiddenEntriesAndEverySharedFolder) {
    const AppEntry entry = foobar();
    // More folders than the search of a Mac's home opens, and hidden ones among them.
    for (int number = 0; number < 320; ++number)
        home.folder(".cache/a" + std::to_string(number));
    home.folder(".cache/.hidden");
    home.text(".cache/zzz/Foobar/x", "x");
    home.text(".config/JetBrains/foobar/x", "x");
    home.text(".config/foo-bar/x", "x");
    home.text(".local/share/Foobar 2/x", "x");
    home.text(".local/share/foobars/x", "x");
    home.text(".local/share/evolution/foobar/x", "mail of that name");
    EXPECT_THAT(leftoversOf(entry, "possible"),
                UnorderedElementsAre(".cache/zzz/Foobar", ".config/JetBrains/foobar",
                                     ".config/foo-bar", ".local/share/Foobar 2"));
}

TEST_F(DesktopLeftovers, AnotherBrowsersProfileStaysWhateverIsAsked) {
    home.text(".config/chromium/Default/Bookmarks", "x");
    home.text(".config/google-chrome/Default/Bookmarks", "x");
    userProgram("chromium", "Chromium", program("apps/chromium-1/chromium"));
    const AppEntry chromium = listed("Chromium");
    EXPECT_THAT(leftoversOf(chromium, "possible"), UnorderedElementsAre(".config/chromium"));
    const std::string other = home.path(".config/google-chrome/Default");
    const auto result = remover.uninstall(chromium, {other, home.path(".config/chromium")});
    EXPECT_EQ(result.removed, 1);
    EXPECT_THAT(result.failures,
                testing::ElementsAre(AppRemover::Failure{"Default", other, "protected"}));
    EXPECT_TRUE(home.exists(".config/google-chrome/Default/Bookmarks"));
}

TEST_F(DesktopLeftovers, ALinkThatWasChosenIsToldWithWhereItLeads) {
    const AppEntry entry = foobar("foobar");
    home.text("dotfiles/foobar/settings", "x");
    home.folder(".config");
    home.link(".config/foobar", home.path("dotfiles/foobar"));
    const auto analysis = Leftovers::analyze(machine.platform, apps, entry, true);
    const auto targets = Leftovers::linkTargets(machine.platform, apps, analysis);
    ASSERT_EQ(targets.count(home.path(".config/foobar")), 1u);
    EXPECT_EQ(targets.at(home.path(".config/foobar")),
              (LinkTarget{.path = home.path("dotfiles/foobar"), .isKept = true}));
    EXPECT_EQ(remover.uninstall(entry, {home.path(".config/foobar")}).removed, 1);
    EXPECT_EQ(home.read("dotfiles/foobar/settings"), "x");
}

}  // namespace
}  // namespace velto
