#include "analysis/growth/MergedFolders.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr int mostRounds = 16;  // a renamed folder may hold others; nobody nests them deeper

bool isNotMeasured(const GrowthSnapshot& snapshot, GrowthSnapshot::Index index) {
    return index != GrowthSnapshot::none && snapshot[index].state != FolderState::measured;
}

/// Empty when it is not known.
std::string_view volumeOf(const GrowthSnapshot& snapshot, GrowthSnapshot::Index index) {
    GrowthSnapshot::Index root = index;
    while (snapshot[root].parent != GrowthSnapshot::none)
        root = snapshot[root].parent;
    const auto& volumes = snapshot.facts().volumes;
    return root < volumes.size() ? std::string_view(volumes[root]) : std::string_view();
}

}  // namespace

MergedFolders::MergedFolders(const GrowthSnapshot& earlier, const GrowthSnapshot& later)
    : earlier_(earlier), later_(later) {
    std::vector<std::string> ofEarlier = earlier.facts().leftOut;
    std::vector<std::string> ofLater = later.facts().leftOut;
    std::ranges::sort(ofEarlier);
    std::ranges::sort(ofLater);
    std::vector<std::string> ofOne;  // what both have left out is missing in both
    std::ranges::set_symmetric_difference(ofEarlier, ofLater, std::back_inserter(ofOne));
    for (const std::string& path : ofOne)
        noteLeftOut(path);
    folders_.reserve(std::max(earlier.size(), later.size()) + 16);
    pairRoots();
    addChildren();
}

/// The home is the home, wherever it lies; the other roots are told by their paths.
void MergedFolders::pairRoots() {
    for (std::uint32_t root = 0; root < later_.rootCount(); ++root) {
        for (std::uint32_t other = 0; other < earlier_.rootCount(); ++other) {
            const bool areHomes = root == 0 && other == 0;
            const bool haveOnePath =
                root > 0 && other > 0 && later_.name(root) == earlier_.name(other);
            if (areHomes || haveOnePath) add({.earlier = other, .later = root});
        }
    }
}

void MergedFolders::noteLeftOut(const std::string& path) {
    const auto inEarlier = earlier_.find(path);
    const auto inLater = later_.find(path);
    if (inEarlier != GrowthSnapshot::none) leftOutEarlier_.folders.insert(inEarlier);
    if (inLater != GrowthSnapshot::none) leftOutLater_.folders.insert(inLater);
    if (inEarlier != GrowthSnapshot::none || inLater != GrowthSnapshot::none) return;
    // A file, or a small folder: it counts to what holds it.
    const std::string above = parentFolder(path);
    leftOutEarlier_.holders.insert(earlier_.find(above));
    leftOutLater_.holders.insert(later_.find(above));
}

bool MergedFolders::isLeftOut(const Folder& folder) const {
    return isNotMeasured(earlier_, folder.earlier) || isNotMeasured(later_, folder.later) ||
           leftOutEarlier_.folders.contains(folder.earlier) ||
           leftOutLater_.folders.contains(folder.later);
}

std::int64_t MergedFolders::ownChange(const Folder& folder) const {
    const auto earlier = folder.earlier;
    const auto later = folder.later;
    const bool wasThere = earlier != GrowthSnapshot::none;
    const bool isThere = later != GrowthSnapshot::none;
    if (wasThere && leftOutEarlier_.holders.contains(earlier)) return 0;
    if (isThere && leftOutLater_.holders.contains(later)) return 0;
    // What could be read in one of them only would look like a change.
    if (wasThere && isThere && earlier_[earlier].unreadable != later_[later].unreadable) return 0;
    return (isThere ? later_.ownBytes(later) : 0) - (wasThere ? earlier_.ownBytes(earlier) : 0);
}

void MergedFolders::add(const Folder& folder) {
    if (isLeftOut(folder)) return;
    folders_.push_back(folder);
    folders_.back().own = ownChange(folder);
}

void MergedFolders::addChildren() {
    for (; begun_ < folders_.size(); ++begun_)
        addChildrenOf(begun_);
}

