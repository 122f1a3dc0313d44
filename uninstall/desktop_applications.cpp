#include "uninstall/desktop_applications.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <utility>

#include "platform/DesktopEntry.h"
#include "platform/text.h"
#include "uninstall/removal_rules.h"

namespace velto {
namespace {

constexpr std::string_view extension = ".desktop";

/// One file of desktop entries.
struct EntryFile {
    std::string id;
    std::string origin;
    std::string path;
};

std::vector<std::string> namesIn(const FileManager& files, const std::string& folder) {
    try {
        return files.list(folder);
    } catch (const FileError&) {
        return {};  // most of the folders are there on few machines
    }
}

/// The files of all folders; an id that an earlier folder has is hidden by it. A file in a
/// subfolder has the subfolder's name and a hyphen before its own.
std::vector<EntryFile> entryFiles(const Platform& platform) {
    std::vector<EntryFile> found;
    std::unordered_set<std::string> seen;
    const auto add = [&](const std::string& id, const std::string& origin, std::string path) {
        if (seen.insert(id).second) found.push_back({id, origin, std::move(path)});
    };
    for (const auto& [origin, folder] : platform.layout.desktopEntries) {
        for (const std::string& name : namesIn(*platform.files, folder)) {
            const std::string path = folder + "/" + name;
            if (name.ends_with(extension)) {
                add(name.substr(0, name.size() - extension.size()), origin, path);
                continue;
            }
            for (const std::string& inner : namesIn(*platform.files, path)) {
                if (!inner.ends_with(extension)) continue;
                add(name + "-" + inner.substr(0, inner.size() - extension.size()), origin,
                    path + "/" + inner);
            }
        }
    }
    // The shortest id first: of several entries of one application it is the least special.
    std::ranges::sort(found, {},
                      [](const EntryFile& file) { return std::pair(file.id.size(), file.id); });
    return found;
}

std::string stemOf(std::string_view fileName) {
    const std::string extensionOfName = lowerCaseExtension(fileName);
    if (extensionOfName == "appimage" || extensionOfName == "sh") {
        fileName.remove_suffix(extensionOfName.size() + 1);
    }
    return std::string(fileName);
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

/// What of the home goes when the application goes: its own folder if the folder is named like it,
/// else the program file alone.
std::string removablePath(const Platform& platform, const EntryFile& file,
                          const std::string& executable) {
    const std::string name = platform.locale->lowerCased(stemOf(lastPathComponent(executable)));
    if (file.origin != entryOrigin::user || lowerCaseExtension(executable) == "appimage") {
        return executable;
    }
    std::string folder = folderOf(executable);
    if (lastPathComponent(folder) == "bin") folder = folderOf(folder);
    const std::string folderName = platform.locale->lowerCased(lastPathComponent(folder));
    const bool isNamedLikeIt = folderName.find(name) != std::string::npos;
    const bool isOwn = isSafeToRemove(folder, "", platform.layout);
    return isNamedLikeIt && isOwn ? folder : executable;
}

DesktopApplication describe(const Platform& platform, const EntryFile& file,
                            const DesktopEntry& read) {
    const HomeLayout& layout = platform.layout;
    DesktopApplication application{.executable = read.executable, .icon = read.icon};
    AppEntry& entry = application.entry;
    entry.bid = validUtf8(file.id);
    entry.name = read.name.empty() ? entry.bid : read.name;
    entry.version = read.version;
    entry.exec = stemOf(lastPathComponent(read.executable));
    entry.path = file.path;
    application.isIdentified = !read.startsScript && read.flatpak.empty() && !read.isSnap;

    const std::string userFlatpak = layout.userFlatpaks + "/" + read.flatpak;
    if (!read.flatpak.empty()) {
        entry.store = true;
        entry.bid = read.flatpak;
        if (platform.files->exists(userFlatpak)) entry.path = userFlatpak;
    } else if (read.isSnap || file.origin == entryOrigin::snap) {
        entry.store = true;
    } else if (read.executable.starts_with(layout.home + "/") && !read.startsScript) {
        entry.path = removablePath(platform, file, read.executable);
    } else {
        entry.apple =
            file.origin == entryOrigin::system ||
            (isAtOrBelow(read.executable, "/usr") && !isAtOrBelow(read.executable, "/usr/local"));
    }
    return application;
}

/// What tells one application from another, whatever the number of its entries.
std::string identityOf(const DesktopApplication& application, const std::string& file) {
    if (application.entry.path != file) return application.entry.path;
    return application.isIdentified ? application.executable : application.entry.bid;
}

void markRunning(RunningApplications& running, std::vector<DesktopApplication>& applications) {
    std::unordered_set<std::string> executables;
    for (RunningApplication& application : running.list())
        executables.insert(std::move(application.executable));
    for (DesktopApplication& application : applications) {
        application.entry.running =
            application.isIdentified && executables.contains(application.executable);
    }
}

// Where the icons of all themes are looked for, and at what sizes.
constexpr std::array<std::string_view, 9> iconFolders{"/icons/hicolor/32x32/apps/",
                                                      "/icons/hicolor/48x48/apps/",
                                                      "/icons/hicolor/64x64/apps/",
                                                      "/icons/hicolor/128x128/apps/",
                                                      "/icons/hicolor/256x256/apps/",
                                                      "/icons/hicolor/512x512/apps/",
                                                      "/icons/hicolor/scalable/apps/",
                                                      "/icons/",
                                                      "/pixmaps/"};
constexpr std::array<std::string_view, 3> pictureExtensions{".png", ".svg", ".xpm"};

}  // namespace

std::vector<DesktopApplication> desktopApplications(const Platform& platform) {
    std::vector<DesktopApplication> found;
    std::unordered_set<std::string> seen;
    for (const EntryFile& file : entryFiles(platform)) {
        const auto read = readDesktopEntry(file.path);
        if (!read || !read->isShown) continue;
        DesktopApplication application = describe(platform, file, *read);
        if (!seen.insert(identityOf(application, file.path)).second) continue;
        found.push_back(std::move(application));
    }
    markRunning(*platform.running, found);
    return found;
}

std::string desktopIconFile(const Platform& platform, const std::string& icon) {
    if (icon.starts_with('/')) return icon;
    if (icon.empty() || icon.find('/') != std::string::npos) return {};
    for (const NamedLocation& location : platform.layout.desktopEntries) {
        const std::string data = folderOf(location.path);
        for (std::string_view folder : iconFolders) {
            for (std::string_view picture : pictureExtensions) {
                std::string path = data + std::string(folder) + icon + std::string(picture);
                if (platform.files->exists(path)) return path;
            }
        }
    }
    return {};
}

}  // namespace velto
