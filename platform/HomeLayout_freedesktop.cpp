#include <algorithm>

#include "platform/HomeLayout.h"
#include "platform/program_identifier.h"
#include "platform/values/text.h"
#include "platform/xdg_folders.h"

namespace velto {
namespace {

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
        const std::string folder = standardizedPath(item);
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
        layout.neverRemoved.push_back(*folder);
    }
    std::erase(layout.neverRemoved, "");
    layout.neverRemovedBelow = {home + "/.ssh", home + "/.gnupg", layout.systemTrash};
}

}  // namespace

HomeLayout HomeLayout::freedesktop(const std::string& home, const Environment& environment,
                                   std::string_view userDirs, const Resolve& resolve) {
    const XdgFolders folders(home, environment, userDirs, resolve);
    HomeLayout layout;
    layout.kind = Kind::freedesktop;
    layout.home = home;

    layout.pictures = folders.pictures;
    layout.movies = folders.movies;
    layout.music = folders.music;
    layout.downloads = folders.downloads;
    layout.documents = folders.documents;
    layout.desktop = folders.desktop;

    const std::string& configuration = folders.configuration;
    layout.caches = folders.caches;
    layout.applicationSupport = folders.data;
    // What applications keep for themselves: the counterpart of a Mac's Library, all of it "apps".
    layout.libraryRoots = {layout.caches, configuration, layout.applicationSupport, folders.state,
                           home + "/.var/app"};
    std::erase(layout.libraryRoots, "");
    layout.libraryDefault = "apps";
    layout.applicationRoots = {home + "/Applications", home + "/.local/bin"};

    layout.dataFolder = layout.applicationSupport + "/Velto";
    layout.trashFolder = layout.dataFolder + "/Trash";
    layout.systemTrash = layout.applicationSupport + "/Trash";
    layout.agentsFolder = configuration + "/systemd/user";
    layout.agentFile = layout.agentsFolder + "/" + programIdentifier + ".maintenance.timer";
    layout.agentService = layout.agentsFolder + "/" + programIdentifier + ".maintenance.service";

    layout.configuration = configuration;
    layout.applicationState = folders.state;
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
