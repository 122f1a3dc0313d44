#include "uninstall/kept_places.h"

#include <gmock/gmock.h>

#include <map>

#include "RealNames.h"
#include "uninstall/common_words.h"
#include "uninstall/desktop_leftovers.h"
#include "uninstall/removal_rules.h"

namespace velto {
namespace {

using Leftovers::Candidate;
using Leftovers::Conf;
using testing::IsEmpty;

const HomeLayout linuxHome = HomeLayout::freedesktop(
    "/home/ana", [](const std::string&) { return std::nullopt; }, "");

std::vector<Candidate> namedBy(const AppEntry& entry) {
    auto candidates =
        Leftovers::buildCandidates(entry.bid, entry.name, entry.exec, "", "", linuxHome);
    const auto hidden = Leftovers::dotFolders(entry, linuxHome);
    candidates.insert(candidates.end(), hidden.begin(), hidden.end());
    return candidates;
}

std::vector<AppEntry> allApplications() {
    auto all = realApplications();
    const auto more = misleadingApplications();
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

/// The whole identifier, from the beginning of the name on.
bool carries(const std::string& path, const std::string& identifier) {
    std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    if (name.starts_with('.')) name.remove_prefix(1);
    return name == identifier || name.starts_with(identifier + ".");
}

TEST(KeptPlaces, TheTablesOfTheseTestsAreLargeEnough) {
    EXPECT_GE(realApplications().size(), 300u);
    EXPECT_GE(realFolders(linuxHome).size(), 150u);
}

TEST(KeptPlaces, EveryRowHasAPlaceAndAReason) {
    for (const KeptPlace& row : keptPlaces()) {
        EXPECT_FALSE(row.why.empty()) << row.names;
        EXPECT_FALSE(row.names.starts_with('/') || row.names.ends_with('/')) << row.names;
        EXPECT_EQ(row.extent == KeptPlace::Extent::profile, !row.owners.empty()) << row.names;
    }
}

TEST(KeptPlaces, NoRealApplicationIsOfferedWhatNobodyMayLose) {
    std::map<std::string, RealFolder> folders;
    for (const RealFolder& folder : realFolders(linuxHome))
        folders.emplace(folder.path, folder);
    std::vector<std::string> wrong;
    int certain = 0;
    for (const AppEntry& entry : allApplications()) {
        for (const Candidate& candidate : namedBy(entry)) {
            const bool isCertain = candidate.conf == Conf::certain;
            if (isCertain && !carries(candidate.path, entry.bid)) wrong.push_back(candidate.path);
            const auto found = folders.find(candidate.path);
            if (found == folders.end()) continue;
            const RealFolder& folder = found->second;
            certain += isCertain ? 1 : 0;
            if (folder.isProtected() || (isCertain && folder.of != entry.bid)) {
                wrong.push_back(entry.bid + " -> " + candidate.path +
                                (isCertain ? " (certain)" : ""));
            }
        }
    }
    EXPECT_THAT(wrong, IsEmpty());
    EXPECT_GE(certain, 40) << "an application's own folders are certain";
}

TEST(KeptPlaces, NoRuleOfRemovalLetsThemGo) {
    for (const RealFolder& folder : realFolders(linuxHome)) {
        if (!folder.isProtected()) continue;
        EXPECT_FALSE(isSafeToRemove(folder.path, "/home/ana/apps/foo", linuxHome)) << folder.path;
        EXPECT_TRUE(isProtectedPlace(folder.path, linuxHome)) << folder.path;
    }
    for (const char* path :
         {".local/share/keyrings/login.keyring", ".local/share/evolution/mail/local",
          ".local/share/FONTS", ".config/dconf/user", ".mozilla/extensions", "Mail/inbox",
          ".local/share/flatpak/repo", ".local/share/flatpak/exports/share",
          ".var/app/org.mozilla.Thunderbird/.thunderbird", "snap/thunderbird/common"}) {
        const std::string place = std::string("/home/ana/") + path;
        EXPECT_FALSE(isSafeToRemove(place, "", linuxHome)) << path;
        EXPECT_TRUE(isProtectedPlace(place, linuxHome)) << path;
    }
}

TEST(KeptPlaces, WhatApplicationsPutIntoSharedFoldersMayGo) {
    for (const char* path :
         {".local/share/applications/foo.desktop", ".local/share/icons/hicolor/48x48/apps/foo.png",
          ".local/share/mime/packages/foo.xml", ".local/share/metainfo/foo.metainfo.xml",
          ".local/share/dbus-1/services/foo.service", ".config/autostart/foo.desktop",
          ".config/systemd/user/foo.service", ".config/JetBrains/IdeaIC2023.1",
          ".local/share/flatpak/app/org.foo.Bar", "snap/foo", ".cargo/bin/foo", ".local/opt/foo"}) {
        EXPECT_TRUE(isSafeToRemove(std::string("/home/ana/") + path, "", linuxHome)) << path;
    }
    for (const char* path : {".cargo/bin", ".local/opt", ".cargo/registry", "snap", ".opt"}) {
        EXPECT_FALSE(isSafeToRemove(std::string("/home/ana/") + path, "", linuxHome)) << path;
    }
}

TEST(KeptPlaces, AProfileGoesWithItsOwnBrowserAlone) {
    const std::string chromium = "/home/ana/.config/chromium";
    EXPECT_FALSE(isKept(chromium, linuxHome, "chromium"));
    EXPECT_FALSE(isKept(chromium + "/Default", linuxHome, "org.chromium.Chromium"));
    for (const char* other :
         {"", "chromiu", "Chromium", "chromium-app", "google-chrome", "firefox"})
        EXPECT_TRUE(isKept(chromium, linuxHome, other)) << other;
    EXPECT_TRUE(isKept("/home/ana/.mozilla", linuxHome, "firefox"));
    EXPECT_FALSE(isKept("/home/ana/.mozilla/firefox", linuxHome, "firefox"));
    for (const Candidate& candidate :
         namedBy({.bid = "chromium", .name = "Chromium", .exec = "chromium"})) {
        if (isProfile(candidate.path, linuxHome)) {
            EXPECT_EQ(candidate.conf, Conf::possible) << candidate.path;
        }
    }
    // A web application is started by the browser's program and is not the browser.
    for (const Candidate& candidate :
         namedBy({.bid = "webapp-mail", .name = "Chromium", .exec = "chromium"})) {
        EXPECT_NE(candidate.path, chromium);
    }
}

TEST(KeptPlaces, WhatHoldsAKeptPlaceIsKept) {
    EXPECT_TRUE(isKeptFromAll("/home/ana/.mozilla", linuxHome));
    EXPECT_TRUE(isKeptFromAll("/home/ana/.config", linuxHome));
    EXPECT_TRUE(isKeptFromAll("/home", linuxHome));
    EXPECT_FALSE(isKeptFromAll("/home/ana/.config/foo", linuxHome));
    EXPECT_FALSE(isKeptFromAll("/home/ana/.local/share/keyrings-backup", linuxHome));
}

TEST(KeptPlaces, AMacsHomeHasRulesOfItsOwn) {
    const HomeLayout mac = HomeLayout::macOS("/Users/ana");
    EXPECT_FALSE(isKeptFromAll("/Users/ana/.config/dconf", mac));
    EXPECT_FALSE(isKept("/Users/ana/.mozilla", mac, ""));
    EXPECT_EQ(keptPlaceOf("/Users/ana/.ssh", mac).row, nullptr);
}

TEST(KeptPlaces, FoldersThatTheUserHasMovedAreKeptWhereTheyAre) {
    const HomeLayout moved = HomeLayout::freedesktop(
        "/home/ana",
        [](const std::string& name) -> std::optional<std::string> {
            if (name == "XDG_DATA_HOME") return "/home/ana/data";
            return std::nullopt;
        },
        "");
    EXPECT_FALSE(isSafeToRemove("/home/ana/data/keyrings", "", moved));
    EXPECT_TRUE(isSafeToRemove("/home/ana/data/foo", "", moved));
}

TEST(CommonWords, SayWhatSomethingIsAndNotWhose) {
    for (const char* word : {"Calendar", "mail", "FONTS", "Files", "Music", "keyrings"})
        EXPECT_TRUE(isCommonWord(word)) << word;
    for (const char* word : {"Harbour", "gimp", "", "calendars-of-ana"})
        EXPECT_FALSE(isCommonWord(word)) << word;
    EXPECT_TRUE(isOwnIdentifier("org.gnome.Calendar"));
    EXPECT_TRUE(isOwnIdentifier("geany"));
    for (const char* identifier : {"calendar", "Mail", "..", "", "a/b", ".x", "ab"})
        EXPECT_FALSE(isOwnIdentifier(identifier)) << identifier;
}

}  // namespace
}  // namespace velto
