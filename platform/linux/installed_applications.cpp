#include "platform/linux/installed_applications.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

namespace velto {
namespace {

constexpr std::int64_t nanosecondsOfASecond = 1'000'000'000;

std::int64_t changeOf(const std::string& folder) {
    struct stat attributes {};
    if (::stat(folder.c_str(), &attributes) != 0) return 0;
    return attributes.st_mtim.tv_sec * nanosecondsOfASecond + attributes.st_mtim.tv_nsec;
}

std::vector<std::int64_t> changesOf(const std::vector<std::string>& folders) {
    std::vector<std::int64_t> times;
    times.reserve(folders.size());
    for (const std::string& folder : folders)
        times.push_back(changeOf(folder));
    return times;
}

}  // namespace

/// With their subfolders, and with those that are not there: an entry may come.
std::vector<std::string> InstalledApplications::foldersWithEntries() const {
    std::vector<std::string> found = desktopEntryFolders(files_, folders_);
    for (const NamedLocation& folder : folders_) {
        if (std::ranges::find(found, folder.path) == found.end()) found.push_back(folder.path);
    }
    return found;
}

std::vector<ListedApplication> InstalledApplications::readAll() const {
    std::vector<ListedApplication> found;
    for (DesktopEntryFile& file : desktopEntryFiles(files_, folders_)) {
        std::optional<DesktopEntry> entry = read_(file.path);
        if (!entry || !entry->isShown) continue;
        std::string snap = snapOfEntry(file, *entry);
        found.push_back({.identifier = std::move(file.id),
                         .name = std::move(entry->name),
                         .path = std::move(file.path),
                         .executable = std::move(entry->executable),
                         .startsAnything = entry->startsScript,
                         .script = std::move(entry->script),
                         .flatpak = std::move(entry->flatpak),
                         .snap = std::move(snap)});
        if (found.back().name.empty()) found.back().name = found.back().identifier;
    }
    return found;
}

std::shared_ptr<const ApplicationIndex> InstalledApplications::index() {
    if (index_ && changesOf(watched_) == changesRead_) return index_;
    watched_ = foldersWithEntries();
    changesRead_ = changesOf(watched_);  // before reading: a change meanwhile is read the next time
    index_ = std::make_shared<const ApplicationIndex>(readAll());
    return index_;
}

}  // namespace velto
