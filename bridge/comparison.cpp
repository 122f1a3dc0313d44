#include "bridge/comparison.h"

#include <cstdint>
#include <map>
#include <thread>
#include <utility>

#include "analysis/post_processing.h"
#include "platform/background_priority.h"

namespace velto {
namespace {

/// Of one part; a set of files of one length is never divided, since they are compared with each
/// other.
constexpr std::size_t filesInPart = 64;

std::vector<std::vector<FileRecord>> parts(const std::vector<FileRecord>& files) {
    std::map<std::int64_t, std::vector<FileRecord>> byLength;
    for (const FileRecord& file : files)
        byLength[file.lengthToCompare()].push_back(file);
    std::vector<std::vector<FileRecord>> result;
    for (auto& [length, set] : byLength) {
        if (result.empty() || result.back().size() >= filesInPart) result.emplace_back();
        result.back().insert(result.back().end(), set.begin(), set.end());
    }
    return result;
}

void compare(Platform& platform, const std::vector<FileRecord>& files, DigestStore* digests,
             const CancellationFlag& cancelled, const std::function<void(ComparedPart)>& tell) {
    const DupFinder finder(*platform.clock, *platform.contents, 1, digests);
    const auto all = parts(files);
    for (auto part = all.begin(); part != all.end() && !cancelled.isCancelled(); ++part) {
        const auto result = finder.find(
            *part, [&] { return cancelled.isCancelled(); }, DupFinder::Budget::unlimited);
        ComparedPart brought;
        brought.groups = duplicateGroups(result.groups, *platform.files, platform.clock->now());
        brought.details = listDetails({}, brought.groups, *platform.files);
        brought.left = result.left;
        for (auto rest = part + 1; rest != all.end(); ++rest)
            brought.left.insert(brought.left.end(), rest->begin(), rest->end());
        tell(std::move(brought));
    }
}

}  // namespace

void compareInParts(Platform& platform, const std::vector<FileRecord>& files, DigestStore* digests,
                    const CancellationFlag& cancelled,
                    const std::function<void(ComparedPart)>& tell) {
    // A thread of its own: a lowered priority is kept for life.
    std::thread worker([&] {
        runThreadInBackground();
        compare(platform, files, digests, cancelled, tell);
    });
    worker.join();
}

}  // namespace velto
