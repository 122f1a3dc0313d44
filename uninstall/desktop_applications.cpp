#include "uninstall/desktop_applications.h"

#include <unordered_set>
#include <utility>

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"
#include "uninstall/removal_rules.h"
#include "uninstall/tool_names.h"
#include "uninstall/words.h"

namespace velto {
namespace {

std::string stemOf(std::string_view fileName) {
    const std::string extensionOfName = lowerCaseExtension(fileName);
    if (extensionOfName == "appimage" || extensionOfName == "sh") {
        fileName.remove_suffix(extensionOfName.size() + 1);
    }
    return std::string(fileName);
}

/// True for a folder that carries the program's name, alone or before a version or the like. A name
/// that says little may be the name of a folder that holds much more.
bool isNamedLike(std::string_view folder, std::string_view program, const Locale& locale) {
    if (length(program) < 3 || isGenericInAnyCase(program)) return false;
    const std::string folderName = locale.lowerCased(folder);
    const std::string stem = locale.lowerCased(program);
    if (!folderName.starts_with(stem)) return false;
    return folderName.size() == stem.size() ||
           std::string_view("-_. 0123456789").find(folderName[stem.size()]) !=
               std::string_view::npos;
}

/// What of the home goes when the application goes: its own folder if the folder is named like it,
/// else the program file alone.
std::string removablePath(const Platform& platform, const DesktopEntryFile& file,
                          const std::string& executable) {
    if (file.origin != entryOrigin::user || lowerCaseExtension(executable) == "appimage") {
        return executable;
    }
    std::string folder = parentFolder(executable);
    if (lastPathComponent(folder) == "bin") folder = parentFolder(folder);
    const bool isNamedLikeIt = isNamedLike(lastPathComponent(folder),
                                           stemOf(lastPathComponent(executable)), *platform.locale);
    const bool isOwn = isSafeToRemove(folder, "", platform.layout);
    return isNamedLikeIt && isOwn ? folder : executable;
}

DesktopApplication describe(const Platform& platform, const DesktopEntryFile& file,
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
        // What is no name of a Flatpak could lead anywhere; then the entry alone is known.
        if (isFlatpakIdentifier(read.flatpak)) {
            entry.bid = read.flatpak;
            if (platform.files->exists(userFlatpak)) entry.path = userFlatpak;
        }
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

}  // namespace

std::vector<DesktopApplication> desktopApplications(const Platform& platform) {
    std::vector<DesktopApplication> found;
    std::unordered_set<std::string> seen;
    for (const DesktopEntryFile& file :
         desktopEntryFiles(*platform.files, platform.layout.desktopEntries)) {
        const auto read = readDesktopEntry(file.path);
        if (!read || !read->isShown) continue;
        DesktopApplication application = describe(platform, file, *read);
        if (!seen.insert(identityOf(application, file.path)).second) continue;
        found.push_back(std::move(application));
    }
    markRunning(*platform.running, found);
    return found;
}

}  // namespace velto