/// Both lists are in the order of their names.
void MergedFolders::addChildrenOf(Index index) {
    const Folder folder = folders_[index];
    FolderTree::Range before;
    FolderTree::Range after;
    if (folder.earlier != GrowthSnapshot::none) before = earlier_.children(folder.earlier);
    if (folder.later != GrowthSnapshot::none) after = later_.children(folder.later);
    while (before.first < before.last || after.first < after.last) {
        int order = 0;
        if (before.first == before.last) {
            order = 1;
        } else if (after.first == after.last) {
            order = -1;
        } else {
            order = earlier_.name(before.first).compare(later_.name(after.first));
        }
        Folder child{.parent = index};
        if (order <= 0) child.earlier = before.first++;
        if (order >= 0) child.later = after.first++;
        // What was found to be renamed has its entry already.
        if (renamedEarlier_.contains(child.earlier)) child.earlier = GrowthSnapshot::none;
        if (renamedLater_.contains(child.later)) child.later = GrowthSnapshot::none;
        const bool isThere =
            child.earlier != GrowthSnapshot::none || child.later != GrowthSnapshot::none;
        if (isThere) add(child);
    }
}

void MergedFolders::findRenames() {
    for (int round = 0; round < mostRounds && renameOnce(); ++round)
        addChildren();
}

/// A parent that was renamed takes its folders along.
bool MergedFolders::isStillGone(Index index) const {
    for (Index folder = index; folder != none && !folders_[folder].isInBoth();
         folder = folders_[folder].parent) {
        if (!folders_[folder].isAlive) return false;
    }
    return true;
}

/// Topmost folders first, so that what moves with a parent is no rename of its own.
bool MergedFolders::renameOnce() {
    std::unordered_map<std::uint64_t, Index> gone;
    const auto count = static_cast<Index>(folders_.size());
    bool hasAppeared = false;
    for (Index index = 0; index < count; ++index) {
        const Folder& folder = folders_[index];
        if (!folder.isAlive || folder.isInBoth()) continue;
        if (folder.later != GrowthSnapshot::none) {
            hasAppeared = true;
        } else if (earlier_[folder.earlier].inode != 0) {
            gone.emplace(earlier_[folder.earlier].inode, index);
        }
    }
    bool isFound = false;
    for (Index index = 0; hasAppeared && index < count; ++index) {
        Folder& folder = folders_[index];
        const bool isNew = folder.later != GrowthSnapshot::none && !folder.isInBoth();
        if (!isNew || !folder.isAlive || !isStillGone(index)) continue;
        const auto match = gone.find(later_[folder.later].inode);
        if (match == gone.end() || !isStillGone(match->second)) continue;
        if (!canBeSame(folders_[match->second], folder)) continue;
        Folder both{.earlier = folders_[match->second].earlier,
                    .later = folder.later,
                    .parent = folder.parent,
                    .isRenamed = true};
        renamedEarlier_.insert(both.earlier);
        renamedLater_.insert(both.later);
        folder.isAlive = false;
        folders_[match->second].isAlive = false;
        add(both);
        isFound = true;
    }
    // What lay in a folder that was renamed has come along with it.
    for (Index index = 0; isFound && index < count; ++index) {
        Folder& folder = folders_[index];
        const bool hasParent = folder.parent != none && !folder.isInBoth();
        if (hasParent && !folders_[folder.parent].isAlive) folder.isAlive = false;
    }
    return isFound;
}

/// File systems give the inode of what is gone to what is made next, so something besides it has to
/// be the same: the name, a folder inside, or about the size.
bool MergedFolders::canBeSame(const Folder& gone, const Folder& appeared) const {
    const std::string_view volume = volumeOf(earlier_, gone.earlier);
    if (volume.empty() || volume != volumeOf(later_, appeared.later)) return false;
    if (earlier_.name(gone.earlier) == later_.name(appeared.later)) return true;
    if (shareAFolder(gone.earlier, appeared.later)) return true;
    const std::int64_t before = earlier_[gone.earlier].bytes;
    const std::int64_t after = later_[appeared.later].bytes;
    return std::min(before, after) >= std::max(before, after) / 2;
}

bool MergedFolders::shareAFolder(GrowthSnapshot::Index earlier, GrowthSnapshot::Index later) const {
    const auto [first, last] = earlier_.children(earlier);
    const auto [begin, end] = later_.children(later);
    auto other = begin;
    for (auto child = first; child < last; ++child) {
        while (other < end && later_.name(other) < earlier_.name(child))
            ++other;
        if (other == end) return false;
        const bool isSame = later_.name(other) == earlier_.name(child) &&
                            later_[other].inode == earlier_[child].inode;
        if (isSame && earlier_[child].inode != 0) return true;
    }
    return false;
}

std::string MergedFolders::path(const Folder& folder) const {
    return folder.later != GrowthSnapshot::none ? later_.path(folder.later)
                                                : earlier_.path(folder.earlier);
}

}  // namespace velto
