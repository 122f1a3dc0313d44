#include <algorithm>
#include <utility>

#include "analysis/folders/FolderTree.h"
#include "analysis/folders/saturated.h"

namespace velto {
namespace {

using Entry = FolderTreeBuilder::Entry;

/// By parent, roots first; below one parent by name, roots by number.
bool standsBefore(const Entry& one, const Entry& other) {
    if (one.parent != other.parent) {
        if (one.parent == FolderTreeBuilder::noParent) return true;
        return other.parent != FolderTreeBuilder::noParent && one.parent < other.parent;
    }
    if (one.parent == FolderTreeBuilder::noParent) return one.number < other.number;
    return one.name < other.name;
}

bool isTwin(const Entry& one, const Entry& other) {
    return one.parent != FolderTreeBuilder::noParent && one.parent == other.parent &&
           one.name == other.name;
}

/// Where the folders of each folder stand in the sorted list, by the number of the folder.
std::vector<std::pair<std::uint32_t, std::uint32_t>> groups(const std::vector<Entry>& sorted,
                                                            std::size_t first) {
    std::size_t numbers = 0;
    for (const Entry& entry : sorted)
        numbers = std::max<std::size_t>(numbers, std::size_t{entry.number} + 1);
    std::vector<std::pair<std::uint32_t, std::uint32_t>> found(numbers, {0, 0});
    for (std::size_t index = first; index < sorted.size(); ++index) {
        if (sorted[index].parent >= found.size()) continue;
        auto& [start, end] = found[sorted[index].parent];
        if (start == end) start = static_cast<std::uint32_t>(index);
        end = static_cast<std::uint32_t>(index + 1);
    }
    return found;
}

}  // namespace

FolderTree FolderTreeBuilder::build(std::vector<Entry> entries) {
    std::ranges::sort(entries, standsBefore);
    // A folder that was made anew while the one above it was listed may have been listed twice.
    entries.erase(std::unique(entries.begin(), entries.end(), isTwin), entries.end());
    const auto isRoot = [](const Entry& entry) { return entry.parent == noParent; };
    const auto roots = static_cast<std::uint32_t>(std::ranges::count_if(entries, isRoot));
    const auto childrenOf = groups(entries, roots);

    FolderTree tree;
    tree.rootCount_ = roots;
    tree.folders_.reserve(entries.size());
    std::vector<std::uint32_t> order;  // of what is in the tree already, by its place in `entries`
    order.reserve(entries.size());
    std::size_t names = 0;
    for (const Entry& entry : entries)
        names += entry.name.size();
    tree.names_.reserve(names);
    const auto take = [&](std::uint32_t place, FolderTree::Index parent) {
        const Entry& entry = entries[place];
        order.push_back(place);
        tree.names_ += entry.name;
        FolderTree::Folder& folder = tree.folders_.emplace_back();
        folder.own = entry.facts;
        folder.bytes = entry.facts.ownBytes;
        folder.files = entry.facts.ownFiles;
        folder.unreadable = entry.facts.unreadable;
        if (entry.facts.state == FolderState::unreadable) ++folder.unreadable;
        folder.latest = entry.facts.latest;
        folder.parent = parent;
        folder.nameEnd = static_cast<std::uint32_t>(tree.names_.size());
    };
    for (std::uint32_t root = 0; root < roots; ++root)
        take(root, FolderTree::none);
    for (FolderTree::Index index = 0; index < order.size(); ++index) {
        tree.folders_[index].firstChild = static_cast<FolderTree::Index>(order.size());
        const auto [first, last] = childrenOf[entries[order[index]].number];
        for (std::uint32_t child = first; child < last; ++child)
            take(child, index);
    }
    addUp(tree);
    return tree;
}

/// A folder stands after the one that holds it, so going backwards each is whole when it is added.
void FolderTreeBuilder::addUp(FolderTree& tree) {
    for (FolderTree::Index index = static_cast<FolderTree::Index>(tree.size()); index-- > 0;) {
        const FolderTree::Folder& folder = tree.folders_[index];
        if (folder.parent == FolderTree::none) continue;
        FolderTree::Folder& parent = tree.folders_[folder.parent];
        parent.bytes = saturatedSum(parent.bytes, folder.bytes);
        parent.files += folder.files;
        parent.unreadable += folder.unreadable;
        parent.latest = std::max(parent.latest, folder.latest);
    }
}

}  // namespace velto
