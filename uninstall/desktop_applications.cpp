#include "uninstall/desktop_applications.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"
#include "uninstall/ProcessOwners.h"
#include "uninstall/app_images.h"
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
    DesktopApplication application;
    application.id = file.id;
    application.file = file.path;
    application.executable = read.executable;
    application.script = read.script;
    application.flatpak = read.flatpak;
    application.snap = snapOfEntry(file, read);
    application.arguments = read.arguments;
    application.icon = read.icon;
    AppEntry& entry = application.entry;
    entry.bid = validUtf8(file.id);
    entry.name = read.name.empty() ? entry.bid : read.name;
    entry.version = read.version;
    entry.path = file.path;
    const bool isSnap = !application.snap.empty() || file.origin == entryOrigin::snap;
    application.isIdentified = !read.startsScript && read.flatpak.empty() && !isSnap;
    if (application.isIdentified) entry.exec = stemOf(lastPathComponent(read.executable));

    const std::string userFlatpak = layout.userFlatpaks + "/" + read.flatpak;
    if (!read.flatpak.empty()) {
        entry.store = true;
        // What is no name of a Flatpak could lead anywhere; then the entry alone is known.
        if (isFlatpakIdentifier(read.flatpak)) {
            entry.bid = read.flatpak;
            if (platform.files->exists(userFlatpak)) entry.path = userFlatpak;
        }
    } else if (isSnap) {
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

using Group = std::vector<DesktopApplication*>;

/// The one that is the program itself: it is started without a word, or there is no other.
/// Null where each is something else that the program does: then it is a launcher.
const DesktopApplication* programItself(const Group& group) {
    const auto plain = std::ranges::find_if(
        group, [](const DesktopApplication* one) { return one->arguments.empty(); });
    if (plain != group.end()) return *plain;
    const bool areTheSame = std::ranges::all_of(group, [&](const DesktopApplication* one) {
        return one->arguments == group.front()->arguments;
    });
    const bool isImage = lowerCaseExtension(group.front()->executable) == "appimage";
    return areTheSame || isImage ? group.front() : nullptr;
}

/// Of the applications that share a program one is the program; the others are what their entries
/// are, and go with these alone. Says which of them are the same once more.
std::unordered_set<const DesktopApplication*> shareProgram(const Group& group) {
    std::unordered_set<const DesktopApplication*> repeated;
    const DesktopApplication* const itself = programItself(group);
    for (DesktopApplication* one : group) {
        if (one == itself) continue;
        const bool goesWithProgram = one->entry.path != one->file;
        if (itself != nullptr && goesWithProgram && one->arguments == itself->arguments) {
            repeated.insert(one);
            continue;
        }
        one->entry.path = one->file;
        one->entry.exec.clear();
        one->isIdentified = false;
    }
    return repeated;
}

void shareAmong(std::vector<DesktopApplication>& applications) {
    std::unordered_map<std::string, Group> byProgram;
    std::unordered_set<std::string> flatpaks;  // of the user, by their folder
    std::unordered_set<const DesktopApplication*> repeated;
    for (DesktopApplication& application : applications) {
        if (application.isIdentified) byProgram[application.executable].push_back(&application);
        const bool isUserFlatpak =
            !application.flatpak.empty() && application.entry.path != application.file;
        if (isUserFlatpak && !flatpaks.insert(application.entry.path).second) {
            repeated.insert(&application);
        }
    }
    for (const auto& [program, group] : byProgram)
        repeated.merge(shareProgram(group));
    std::erase_if(applications, [&](const DesktopApplication& application) {
        return repeated.contains(&application);
    });
}

/// Two programs may lie in one folder that goes as a whole.
void keepPathsApart(std::vector<DesktopApplication>& applications) {
    std::unordered_set<std::string> paths;
    for (DesktopApplication& application : applications) {
        if (paths.insert(application.entry.path).second) continue;
        application.entry.path = application.file;
        paths.insert(application.file);
    }
}

void markRunning(const Platform& platform, std::vector<DesktopApplication>& applications) {
    const ProcessOwners owners(applications);
    std::unordered_set<std::string> running;  // paths
    for (const RunningApplication& process : platform.running->list()) {
        const ProcessOwners::Match match = owners.of(process, *platform.files);
        if (match.owner != nullptr) running.insert(match.owner->path);
    }
    for (DesktopApplication& application : applications)
        application.entry.running = running.contains(application.entry.path);
}

}  // namespace

std::vector<DesktopApplication> desktopApplications(const Platform& platform) {
    std::vector<DesktopApplication> found;
    for (const DesktopEntryFile& file :
         desktopEntryFiles(*platform.files, platform.layout.desktopEntries)) {
        const auto read = readDesktopEntry(file.path);
        if (!read || !read->isShown) continue;
        found.push_back(describe(platform, file, *read));
    }
    shareAmong(found);
    keepPathsApart(found);
    std::ranges::move(appImagesWithoutEntry(platform, found), std::back_inserter(found));
    markRunning(platform, found);
    return found;
}

}  // namespace velto
