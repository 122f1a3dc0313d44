#include "uninstall/InstalledNames.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"
#include "uninstall/words.h"

namespace velto {
namespace {

constexpr ReadLimit entryLimit = anyFile(256 * 1024);

/// The names in a folder; none where it is not there. `isKnown` turns false where it cannot be
/// listed.
std::vector<std::string> namesIn(const FileManager& files, const std::string& folder,
                                 bool& isKnown) {
    try {
        return files.list(folder);
    } catch (const FileError& error) {
        if (error.code() != ENOENT && error.code() != ENOTDIR) isKnown = false;
        return {};
    }
}

/// Takes the next line from `text`.
std::string_view nextLineOf(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return trimmed(line);
}

/// What follows "<key>=" (white space around the equals sign is allowed); empty for other lines.
std::string_view valueOf(std::string_view line, std::string_view key) {
    if (!line.starts_with(key)) return {};
    line = trimmed(line.substr(key.size()));
    return line.starts_with('=') ? trimmed(line.substr(1)) : std::string_view();
}

std::string_view withoutLastExtension(std::string_view name) {
    const std::size_t stop = name.rfind('.');
    return stop == std::string_view::npos || stop == 0 ? name : name.substr(0, stop);
}

}  // namespace

InstalledNames::Places InstalledNames::placesOf(const HomeLayout& layout) {
    Places places;
    places.programs = {"/usr/bin",
                       "/usr/sbin",
                       "/bin",
                       "/usr/local/bin",
                       "/usr/games",
                       "/usr/local/games",
                       "/opt",
                       "/snap",
                       "/snap/bin",
                       "/usr/lib",
                       "/usr/lib64",
                       "/usr/libexec",
                       "/usr/share",
                       "/usr/local/lib",
                       "/usr/local/share",
                       "/var/lib/snapd/snap",
                       "/run/current-system/sw/bin",
                       layout.home + "/.nix-profile/bin",
                       layout.home + "/bin",
                       layout.home + "/snap",
                       layout.home + "/Games",
                       layout.downloads};
    std::ranges::copy(layout.applicationRoots, std::back_inserter(places.programs));
    places.packages = {"/var/lib/dpkg/info"};
    places.descriptions = {"/usr/share/dbus-1/services",
                           "/usr/share/dbus-1/system-services",
                           "/usr/share/metainfo",
                           "/usr/share/appdata",
                           "/usr/share/glib-2.0/schemas",
                           "/usr/lib/systemd/user",
                           "/usr/share/gnome-shell/search-providers",
                           "/etc/xdg/autostart",
                           layout.autostart,
                           layout.agentsFolder};
    places.entries = {"/usr/share/applications", "/usr/local/share/applications",
                      "/run/current-system/sw/share/applications",
                      layout.home + "/.nix-profile/share/applications"};
    places.flatpaks = {parentFolder(layout.userFlatpaks), "/var/lib/flatpak"};
    for (const NamedLocation& folder : layout.desktopEntries) {
        constexpr std::string_view exports = "/exports/share/applications";
        if (!folder.path.ends_with(exports)) continue;
        places.flatpaks.push_back(folder.path.substr(0, folder.path.size() - exports.size()));
    }
    places.moreFlatpaks = {"/etc/flatpak/installations.d"};
    places.containers = {layout.applicationSupport + "/containers/storage/overlay-containers",
                         layout.applicationSupport + "/containers/storage/vfs-containers",
                         layout.applicationSupport + "/containers/storage/btrfs-containers",
                         "/var/lib/docker/containers"};
    return places;
}

InstalledNames::InstalledNames(const Platform& platform, const Places& places) {
    const FileManager& files = *platform.files;
    for (const std::string& folder : places.programs) {
        for (const std::string& name : namesIn(files, folder, knowsPrograms_)) {
            add(name);
            // "Foo-1.2.AppImage", "foo-stable", "foo2": not the same, and reason enough to doubt.
            add(std::string_view(name).substr(0, name.find_first_of("-_. 0123456789")));
        }
    }
    for (const std::string& folder : places.packages) {
        for (const std::string& name : namesIn(files, folder, knowsPrograms_)) {
            const std::string_view package = withoutLastExtension(name);
            add(package.substr(0, package.find(':')));  // "<package>:<architecture>"
        }
    }
    for (const std::string& folder : places.descriptions) {
        for (const std::string& name : namesIn(files, folder, knowsPrograms_)) {
            add(name);
            add(withoutLastExtension(name));
            add(withoutLastExtension(withoutLastExtension(name)));  // ".gschema.xml" and its like
        }
    }
    for (const std::string& folder : places.containers) {
        bool isKnown = true;
        // Their list and its locks are there from the first one on; a container is a folder.
        for (const std::string& name : namesIn(files, folder, isKnown)) {
            const auto attributes = files.attributes(folder + "/" + name);
            if (attributes && attributes->kind == FileKind::folder) knowsPrograms_ = false;
        }
    }
    addFlatpaks(files, places);
    addEntries(platform, places);
    addRunning(*platform.running);
}

void InstalledNames::add(std::string_view name) {
    if (!name.empty()) names_.insert(lowerCasedAscii(name));
}

/// Those that are hidden, broken or meant for another desktop too.
void InstalledNames::addEntries(const Platform& platform, const Places& places) {
    std::vector<NamedLocation> folders = platform.layout.desktopEntries;
    for (const std::string& folder : places.entries)
        folders.push_back({"", folder});
    for (const NamedLocation& folder : folders) {
        // One by one: an entry that another one hides is installed nevertheless.
        for (const DesktopEntryFile& file : desktopEntryFiles(*platform.files, {folder})) {
            add(file.id);
            add(withoutLastExtension(lastPathComponent(file.path)));
            addEntry(*platform.files, file.path);
        }
    }
}

void InstalledNames::addEntry(const FileManager& files, const std::string& path) {
    std::string text;
    try {
        text = files.read(path, entryLimit);
    } catch (const FileError&) {
        return;  // its name is known
    }
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view line = nextLineOf(rest);
        for (std::string_view key : {"X-Flatpak", "X-SnapInstanceName", "StartupWMClass", "Icon"}) {
            const std::string_view value = valueOf(line, key);
            add(value);
            if (key == "X-Flatpak" && !value.empty()) flatpaks_.insert(lowerCasedAscii(value));
        }
        std::string_view command = valueOf(line, "Exec");
        while (!command.empty()) {
            const std::string_view word = command.substr(0, command.find(' '));
            command.remove_prefix(std::min(command.size(), word.size() + 1));
            add(lastPathComponent(word));
        }
    }
}

