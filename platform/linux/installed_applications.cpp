#include "platform/linux/installed_applications.h"

#include <sys/stat.h>

#include <utility>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t changeOf(const std::string& folder) {
    struct stat attributes {};
    if (::stat(folder.c_str(), &attributes) != 0) return 0;
    return attributes.st_mtim.tv_sec * nanosecondsPerSecond + attributes.st_mtim.tv_nsec;
}

constexpr int mostSubfolders = 200;  // of a folder of entries

std::vector<std::int64_t> changesOf(const std::vector<std::string>& folders) {
    std::vector<std::int64_t> times;
    times.reserve(folders.size());
    for (const std::string& folder : folders)
        times.push_back(changeOf(folder));
    return times;
}

bool isFolder(const std::string& path) {
    struct stat attributes {};
    return ::stat(path.c_str(), &attributes) == 0 && S_ISDIR(attributes.st_mode);
}

}  // namespace

/// With their subfolders, also the empty ones: an entry may come.
std::vector<std::string> InstalledApplications::foldersWithEntries() const {
    std::vector<std::string> found;
    for (const NamedLocation& folder : folders_) {
        found.push_back(folder.path);
        int left = mostSubfolders;
        for (const std::string& name : kernelNames(folder.path)) {
            if (left == 0) break;
            if (name.ends_with(desktopEntryExtension)) continue;
            if (std::string path = folder.path + "/" + name; isFolder(path)) {
                found.push_back(std::move(path));
                --left;
            }
        }
    }
    return found;
}

std::vector<ListedApplication> InstalledApplications::readAll() const {
    std::vector<ListedApplication> found;
    for (DesktopEntryFile& file : desktopEntryFiles(files_, folders_)) {
        std::optional<DesktopEntry> entry = read_(file.path);
        if (!entry || !entry->isShown) continue;
        found.push_back({.identifier = std::move(file.id),
                         .name = std::move(entry->name),
                         .path = std::move(file.path),
                         .executable = std::move(entry->executable),
                         .startsAnything = entry->startsScript});
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
