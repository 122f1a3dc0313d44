#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "analysis/folders/NamedFolders.h"

namespace velto {

/// What a walk has made of a folder.
enum class FolderState : std::uint8_t {
    measured,
    unreadable,    // could not be opened
    withheld,      // the system keeps it from programs without Full Disk Access
    excluded,      // by the user
    own,           // the program's data, its trash among them
    otherVolume,   // another file system begins here
    alreadyWalked  // seen under another name: a bind mount of a folder of this walk
};

/// What one folder takes up. Bytes are allocated ones; a file with several names counts once, for
/// the first of them in the order of paths.
struct FolderFacts {
    std::uint64_t inode = 0;       // of the folder on its volume, 0 when unknown
    std::int64_t ownBytes = 0;     // the folder itself and what lies directly in it, folders apart
    std::uint32_t ownFiles = 0;    // regular files directly in it, those without bytes too
    std::uint32_t unreadable = 0;  // entries directly in it that could not be read
    std::uint32_t latest = 0;      // last change of anything directly in it, seconds since 1970
    FolderState state = FolderState::measured;
    bool isListedWhole = true;  // false when the listing broke off; known until the tree is saved
};

/// One folder of a tree, at most 64 bytes besides its name.
struct TreeFolder {
    FolderFacts own;
    std::int64_t bytes = 0;           // with all folders below
    std::uint32_t files = 0;          // the same
    std::uint32_t unreadable = 0;     // the same, unreadable folders among them
    std::uint32_t latest = 0;         // the same
    FolderIndex parent = UINT32_MAX;  // that for a root
    FolderIndex firstChild = 0;       // see NamedFolders
    std::uint32_t nameEnd = 0;
};
static_assert(sizeof(TreeFolder) == 64);

/// Every folder that a walk has met, with what it holds. Made by a FolderTreeBuilder, never changed
/// after that, so that any thread may read it.
class FolderTree : public NamedFolders<TreeFolder> {
private:
    friend class FolderTreeBuilder;
};

/// Puts a tree together from its folders in any order.
class FolderTreeBuilder {
public:
    /// The number under which a folder was added; the caller's own choice, each once. Memory is
    /// taken for every number up to the greatest.
    using Number = std::uint32_t;
    static constexpr Number noParent = UINT32_MAX;

    struct Entry {
        Number number = 0;
        Number parent = noParent;
        std::string_view name;  // a root's absolute path; outlives `build`
        FolderFacts facts;
    };

    /// Takes the folders, puts them in order and adds up what lies below each. Roots stand in the
    /// order of their numbers, the folders of each folder in the byte order of their names. Entries
    /// whose parent is missing are left out with everything below them.
    static FolderTree build(const std::vector<Entry>& entries);

private:
    static void addUp(FolderTree& tree);
};

}  // namespace velto
