#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/text.h"

namespace velto {

using FolderIndex = std::uint32_t;

/// Indices from `first` up to, not including, `last`.
struct FolderRange {
    FolderIndex first = 0;
    FolderIndex last = 0;
};

/// Folders with their names in one text, level by level, so that each folder's own stand side by
/// side. A `FolderType` has a `parent`, a `firstChild` (where its folders begin, or would if it had
/// any) and a `nameEnd` (in the names).
template <typename FolderType>
class NamedFolders {
public:
    using Folder = FolderType;
    using Index = FolderIndex;
    using Range = FolderRange;
    static constexpr Index none = UINT32_MAX;

    std::size_t size() const { return folders_.size(); }
    bool empty() const { return folders_.empty(); }
    const Folder& operator[](Index index) const { return folders_[index]; }

    /// The roots stand first, in the order of the walk: the home is the first one.
    std::uint32_t rootCount() const { return rootCount_; }

    /// The folders directly inside one, in the byte order of their names.
    Range children(Index index) const {
        const Index next = index + 1;
        const bool isLast = next == folders_.size();
        return {folders_[index].firstChild, isLast ? next : folders_[next].firstChild};
    }

    /// The last component of the path; a root's whole path. Bytes as stored.
    std::string_view name(Index index) const {
        const std::uint32_t start = index == 0 ? 0 : folders_[index - 1].nameEnd;
        return std::string_view(names_).substr(start, folders_[index].nameEnd - start);
    }

    /// The absolute path.
    std::string path(Index index) const {
        std::vector<std::string_view> names;
        for (Index folder = index; folder != none; folder = folders_[folder].parent)
            names.push_back(name(folder));
        std::string path(names.back());
        for (auto next = names.rbegin() + 1; next != names.rend(); ++next) {
            if (!path.ends_with('/')) path += '/';
            path += *next;
        }
        return path;
    }

    /// The folder at an absolute path, `none` when there is none.
    Index find(std::string_view path) const {
        // The home is the first and may hold the names of others, which know more of themselves.
        for (Index root = rootCount_; root-- > 0;) {
            if (!isAtOrBelow(path, name(root))) continue;
            const Index folder = below(root, path.substr(name(root).size()));
            if (folder != none) return folder;
        }
        return none;
    }

protected:
    std::vector<Folder> folders_;
    std::string names_;  // one after another, in the order of the folders
    std::uint32_t rootCount_ = 0;

private:
    Index below(Index folder, std::string_view rest) const {
        while (folder != none && !rest.empty()) {
            if (rest.front() == '/') rest.remove_prefix(1);
            const std::string_view next = rest.substr(0, rest.find('/'));
            rest.remove_prefix(next.size());
            if (!next.empty()) folder = childNamed(folder, next);
        }
        return folder;
    }

    Index childNamed(Index folder, std::string_view wanted) const {
        auto [first, last] = children(folder);
        const Index end = last;
        while (first < last) {
            const Index middle = first + (last - first) / 2;
            if (name(middle) < wanted) {
                first = middle + 1;
            } else {
                last = middle;
            }
        }
        return first < end && name(first) == wanted ? first : none;
    }
};

}  // namespace velto
