#include "platform/HomeLayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace velto {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

HomeLayout::Environment environmentOf(std::map<std::string, std::string> values) {
    return [values = std::move(values)](const std::string& name) -> std::optional<std::string> {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
}

TEST(HomeLayoutTest, AMacsHomeIsWhereAMacKeepsThings) {
    const HomeLayout layout = HomeLayout::macOS("/Users/ana");
    EXPECT_EQ(layout.dataFolder, "/Users/ana/Library/Application Support/Velto");
    EXPECT_EQ(layout.trashFolder, "/Users/ana/Library/Application Support/Velto/Trash");
    EXPECT_EQ(layout.agentFile, "/Users/ana/Library/LaunchAgents/app.velto.maintenance.plist");
    EXPECT_EQ(layout.cloudFolder, "/Users/ana/Library/Mobile Documents/com~apple~CloudDocs/Velto");
    EXPECT_TRUE(layout.hasPrivacyGate);
    EXPECT_EQ(layout.caches, "/Users/ana/Library/Caches");
    EXPECT_THAT(layout.xcodeApplications,
                ElementsAre("/Users/ana/Applications/Xcode.app", "/Applications/Xcode.app"));
    EXPECT_EQ(layout.xcodeDerivedData, "/Users/ana/Library/Developer/Xcode/DerivedData");
    EXPECT_EQ(layout.xcodeDeviceSupport, "/Users/ana/Library/Developer/Xcode/iOS DeviceSupport");
    EXPECT_THAT(layout.installerExtensions, ElementsAre("dmg", "pkg"));
    EXPECT_THAT(layout.walkRoots, ElementsAre("/Users/ana"));
}

/// The paths below a Mac's home, one a line as a person would read them out.
std::vector<std::string> belowHome(std::initializer_list<const char*> paths) {
    std::vector<std::string> found;
    for (const char* path : paths)
        found.push_back(std::string("/Users/ana/") + path);
    return found;
}

TEST(HomeLayoutTest, EveryPlaceThatAMacOpensOnlyWithAccessIsKnownByNameAndPath) {
    std::vector<std::string> found;
    for (const auto& [identifier, path] : HomeLayout::macOS("/Users/ana").protectedLocations)
        found.push_back(identifier + " " + path);
    EXPECT_THAT(
        found,
        ElementsAre("desktop /Users/ana/Desktop", "documents /Users/ana/Documents",
                    "downloads /Users/ana/Downloads",
                    "photos /Users/ana/Pictures/Photos Library.photoslibrary",
                    "icloud /Users/ana/Library/Mobile Documents", "mail /Users/ana/Library/Mail",
                    "messages /Users/ana/Library/Messages", "safari /Users/ana/Library/Safari",
                    "calendars /Users/ana/Library/Calendars",
                    "contacts /Users/ana/Library/Address Book",
                    "iphone /Users/ana/Library/Application Support/MobileSync"));
}

TEST(HomeLayoutTest, EveryPathThatAMacGuardsIsKnown) {
    EXPECT_EQ(HomeLayout::macOS("/Users/ana").guardedPaths,
              belowHome({".Trash",
                         "Library/Accounts",
                         "Library/AppleMediaServices",
                         "Library/Assistant",
                         "Library/Autosave Information",
                         "Library/Biome",
                         "Library/ContainerManager",
                         "Library/Containers",
                         "Library/Cookies",
                         "Library/CoreFollowUp",
                         "Library/Daemon Containers",
                         "Library/DoNotDisturb",
                         "Library/DuetExpertCenter",
                         "Library/Group Containers",
                         "Library/HTTPStorages",
                         "Library/HomeKit",
                         "Library/Metadata",
                         "Library/PersonalizationPortrait",
                         "Library/Photos",
                         "Library/StatusKit",
                         "Library/WebKit",
                         "Library/Application Support/AddressBook",
                         "Library/Application Support/CallHistoryDB",
                         "Library/Application Support/CallHistoryTransactions",
                         "Library/Application Support/CloudDocs",
                         "Library/Application Support/DifferentialPrivacy",
                         "Library/Application Support/FaceTime",
                         "Library/Application Support/FileProvider",
                         "Library/Application Support/Knowledge",
                         "Library/Application Support/com.apple.avfoundation",
                         "Library/Application Support/com.apple.sharedfilelist",
                         "Library/Application Support/com.apple.TCC",
                         "Library/Caches/CloudKit",
                         "Library/Caches/FamilyCircle",
                         "Library/Caches/com.apple.HomeKit",
                         "Library/Caches/com.apple.Safari",
                         "Library/Caches/com.apple.ap.adprivacyd",
                         "Library/Caches/com.apple.containermanagerd",
                         "Library/Caches/com.apple.homed",
                         "Library/Caches/familycircled",
                         "Library/CloudStorage"}));
}

TEST(HomeLayoutTest, TheProbesOfTheAccessAreTriedInTheirOrder) {
    EXPECT_EQ(HomeLayout::macOS("/Users/ana").accessProbes,
              belowHome({"Library/Application Support/com.apple.TCC", "Library/Safari",
                         "Library/Mail", "Library/Messages", "Library/Cookies", "Library/HomeKit",
                         "Library/IdentityServices"}));
}

TEST(HomeLayoutTest, ALinuxHomeFollowsItsLocalisedFolders) {
    const HomeLayout layout = HomeLayout::freedesktop("/home/ana", environmentOf({}),
                                                      "# comment\n"
                                                      "XDG_DOWNLOAD_DIR=\"$HOME/Descargas\"\n"
                                                      "  XDG_MUSIC_DIR=\"/media/disc/M\\\"sica/\"\n"
                                                      "XDG_DESKTOP_DIR=\"$HOME/\"\n"
                                                      "XDG_PICTURES_DIR=relative\n"
                                                      "broken");
    EXPECT_EQ(layout.downloads, "/home/ana/Descargas");
    EXPECT_EQ(layout.music, "/media/disc/M\"sica");
    EXPECT_EQ(layout.desktop, "") << "the home itself means: no such folder";
    EXPECT_EQ(layout.pictures, "/home/ana/Pictures");
    EXPECT_FALSE(layout.hasPrivacyGate);
    EXPECT_THAT(layout.protectedLocations, IsEmpty());
    EXPECT_THAT(layout.accessProbes, IsEmpty());
    EXPECT_THAT(layout.xcodeApplications, IsEmpty());
    EXPECT_THAT(layout.installerExtensions,
                ElementsAre("dmg", "pkg", "deb", "rpm", "appimage", "flatpakref", "run"));
}

TEST(HomeLayoutTest, ALinuxHomesHiddenApplicationFoldersAreWalkedOnce) {
    const HomeLayout layout = HomeLayout::freedesktop("/home/ana", environmentOf({}), "");
    EXPECT_THAT(layout.walkRoots, ElementsAre("/home/ana", "/home/ana/.cache", "/home/ana/.config",
                                              "/home/ana/.local/share", "/home/ana/.local/state",
                                              "/home/ana/.var/app", "/home/ana/.local/bin"));
    EXPECT_EQ(layout.dataFolder, "/home/ana/.local/share/Velto");
    EXPECT_THAT(layout.neverWalked,
                ElementsAre("/home/ana/.local/share/Velto", "/home/ana/.local/share/Trash"));
}

TEST(HomeLayoutTest, BaseFoldersOfTheEnvironmentCountWhenAbsolute) {
    const HomeLayout layout =
        HomeLayout::freedesktop("/home/ana",
                                environmentOf({{"XDG_CACHE_HOME", "/home/ana/visible/cache/"},
                                               {"XDG_CONFIG_HOME", "relative"},
                                               {"XDG_DATA_HOME", "/data"},
                                               {"XDG_STATE_HOME", "/home/ana/.config/state"}}),
                                "");
    EXPECT_EQ(layout.caches, "/home/ana/visible/cache");
    EXPECT_EQ(layout.dataFolder, "/data/Velto");
    EXPECT_EQ(layout.agentsFolder, "/home/ana/.config/systemd/user");
    EXPECT_THAT(layout.walkRoots, Not(Contains("/home/ana/visible/cache"))) << "reached anyway";
    EXPECT_THAT(layout.walkRoots, Not(Contains("/data"))) << "outside the home";
    EXPECT_THAT(layout.walkRoots, Not(Contains("/home/ana/.config/state"))) << "walked twice";
}

TEST(HomeLayoutTest, EveryMarkerProtectsAPathThatHoldsIt) {
    for (const char* path :
         {"/h/Pictures/Photos Library.photoslibrary/a", "/h/Other.photoslibrary",
          "/h/Library/Application Support/MobileSync/Backup", "/h/Documents/MailMerge.docx",
          "/h/Library/Messages/chat.db", "/h/x/CallHistoryDB/y", "/h/Library/Mail/V10"}) {
        EXPECT_TRUE(isProtectedPath(path)) << path;
    }
    EXPECT_FALSE(isProtectedPath("/h/Documents/mail.txt"));
    EXPECT_FALSE(isProtectedPath("/h/Pictures/photos library/a"));
}

TEST(HomeLayoutTest, TheUninstallerLooksWhereAMacHasItsApplications) {
    HomeLayout layout = HomeLayout::macOS("/Users/ana");
    EXPECT_EQ(layout.systemApplications, "/Applications");
    EXPECT_EQ(layout.systemLibrary, "/Library");
    EXPECT_EQ(layout.userApplications, "/Users/ana/Applications");
    EXPECT_EQ(layout.userLibrary, "/Users/ana/Library");
    EXPECT_EQ(layout.neverRemoved.size(), 25u);
    layout.setSystemRoot("/media/mac");
    EXPECT_EQ(layout.systemApplications, "/media/mac/Applications");
    EXPECT_EQ(layout.neverRemoved.size(), 25u);
    EXPECT_THAT(layout.neverRemoved, Contains("/media/mac/Library/LaunchDaemons"));
    EXPECT_THAT(layout.neverRemoved, Not(Contains("/Library/LaunchDaemons")));
}

TEST(HomeLayoutTest, DesktopEntriesAreLookedForInTheOrderOfTheStandard) {
    const HomeLayout layout =
        HomeLayout::freedesktop("/home/ana",
                                environmentOf({{"XDG_DATA_DIRS",
                                                "/usr/local/share/:relative:/usr/share:/opt/share:"
                                                "/home/ana/.local/share/flatpak/exports/share"}}),
                                "");
    std::vector<std::string> found;
    for (const auto& [origin, path] : layout.desktopEntries)
        found.push_back(origin + " " + path);
    EXPECT_THAT(
        found,
        ElementsAre("user /home/ana/.local/share/applications",
                    "userFlatpak /home/ana/.local/share/flatpak/exports/share/applications",
                    "flatpak /var/lib/flatpak/exports/share/applications",
                    "local /usr/local/share/applications", "system /usr/share/applications",
                    "local /opt/share/applications", "snap /var/lib/snapd/desktop/applications"));
}

}  // namespace
}  // namespace velto
