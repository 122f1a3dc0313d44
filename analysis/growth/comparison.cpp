#include "analysis/growth/comparison.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "analysis/folders/saturated.h"
#include "analysis/growth/MergedFolders.h"

namespace velto {
namespace {

using Index = MergedFolders::Index;
using Folder = MergedFolders::Folder;

// What is a smaller part of what happened in a folder is told with the rest of it ...
constexpr std::int64_t smallestPart = 20;
// ... unless it is worth a line of its own wherever it is.
constexpr std::int64_t alwaysTold = 1'000'000'000;

/// Decides from the deepest folders upwards which ones tell.
class Telling {
public:
    Telling(const MergedFolders& merged, std::int64_t smallestKept, const GrowthLimits& limits)
        : folders_(merged.folders()),
          smallestKept_(smallestKept),
          limits_(limits),
          rest_(folders_.size(), 0),
          doubt_(folders_.size(), 0),
          isTold_(folders_.size(), false),
          told_(folders_.size()) {
        for (auto index = static_cast<Index>(folders_.size()); index-- > 0;)
            close(index);
    }

    /// All that tell, in no order, with what each tells.
    std::vector<std::pair<Index, std::int64_t>> told() const {
        std::vector<std::pair<Index, std::int64_t>> found;
        for (Index index = 0; index < folders_.size(); ++index) {
            if (isTold_[index]) found.emplace_back(index, rest_[index]);
        }
        return found;
    }

private:
    /// Everything below has been decided.
    void close(Index index) {
        const Folder& folder = folders_[index];
        if (!folder.isAlive) return;
        rest_[index] += folder.own;
        const bool isRoot = folder.parent == MergedFolders::none;
        // Below the topmost folder that has appeared or gone nothing tells but what was renamed.
        if (!folder.isInBoth() && !folders_[holder(index)].isInBoth()) {
            hand(index, holder(index));
            return;
        }
        if (!isRoot) foldSmallParts(index);
        isTold_[index] = isWorth(rest_[index], doubt_[index]);
        if (isTold_[index]) told_[index].push_back(index);
        if (isRoot) return;
        hand(index, holder(index));
    }

    /// The folder above that has an entry; one that was renamed since has none.
    Index holder(Index index) const {
        Index above = folders_[index].parent;
        while (!folders_[above].isAlive)
            above = folders_[above].parent;
        return above;
    }

    void hand(Index index, Index above) {
        auto& list = told_[above];
        if (list.empty()) {
            list = std::move(told_[index]);
        } else {
            list.insert(list.end(), told_[index].begin(), told_[index].end());
        }
        told_[index] = {};
        if (!isTold_[index]) {
            rest_[above] += rest_[index];
            doubt_[above] += doubt_[index];
        } else if (!folders_[index].isInBoth()) {
            // What it held in the other snapshot counts to the folder above there.
            doubt_[above] += smallestKept_;
        }
    }

    bool isWorth(std::int64_t bytes, std::int64_t doubt) const {
        return std::abs(bytes) >= limits_.worthTelling + doubt;
    }

    /// Many that are each a small part of what happened in a folder are better told by it.
    void foldSmallParts(Index index) {
        auto& list = told_[index];
        if (list.empty()) return;
        std::ranges::sort(list, [this](Index one, Index other) {
            return std::abs(rest_[one]) > std::abs(rest_[other]);
        });
        std::int64_t more = std::max<std::int64_t>(0, rest_[index]);
        std::int64_t less = std::min<std::int64_t>(0, rest_[index]);
        for (const Index entry : list)
            (rest_[entry] > 0 ? more : less) += rest_[entry];
        std::size_t ofMore = 0;
        std::size_t ofLess = 0;
        std::vector<Index> folded;
        std::erase_if(list, [&](Index entry) {
            const std::int64_t bytes = rest_[entry];
            const bool isPart =
                bytes > 0 ? bytes >= more / smallestPart : bytes <= less / smallestPart;
            const bool isLarge = std::abs(bytes) >= alwaysTold;
            std::size_t& count = bytes > 0 ? ofMore : ofLess;
            if ((isPart || isLarge) && count++ < limits_.most) return false;
            folded.push_back(entry);
            return true;
        });
        for (const Index entry : folded)
            fold(entry, index);
        // What was folded into one of the others may have left it with too little to tell.
        const auto tooLittle = [this](Index entry) { return !isWorth(rest_[entry], 0); };
        for (auto next = std::ranges::find_if(list, tooLittle); next != list.end();
             next = std::ranges::find_if(list, tooLittle)) {
            fold(*next, index);
            list.erase(next);
        }
    }

    /// Into the next one above that tells, at most `top`.
    void fold(Index entry, Index top) {
        isTold_[entry] = false;
        Index above = holder(entry);
        while (above != top && !isTold_[above])
            above = holder(above);
        rest_[above] += rest_[entry];
        rest_[entry] = 0;
    }

