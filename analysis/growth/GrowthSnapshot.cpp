#include "analysis/growth/GrowthSnapshot.h"

#include <algorithm>
#include <utility>

namespace velto {
namespace {

/// The large ones, those that were not measured or not whole, and all on the way to them.
std::vector<bool> keptFolders(const FolderTree& tree, std::int64_t smallest) {
    std::vector<bool> kept(tree.size(), false);
    for (FolderTree::Index index = static_cast<FolderTree::Index>(tree.size()); index-- > 0;) {
        const FolderTree::Folder& folder = tree[index];
        const bool isRoot = folder.parent == FolderTree::none;
        const bool isLarge = folder.bytes >= smallest;
        const bool isKnown =
            folder.own.state == FolderState::measured && folder.own.unreadable == 0;
        if (isRoot || isLarge || !isKnown) kept[index] = true;
        if (kept[index] && !isRoot) kept[folder.parent] = true;
    }
    return kept;
}

/// Of a folder that was listed in part nobody knows what has gone from it.
FolderState stateOf(const FolderFacts& own) {
    const bool isInPart = own.state == FolderState::measured && !own.isListedWhole;
    return isInPart ? FolderState::unreadable : own.state;
}

}  // namespace

/// The folders that are left stand in the order of the tree, so each folder's own stay side by
/// side.
GrowthSnapshot GrowthSnapshot::of(const FolderTree& tree, GrowthFacts facts) {
    const std::vector<bool> kept = keptFolders(tree, facts.smallest);
    GrowthSnapshot made;
    made.facts_ = std::move(facts);
    made.rootCount_ = tree.rootCount();
    std::vector<Index> places(tree.size(), none);
    Index next = 0;
    for (Index index = 0; index < tree.size(); ++index) {
        if (kept[index]) places[index] = next++;
    }
    made.folders_.reserve(next);
    Index child = tree.rootCount();
    for (Index index = 0; index < tree.size(); ++index) {
        if (!kept[index]) continue;
        const FolderTree::Folder& folder = tree[index];
        made.names_ += tree.name(index);
        made.folders_.push_back(
            {.bytes = std::max<std::int64_t>(0, folder.bytes),
             .inode = folder.own.inode == UINT64_MAX ? 0 : folder.own.inode,
             .parent = folder.parent == FolderTree::none ? none : places[folder.parent],
             .firstChild = child,
             .nameEnd = static_cast<std::uint32_t>(made.names_.size()),
             .unreadable = folder.own.unreadable,
             .state = stateOf(folder.own)});
        const auto [first, last] = tree.children(index);
        child += static_cast<Index>(std::count(kept.begin() + first, kept.begin() + last, true));
    }
    return made;
}

std::int64_t GrowthSnapshot::ownBytes(Index index) const {
    std::int64_t bytes = folders_[index].bytes;
    const auto [first, last] = children(index);
    for (Index child = first; child < last; ++child)
        bytes -= folders_[child].bytes;
    return bytes;
}

}  // namespace velto
