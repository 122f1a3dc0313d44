#include <algorithm>
#include <span>

#include "analysis/folders/FolderTree.h"
#include "analysis/folders/saturated.h"

namespace velto {
namespace {

using Entry = FolderTreeBuilder::Entry;
using Number = FolderTreeBuilder::Number;

using Position = std::uint32_t;  // in the list of records

/// Where the records of one folder's folders stand, and the roots', by the folder's number. Records
/// are large: they stay where they are.
class Groups {
public:
    explicit Groups(const std::vector<Entry>& entries) : entries_(entries) {
        std::size_t numbers = 0;
        for (const Entry& entry : entries)
            numbers = std::max<std::size_t>(numbers, std::size_t{entry.number} + 1);
        // Each group's end first, which becomes its start as it is filled from its end.
        starts_.resize(numbers + 1, 0);
        for (const Entry& entry : entries) {
            if (entry.parent < numbers) ++starts_[entry.parent];
        }
        Position end = 0;
        for (Position& start : starts_)
            start = end += start;
        places_.resize(end);
        for (Position place = 0; place < entries.size(); ++place) {
            const Number parent = entries[place].parent;
            if (parent < numbers) {
                places_[--starts_[parent]] = place;
            } else if (parent == FolderTreeBuilder::noParent) {
                roots_.push_back(place);
            }
        }
        std::ranges::sort(roots_, {}, [&](Position place) { return entries_[place].number; });
    }

    const std::vector<Position>& roots() const { return roots_; }

    /// By name, each once: a folder that was made anew while the one above it was listed may have
    /// been listed twice.
    std::span<const Position> inside(Number folder) {
        const auto group =
            std::span(places_).subspan(starts_[folder], starts_[folder + 1] - starts_[folder]);
        const auto name = [&](Position place) { return entries_[place].name; };
        std::ranges::sort(group, {}, name);
        const auto end = std::unique(group.begin(), group.end(), [&](Position one, Position other) {
            return name(one) == name(other);
        });
        return group.first(static_cast<std::size_t>(end - group.begin()));
    }

private:
    const std::vector<Entry>& entries_;
    std::vector<Position> starts_;  // and the end of the last one
    std::vector<Position> places_;
    std::vector<Position> roots_;
};

}  // namespace

FolderTree FolderTreeBuilder::build(const std::vector<Entry>& entries) {
    Groups groups(entries);

    FolderTree tree;
    tree.rootCount_ = static_cast<std::uint32_t>(groups.roots().size());
    tree.folders_.reserve(entries.size());
    std::vector<Position> order;  // of what is in the tree already
    order.reserve(entries.size());
    std::size_t names = 0;
    for (const Entry& entry : entries)
        names += entry.name.size();
    tree.names_.reserve(names);
    const auto take = [&](Position place, FolderTree::Index parent) {
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
    for (const Position root : groups.roots())
        take(root, FolderTree::none);
    for (FolderTree::Index index = 0; index < order.size(); ++index) {
        tree.folders_[index].firstChild = static_cast<FolderTree::Index>(order.size());
        for (const Position child : groups.inside(entries[order[index]].number))
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
