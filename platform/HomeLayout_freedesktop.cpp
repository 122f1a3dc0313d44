#include <algorithm>
#include <map>

#include "platform/HomeLayout.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// An absolute path in a normal form: no doubled or trailing slash. A relative one gives nothing
/// (the XDG Base Directory standard has such values ignored).
std::string normalised(std::string_view path) {
    if (path.empty() || path.front() != '/') return {};
    std::string result;
    for (char character : path) {
        if (character == '/' && !result.empty() && result.back() == '/') continue;
        result += character;
    }
    while (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

/// The entries of "user-dirs.dirs" (xdg-user-dirs): lines of the form XDG_NAME_DIR="$HOME/name" or
/// XDG_NAME_DIR="/absolute"; a backslash takes the next character as it is. Other lines are
/// ignored.
std::map<std::string, std::string> parseUserDirs(std::string_view text, const std::string& home) {
    std::map<std::string, std::string> folders;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t")));
        const std::size_t equals = line.find("=\"");
        const std::size_t end = line.rfind('"');
        if (line.substr(0, 4) != "XDG_" || equals == std::string_view::npos || end <= equals + 1) {
            continue;
        }
        std::string value;
        const std::string_view quoted = line.substr(equals + 2, end - equals - 2);
        for (std::size_t index = 0; index < quoted.size(); ++index) {
            if (quoted[index] == '\\' && index + 1 < quoted.size()) ++index;
            value += quoted[index];
        }
        if (value == "$HOME" || value.starts_with("$HOME/")) value = home + value.substr(5);
        value = normalised(value);
        if (!value.empty()) folders[std::string(line.substr(0, equals))] = value;
    }
    return folders;
}

/// True when a component of `path` after `home` begins with a full stop.
bool hasHiddenComponent(std::string_view path, std::string_view home) {
    return path.substr(home.size()).find("/.") != std::string_view::npos;
}

/// Folders of desktop entries in the order of the Base Directory standard, and those of Flatpak and
/// Snap, which a session started without a login shell does not name.
std::vector<NamedLocation> entryFolders(const HomeLayout& layout, const std::string& dataFolders) {
    const std::string userExports = layout.applicationSupport + "/flatpak/exports/share";
    std::vector<NamedLocation> folders{
        {entryOrigin::user, layout.applicationSupport + "/applications"},
        {entryOrigin::userFlatpak, userExports + "/applications"},
        {entryOrigin::flatpak, "/var/lib/flatpak/exports/share/applications"},
    };
    for (std::string_view rest = dataFolders; !rest.empty();) {
        const std::string_view item = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(rest.size(), item.size() + 1));
        const std::string folder = normalised(item);
        if (folder.empty() || folder.find("/flatpak/exports/") != std::string::npos) continue;
        if (folder.starts_with("/var/lib/snapd/")) continue;
        const bool isSystem = isAtOrBelow(folder, "/usr/share");
        folders.push_back(
            {isSystem ? entryOrigin::system : entryOrigin::local, folder + "/applications"});
    }
    folders.push_back({entryOrigin::snap, "/var/lib/snapd/desktop/applications"});
    return folders;
}

/// What belongs to no single application, or to none at all.
void protectFolders(HomeLayout& layout) {
    const std::string& home = layout.home;
    layout.neverRemoved = {
        home + "/.config",
        home + "/.local",
        home + "/.local/bin",
        home + "/.local/share",
        home + "/.local/state",
        home + "/.cache",
        home + "/.var",
        layout.sandboxes,
        layout.configuration,
        layout.applicationSupport,
        layout.applicationState,
        layout.caches,
        layout.autostart,
        layout.configuration + "/systemd",
        layout.agentsFolder,
        layout.applicationSupport + "/applications",
        layout.applicationSupport + "/icons",
        layout.applicationSupport + "/flatpak",
        layout.userFlatpaks,
    };
    for (const std::string* folder :
         {&layout.pictures, &layout.movies, &layout.music, &layout.downloads, &layout.documents,
          &layout.desktop, &layout.userApplications}) {
        if (!folder->empty()) layout.neverRemoved.push_back(*folder);
    }
    layout.neverRemovedBelow = {home + "/.ssh", home + "/.gnupg", layout.systemTrash};
}

}  // namespace