void InstalledNames::addRunning(RunningApplications& running) {
    for (const RunningApplication& application : running.list()) {
        add(lastPathComponent(application.executable));
        add(lastPathComponent(application.script));
        add(application.entry);
        add(application.snap);
        add(application.flatpak);
        if (!application.flatpak.empty()) flatpaks_.insert(lowerCasedAscii(application.flatpak));
    }
}

void InstalledNames::addFlatpaks(const FileManager& files, const Places& places) {
    for (const std::string& folder : places.flatpaks)
        addInstallation(files, folder);
    for (const std::string& folder : places.moreFlatpaks) {
        for (const std::string& name : namesIn(files, folder, knowsFlatpaks_)) {
            try {
                const std::string text = files.read(folder + "/" + name, entryLimit);
                for (std::string_view rest = text; !rest.empty();) {
                    const std::string_view path = valueOf(nextLineOf(rest), "Path");
                    if (path.starts_with('/')) addInstallation(files, std::string(path));
                }
            } catch (const FileError&) {
                knowsFlatpaks_ = false;
            }
        }
    }
}

/// Its applications, and its runtimes: what is a runtime today may have been run.
void InstalledNames::addInstallation(const FileManager& files, const std::string& folder) {
    for (const char* kind : {"/app", "/runtime"}) {
        for (const std::string& name : namesIn(files, folder + kind, knowsFlatpaks_)) {
            add(name);
            flatpaks_.insert(lowerCasedAscii(name));
        }
    }
}

bool InstalledNames::hasName(std::string_view name) const {
    return names_.contains(lowerCasedAscii(name));
}

bool InstalledNames::hasFlatpak(std::string_view identifier) const {
    return flatpaks_.contains(lowerCasedAscii(identifier));
}

bool InstalledNames::hasIdentifier(std::string_view identifier) const {
    const std::string wanted = lowerCasedAscii(identifier);
    if (names_.contains(wanted)) return true;
    if (names_.contains(wanted.substr(wanted.rfind('.') + 1))) return true;
    const auto isPart = [](std::string_view whole, std::string_view part) {
        return whole.size() > part.size() && whole.starts_with(part) &&
               std::string_view(".-_").find(whole[part.size()]) != std::string_view::npos;
    };
    return std::ranges::any_of(names_, [&](const std::string& name) {
        const bool isIdentifier = std::ranges::count(name, '.') >= 2;
        return isIdentifier && (isPart(name, wanted) || isPart(wanted, name));
    });
}

}  // namespace velto
