#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/folders/FolderTree.h"

namespace velto {

/// What was true of an analysis besides the sizes of its folders.
struct GrowthFacts {
    std::int64_t moment = 0;            // seconds since 1970
    std::vector<std::string> leftOut;   // absolute paths that were kept out, files among them
    std::vector<std::string> volumes;   // of each root, as `FileMover::volumeOf` tells them
    std::int64_t smallest = 1'000'000;  // bytes; smaller folders count to the folder they lie in
};

/// The totals of the folders of one analysis, small ones left out. What was not measured is in it
/// whatever its size. Never changed once it is made, so any thread may read it.
class GrowthSnapshot {
public:
    using Index = FolderTree::Index;
    static constexpr Index none = FolderTree::none;

    struct Folder {
        std::int64_t bytes = 0;   // with all below
        std::uint64_t inode = 0;  // 0 when unknown
        Index parent = none;
        Index firstChild = 0;
        std::uint32_t nameEnd = 0;     // in the snapshot's names
        std::uint32_t unreadable = 0;  // entries directly in it
        FolderState state = FolderState::measured;
    };

    static GrowthSnapshot of(const FolderTree& tree, GrowthFacts facts);

    /// The longest text, in bytes; what is longer is neither written nor read.
    static constexpr std::int64_t longest = 16 << 20;

    /// A text without NUL bytes, with its own checksum. Nothing when it would be too long.
    std::optional<std::string> encoded() const;

    /// Nothing for what `encoded` cannot have made: the text is a claim like any other.
    static std::optional<GrowthSnapshot> decoded(std::string_view text);

    const GrowthFacts& facts() const { return facts_; }
    std::size_t size() const { return folders_.size(); }
    const Folder& operator[](Index index) const { return folders_[index]; }

    /// The home is the first root.
    std::uint32_t rootCount() const { return rootCount_; }
    FolderTree::Range children(Index index) const;  // in the byte order of their names
    std::string_view name(Index index) const;       // a root's whole path
    std::string path(Index index) const;
    Index find(std::string_view path) const;

    /// What a folder holds besides the folders of the snapshot that lie in it.
    std::int64_t ownBytes(Index index) const;

private:
    friend class SnapshotReader;

    Index childNamed(Index folder, std::string_view name) const;

    GrowthFacts facts_;
    std::vector<Folder> folders_;  // level by level, each folder's own side by side
    std::string names_;
    std::uint32_t rootCount_ = 0;
};

}  // namespace velto