    const std::vector<Folder>& folders_;
    const std::int64_t smallestKept_;
    const GrowthLimits& limits_;
    std::vector<std::int64_t> rest_;   // what is told here, or handed to the folder above
    std::vector<std::int64_t> doubt_;  // by how much the rest may be off
    std::vector<bool> isTold_;
    std::vector<std::vector<Index>> told_;  // below, the folder itself too
};

GrowthChange::Kind kindOf(const Folder& folder, std::int64_t bytes) {
    const bool isOnlyNow = folder.earlier == GrowthSnapshot::none;
    const bool wasOnlyThen = folder.later == GrowthSnapshot::none;
    if (bytes > 0) return isOnlyNow ? GrowthChange::Kind::appeared : GrowthChange::Kind::grown;
    return wasOnlyThen ? GrowthChange::Kind::gone : GrowthChange::Kind::shrunk;
}

/// The most first, those of one size by their paths.
void keepMost(std::vector<GrowthChange>& changes, std::size_t most) {
    std::ranges::sort(changes, [](const GrowthChange& one, const GrowthChange& other) {
        const std::int64_t left = std::abs(one.bytes);
        const std::int64_t right = std::abs(other.bytes);
        return left != right ? left > right : one.path < other.path;
    });
    if (changes.size() > most) changes.resize(most);
}

std::vector<GrowthRename> renamesOf(const MergedFolders& merged, const GrowthSnapshot& earlier,
                                    const GrowthSnapshot& later, const GrowthLimits& limits) {
    std::vector<GrowthRename> renames;
    for (const Folder& folder : merged.folders()) {
        if (!folder.isRenamed || !folder.isAlive) continue;
        const std::int64_t bytes = later[folder.later].bytes;
        if (bytes < limits.worthTelling) continue;
        renames.push_back(
            {.from = earlier.path(folder.earlier), .to = later.path(folder.later), .bytes = bytes});
    }
    std::ranges::sort(renames, [](const GrowthRename& one, const GrowthRename& other) {
        return one.bytes != other.bytes ? one.bytes > other.bytes : one.to < other.to;
    });
    if (renames.size() > limits.most) renames.resize(limits.most);
    return renames;
}

/// What is worth telling of two snapshots may be more than what is of a usual one.
GrowthLimits limitsFor(const GrowthSnapshot& earlier, const GrowthSnapshot& later,
                       GrowthLimits limits) {
    const std::int64_t kept = std::max(earlier.facts().smallest, later.facts().smallest);
    limits.worthTelling = std::max(limits.worthTelling, 10 * kept);
    return limits;
}

}  // namespace

Growth compareGrowth(const GrowthSnapshot& earlier, const GrowthSnapshot& later,
                     const GrowthLimits& wanted) {
    const GrowthLimits limits = limitsFor(earlier, later, wanted);
    MergedFolders merged(earlier, later);
    merged.findRenames();
    Growth growth{.since = earlier.facts().moment, .until = later.facts().moment};
    for (const Folder& folder : merged.folders()) {
        if (folder.isAlive) growth.bytes = saturatedSum(growth.bytes, folder.own);
    }
    const std::int64_t kept = std::max(earlier.facts().smallest, later.facts().smallest);
    for (const auto& [index, bytes] : Telling(merged, kept, limits).told()) {
        const Folder& folder = merged.folders()[index];
        auto& changes = bytes > 0 ? growth.grown : growth.shrunk;
        changes.push_back(
            {.path = merged.path(folder), .bytes = bytes, .kind = kindOf(folder, bytes)});
    }
    keepMost(growth.grown, limits.most);
    keepMost(growth.shrunk, limits.most);
    growth.renamed = renamesOf(merged, earlier, later, limits);
    return growth;
}

std::map<std::string, std::int64_t> growthInside(const GrowthSnapshot& earlier,
                                                 const GrowthSnapshot& later,
                                                 const std::string& path,
                                                 const GrowthLimits& wanted) {
    const GrowthLimits limits = limitsFor(earlier, later, wanted);
    const auto holder = later.find(path);
    std::map<std::string, std::int64_t> found;
    if (holder == GrowthSnapshot::none) return found;
    const MergedFolders merged(earlier, later);
    const auto& folders = merged.folders();
    std::vector<std::int64_t> changes(folders.size(), 0);
    for (auto index = static_cast<Index>(folders.size()); index-- > 0;) {
        const Folder& folder = folders[index];
        changes[index] += folder.own;
        if (folder.parent == MergedFolders::none) continue;
        changes[folder.parent] += changes[index];
        if (folders[folder.parent].later != holder) continue;
        const bool isKnown = folder.isInBoth() || std::abs(changes[index]) >= limits.worthTelling;
        if (!isKnown) continue;
        const bool isThere = folder.later != GrowthSnapshot::none;
        const std::string_view name =
            isThere ? later.name(folder.later) : earlier.name(folder.earlier);
        found.emplace(name, changes[index]);
    }
    return found;
}

}  // namespace velto
