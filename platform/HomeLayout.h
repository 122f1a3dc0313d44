#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// A place with the identifier under which the page knows it.
struct NamedLocation {
    std::string identifier;
    std::string path;
};

/// Where a desktop entry comes from, as `NamedLocation::identifier`.
namespace entryOrigin {
inline constexpr const char* user = "user";
inline constexpr const char* userFlatpak = "userFlatpak";
inline constexpr const char* flatpak = "flatpak";
inline constexpr const char* snap = "snap";
inline constexpr const char* local = "local";    // installed by hand for everybody
inline constexpr const char* system = "system";  // the system's packages
}  // namespace entryOrigin

/// A substring of a path below a library root and the category that it decides.
struct LibraryRule {
    std::string_view substring;
    std::string_view category;
};

/// Every folder that the program looks for, by role, as absolute paths without a trailing slash.
/// No other code spells a folder of the home. An empty string is a role that this home lacks.
struct HomeLayout {
    enum class Kind { macOS, freedesktop };

    Kind kind = Kind::macOS;
    std::string home;  // resolved: no link anywhere in it

    // Category folders.
    std::string pictures, movies, music, downloads, documents, desktop;
    std::vector<std::string> libraryRoots;
    std::vector<LibraryRule> libraryRules;      // first match wins
    std::string_view libraryDefault;            // category of a library file that no rule names
    std::vector<std::string> applicationRoots;  // of this user

    // What the walk enters. `walkRoots` begins with the home; the others, hidden library roots, are
    // walked from the home too, unless another volume begins there.
    std::vector<std::string> walkRoots;
    std::vector<std::string> neverWalked;  // whatever the access
    /// Folders whose files lie elsewhere and are brought and taken away by the system itself.
    std::vector<std::string> providedFiles;

    // Privacy. Without a gate access always counts as granted.
    bool hasPrivacyGate = true;
    std::vector<NamedLocation> protectedLocations;
    std::vector<std::string> guardedPaths;
    std::vector<std::string> accessProbes;  // in the order in which they are tried

    // The program's own and the system's places.
    std::string caches;
    std::string applicationSupport;  // where `dataFolder` lies
    std::string dataFolder;
    std::string trashFolder;
    std::string systemTrash;
    std::string agentsFolder;
    std::string agentFile;     // the maintenance agent or timer, installed or not
    std::string agentService;  // what the timer starts; a Mac's agent needs none
    std::string cloudDrive;    // iCloud Drive
    std::string cloudFolder;   // the program's folder in it

    // What cleaning proposes, besides `caches` and `downloads`.
    std::vector<std::string> xcodeApplications;  // one of them there: Xcode is installed
    std::string xcodeDerivedData;
    std::string xcodeDeviceSupport;                     // a folder for each system of a device
    std::vector<std::string_view> installerExtensions;  // lower case, without the full stop

    // What the uninstaller looks through and what it never removes.
    std::string systemApplications;  // "/Applications", or where a mounted Mac disk has it
    std::string systemLibrary;       // "/Library", in the same way
    std::string userApplications;
    std::string userLibrary;                     // a Mac's ~/Library
    std::string configuration;                   // $XDG_CONFIG_HOME
    std::string applicationState;                // $XDG_STATE_HOME
    std::string sandboxes;                       // ~/.var/app: what Flatpaks keep
    std::string autostart;                       // entries that are started with the session
    std::vector<NamedLocation> desktopEntries;   // folders of them, the first wins; origins below
    std::string userFlatpaks;                    // ~/.local/share/flatpak/app
    std::string removalFolder;                   // where the program puts what it is deleting
    std::vector<std::string> neverRemoved;       // as a whole; what lies below may be
    std::vector<std::string> neverRemovedBelow;  // nor anything below

    /// Lets the system's applications and library be those of a Mac disk mounted at `root`.
    void setSystemRoot(const std::string& root);

    /// The layout of a Mac's home.
    static HomeLayout macOS(const std::string& home);

    /// The layout of a Linux home. `environment` answers for XDG variables (nothing when unset);
    /// `userDirs` is the text of "user-dirs.dirs", empty when there is none; `resolve` takes the
    /// links out of a path as far as it leads anywhere (none: paths are judged by their text). A
    /// role that would be, hold or lie above the home or a folder of the user's own counts as
    /// unset.
    using Environment = std::function<std::optional<std::string>(const std::string& name)>;
    using Resolve = std::function<std::string(const std::string& path)>;
    static HomeLayout freedesktop(const std::string& home, const Environment& environment,
                                  std::string_view userDirs, const Resolve& resolve = {});
};

/// True when `path` contains one of the markers of a library, backup or mailbox that must never be
/// touched ("Photos Library", ".photoslibrary", "MobileSync", "Mail", "Library/Messages",
/// "CallHistory", "Library/Mail"). Case-sensitive, anywhere in the path; the breadth of "Mail" is
/// wanted.
bool isProtectedPath(std::string_view path);

}  // namespace velto
