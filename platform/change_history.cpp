#include "platform/change_history.h"

#include <algorithm>
#include <string>
#include <utility>

namespace velto {
namespace {

// After each of these something may have changed of which nothing is told: events were lost, their
// order is unknown, the folder itself is another one, or other files are seen through it.
constexpr std::uint32_t doubts = change_flags::userDropped | change_flags::kernelDropped |
                                 change_flags::identifiersWrapped | change_flags::rootChanged |
                                 change_flags::mount | change_flags::unmount;

}  // namespace

void ChangeHistory::take(std::string_view path, std::uint32_t flags) {
    if (isOver()) return;  // what comes after the range belongs to the next one
    const bool isDone = (flags & change_flags::historyDone) != 0;
    const bool isUsable = changes_.size() < mostChanges && path.starts_with('/');
    if ((flags & doubts) != 0 || (!isDone && !isUsable)) {
        isDoubtful_ = true;
    } else if (isDone) {
        isComplete_ = true;  // its path says nothing
    } else {
        while (path.size() > 1 && path.ends_with('/'))
            path.remove_suffix(1);
        const bool withAllBelow = (flags & change_flags::mustScanSubfolders) != 0;
        changes_.push_back({std::string(path), withAllBelow});
    }
}

std::optional<std::vector<FolderChange>> ChangeHistory::takeResult() {
    if (!isComplete_ || isDoubtful_) return std::nullopt;
    // Of one folder the one that says more stands first.
    std::ranges::sort(changes_, [](const FolderChange& one, const FolderChange& other) {
        return one.path != other.path ? one.path < other.path
                                      : one.withAllBelow > other.withAllBelow;
    });
    const auto rest = std::unique(
        changes_.begin(), changes_.end(),
        [](const FolderChange& one, const FolderChange& other) { return one.path == other.path; });
    changes_.erase(rest, changes_.end());
    return std::exchange(changes_, {});
}

}  // namespace velto
