#include "platform/linux/installed_applications.h"

#include <sys/stat.h>

#include <unordered_set>
#include <utility>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr std::string_view extension = ".desktop";
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

}  // namespace

std::vector<std::int64_t> InstalledApplications::changes() const {
    std::vector<std::int64_t> times;
    times.reserve(folders_.size());
    for (const std::string& folder : folders_) {
        struct stat attributes {};
        const bool isThere = ::stat(folder.c_str(), &attributes) == 0;
        times.push_back(isThere ? attributes.st_mtim.tv_sec * nanosecondsPerSecond +
                                      attributes.st_mtim.tv_nsec
                                : 0);
    }
    return times;
}

std::shared_ptr<const ApplicationIndex> InstalledApplications::index() {
    std::vector<std::int64_t> now = changes();
    if (index_ && now == changesRead_) return index_;
    std::vector<ListedApplication> found;
    std::unordered_set<std::string> seen;
    for (const std::string& folder : folders_) {
        for (const std::string& name : kernelNames(folder)) {
            if (!name.ends_with(extension)) continue;
            std::string identifier = name.substr(0, name.size() - extension.size());
            if (!seen.insert(identifier).second) continue;
            const std::string path = folder + "/" + name;
            std::optional<ListedApplication> read = read_(path);
            if (!read) continue;
            read->identifier = std::move(identifier);
            read->path = path;
            found.push_back(std::move(*read));
        }
    }
    index_ = std::make_shared<const ApplicationIndex>(found);
    changesRead_ = std::move(now);
    return index_;
}

}  // namespace velto
