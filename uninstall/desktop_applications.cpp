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
#include "uninstall/desktop_parts.h"
#include "uninstall/removable_path.h"
#include "uninstall/removal_rules.h"
#include "uninstall/tool_names.h"

namespace velto {
namespace {

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
    AppEntry& entry = application.entry;
    entry.bid = validUtf8(file.id);
    entry.name = read.name.empty() ? entry.bid : read.name;
    entry.version = read.version;
    entry.path = file.path;
    const bool isSnap = !application.snap.empty() || file.origin == entryOrigin::snap;
    application.isIdentified = !read.startsScript && read.flatpak.empty() && !isSnap;
    // What runs many applications is the name of none of them.
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
        entry.path = removablePath(platform, file, read);
    } else {
        entry.apple = file.origin == entryOrigin::system && isPartOfDesktop(file.id);
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
