#include <array>
#include <utility>

#include "platform/HomeLayout.h"

namespace velto {
namespace {

using Location = std::pair<std::string_view, std::string_view>;  // identifier, path below the home

// Places that the system opens only with Full Disk Access and that the page names.
constexpr std::array<Location, 11> protectedLocationTable{{
    {"desktop", "Desktop"},
    {"documents", "Documents"},
    {"downloads", "Downloads"},
    {"photos", "Pictures/Photos Library.photoslibrary"},
    {"icloud", "Library/Mobile Documents"},
    {"mail", "Library/Mail"},
    {"messages", "Library/Messages"},
    {"safari", "Library/Safari"},
    {"calendars", "Library/Calendars"},
    {"contacts", "Library/Address Book"},
    {"iphone", "Library/Application Support/MobileSync"},
}};

// Further places that the system guards; entering one without access would raise its prompt.
constexpr std::array<std::string_view, 40> guardedPathTable{{
    ".Trash",
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
}};

// Where other makers' clouds show their files, each behind a prompt of its own.
constexpr std::string_view cloudStorage = "Library/CloudStorage";

// Folders that only Full Disk Access opens, in the order in which the probe tries them.
constexpr std::array<std::string_view, 7> accessProbeTable{{
    "Library/Application Support/com.apple.TCC",
    "Library/Safari",
    "Library/Mail",
    "Library/Messages",
    "Library/Cookies",
    "Library/HomeKit",
    "Library/IdentityServices",
}};

// "MobileSync" comes first: device backups lie inside Application Support.
constexpr std::array<LibraryRule, 9> libraryRuleTable{{
    {"MobileSync", "sistema"},
    {"Application Support", "apps"},
    {"/Caches/", "apps"},
    {"/Containers/", "apps"},
    {"/Group Containers/", "apps"},
    {"/WebKit/", "apps"},
    {"/HTTPStorages/", "apps"},
    {"/Saved Application State/", "apps"},
    {"/Preferences/", "apps"},
}};

constexpr std::array<std::string_view, 7> protectedMarkers{{
    "Photos Library",
    ".photoslibrary",
    "MobileSync",
    "Mail",
    "Library/Messages",
    "CallHistory",
    "Library/Mail",
}};

// Folders that many applications share: removing one of them with an application would take what
// belongs to others.
constexpr std::array<std::string_view, 16> sharedHomeFolders{{
    "Library",
    "Library/Application Support",
    "Library/Application Scripts",
    "Library/Caches",
    "Library/Containers",
    "Library/Cookies",
    "Library/Group Containers",
    "Library/HTTPStorages",
    "Library/LaunchAgents",
    "Library/Logs",
    "Library/Preferences",
    "Library/Logs/DiagnosticReports",
    "Library/Application Support/CrashReporter",
    "Library/Saved Application State",
    "Library/WebKit",
    "Applications",
}};
constexpr std::array<std::string_view, 2> sharedApplicationFolders{{"", "/Utilities"}};
constexpr std::array<std::string_view, 7> sharedLibraryFolders{{
    "",
    "/Application Support",
    "/Caches",
    "/LaunchAgents",
    "/LaunchDaemons",
    "/Logs",
    "/Preferences",
}};

constexpr std::array<std::string_view, 8> systemFolders{{
    "/System",
    "/usr",
    "/bin",
    "/sbin",
    "/etc",
    "/var",
    "/private",
    "/opt",
}};

}  // namespace

void HomeLayout::setSystemRoot(const std::string& root) {
    systemApplications = root + "/Applications";
    systemLibrary = root + "/Library";
    neverRemoved.clear();
    for (std::string_view folder : sharedHomeFolders)
        neverRemoved.push_back(home + "/" + std::string(folder));
    for (std::string_view folder : sharedApplicationFolders)
        neverRemoved.push_back(systemApplications + std::string(folder));
    for (std::string_view folder : sharedLibraryFolders)
        neverRemoved.push_back(systemLibrary + std::string(folder));
}

HomeLayout HomeLayout::macOS(const std::string& home) {
    const auto below = [&](std::string_view path) { return home + "/" + std::string(path); };

    HomeLayout layout;
    layout.kind = Kind::macOS;
    layout.home = home;

    layout.pictures = below("Pictures");
    layout.movies = below("Movies");
    layout.music = below("Music");
    layout.downloads = below("Downloads");
    layout.documents = below("Documents");
    layout.desktop = below("Desktop");
    layout.libraryRoots = {below("Library")};
    layout.libraryRules.assign(libraryRuleTable.begin(), libraryRuleTable.end());
    layout.libraryDefault = "sistema";
    layout.applicationRoots = {below("Applications")};

    layout.applicationSupport = below("Library/Application Support");
    layout.dataFolder = layout.applicationSupport + "/Velto";
    layout.trashFolder = layout.dataFolder + "/Trash";
    layout.caches = below("Library/Caches");
    layout.systemTrash = below(".Trash");
    layout.agentsFolder = below("Library/LaunchAgents");
    layout.agentFile = layout.agentsFolder + "/app.velto.maintenance.plist";
    layout.cloudDrive = below("Library/Mobile Documents/com~apple~CloudDocs");
    layout.cloudFolder = layout.cloudDrive + "/Velto";
    layout.providedFiles = {below("Library/Mobile Documents"), below("Library/CloudStorage")};

    layout.xcodeApplications = {below("Applications/Xcode.app"), "/Applications/Xcode.app"};
    layout.xcodeDerivedData = below("Library/Developer/Xcode/DerivedData");
    layout.xcodeDeviceSupport = below("Library/Developer/Xcode/iOS DeviceSupport");
    layout.installerExtensions = {"dmg", "pkg"};

    layout.setSystemRoot("");
    layout.userApplications = below("Applications");
    layout.userLibrary = below("Library");
    layout.removalFolder = layout.dataFolder + "/Removing";
    layout.neverRemovedBelow.assign(systemFolders.begin(), systemFolders.end());

    layout.walkRoots = {home};
    layout.neverWalked = {layout.dataFolder, layout.cloudFolder};

    layout.hasPrivacyGate = true;
    for (const auto& [identifier, path] : protectedLocationTable) {
        layout.protectedLocations.push_back({std::string(identifier), below(path)});
    }
    for (std::string_view path : guardedPathTable)
        layout.guardedPaths.push_back(below(path));
    layout.guardedPaths.push_back(below(cloudStorage));
    for (std::string_view path : accessProbeTable)
        layout.accessProbes.push_back(below(path));
    return layout;
}

bool isProtectedPath(std::string_view path) {
    for (std::string_view marker : protectedMarkers) {
        if (path.find(marker) != std::string_view::npos) return true;
    }
    return false;
}

}  // namespace velto