HomeLayout HomeLayout::freedesktop(const std::string& home, const Environment& environment,
                                   std::string_view userDirs) {
    const auto baseFolder = [&](const std::string& variable, const std::string& fallback) {
        const std::string value = normalised(environment(variable).value_or(""));
        return value.empty() ? home + fallback : value;
    };
    const auto folders = parseUserDirs(userDirs, home);
    const auto userFolder = [&](const std::string& variable, const std::string& fallback) {
        const auto found = folders.find(variable);
        // A role set to the home itself is how xdg-user-dirs says that the role is unused.
        if (found != folders.end()) return found->second == home ? std::string() : found->second;
        return home + fallback;
    };

    HomeLayout layout;
    layout.kind = Kind::freedesktop;
    layout.home = home;

    layout.pictures = userFolder("XDG_PICTURES_DIR", "/Pictures");
    layout.movies = userFolder("XDG_VIDEOS_DIR", "/Videos");
    layout.music = userFolder("XDG_MUSIC_DIR", "/Music");
    layout.downloads = userFolder("XDG_DOWNLOAD_DIR", "/Downloads");
    layout.documents = userFolder("XDG_DOCUMENTS_DIR", "/Documents");
    layout.desktop = userFolder("XDG_DESKTOP_DIR", "/Desktop");

    const std::string configuration = baseFolder("XDG_CONFIG_HOME", "/.config");
    layout.caches = baseFolder("XDG_CACHE_HOME", "/.cache");
    layout.applicationSupport = baseFolder("XDG_DATA_HOME", "/.local/share");
    // What applications keep for themselves: the counterpart of a Mac's Library, all of it "apps".
    layout.libraryRoots = {layout.caches, configuration, layout.applicationSupport,
                           baseFolder("XDG_STATE_HOME", "/.local/state"), home + "/.var/app"};
    layout.libraryDefault = "apps";
    layout.applicationRoots = {home + "/Applications", home + "/.local/bin"};

    layout.dataFolder = layout.applicationSupport + "/Velto";
    layout.trashFolder = layout.dataFolder + "/Trash";
    layout.systemTrash = layout.applicationSupport + "/Trash";
    layout.agentsFolder = configuration + "/systemd/user";
    layout.agentFile = layout.agentsFolder + "/app.velto.maintenance.timer";
    layout.agentService = layout.agentsFolder + "/app.velto.maintenance.service";

    layout.configuration = configuration;
    layout.applicationState = baseFolder("XDG_STATE_HOME", "/.local/state");
    layout.sandboxes = home + "/.var/app";
    layout.userApplications = home + "/Applications";
    layout.autostart = configuration + "/autostart";
    layout.userFlatpaks = layout.applicationSupport + "/flatpak/app";
    layout.removalFolder = layout.dataFolder + "/Removing";
    layout.desktopEntries =
        entryFolders(layout, environment("XDG_DATA_DIRS").value_or("/usr/local/share:/usr/share"));
    protectFolders(layout);

    // Packages of this system, and a Mac's: downloads travel between machines.
    layout.installerExtensions = {"dmg", "pkg", "deb", "rpm", "appimage", "flatpakref", "run"};

    layout.walkRoots = {home};
    std::vector<std::string> hidden = layout.libraryRoots;
    hidden.insert(hidden.end(), layout.applicationRoots.begin(), layout.applicationRoots.end());
    for (const std::string& folder : hidden) {
        const bool reached = !isAtOrBelow(folder, home) || !hasHiddenComponent(folder, home);
        if (!reached) layout.walkRoots.push_back(folder);
    }
    // A root below another root would be walked twice, unless something hidden lies between them.
    std::vector<std::string> roots;
    for (const std::string& folder : layout.walkRoots) {
        const bool covered =
            std::any_of(layout.walkRoots.begin(), layout.walkRoots.end(), [&](const auto& other) {
                return other != folder && isAtOrBelow(folder, other) &&
                       !hasHiddenComponent(folder, other);
            });
        const bool repeated = std::find(roots.begin(), roots.end(), folder) != roots.end();
        if (!covered && !repeated) roots.push_back(folder);
    }
    layout.walkRoots = std::move(roots);
    layout.neverWalked = {layout.dataFolder, layout.systemTrash};

    layout.hasPrivacyGate = false;
    return layout;
}

}  // namespace velto
