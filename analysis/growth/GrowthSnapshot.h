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

struct SnapshotFolder {
    std::int64_t bytes = 0;           // with all below
    std::uint64_t inode = 0;          // 0 when unknown
    FolderIndex parent = UINT32_MAX;  // that for a root
    FolderIndex firstChild = 0;       // see NamedFolders
    std::uint32_t nameEnd = 0;
    std::uint32_t unreadable = 0;  // entries directly in it
    FolderState state = FolderState::measured;
};

/// The totals of the folders of one analysis, small ones left out. What was not measured is in it
/// whatever its size. Never changed once it is made, so any thread may read it.
class GrowthSnapshot : public NamedFolders<SnapshotFolder> {
public:
    static GrowthSnapshot of(const FolderTree& tree, GrowthFacts facts);

    /// The longest text, in bytes; what is longer is neither written nor read.
    static constexpr std::int64_t longest = 16 << 20;

    /// A text without NUL bytes, with its own checksum. Nothing when it would be too long.
    std::optional<std::string> encoded() const;

    /// Nothing for what `encoded` cannot have made: the text is a claim like any other.
    static std::optional<GrowthSnapshot> decoded(std::string_view text);

    const GrowthFacts& facts() const { return facts_; }

    /// What a folder holds besides the folders of the snapshot that lie in it.
    std::int64_t ownBytes(Index index) const;

private:
    friend class SnapshotReader;

    GrowthFacts facts_;
};

}  // namespace velto
