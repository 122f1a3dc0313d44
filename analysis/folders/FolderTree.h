#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// What a walk has made of a folder.
enum class FolderState : std::uint8_t {
    measured,
    unreadable,    // could not be opened, or its listing broke off
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
};

/// Every folder that a walk has met, with what it holds. Made by a FolderTreeBuilder, never changed
/// after that, so that any thread may read it. At most 64 bytes a folder besides its name.
class FolderTree {
public:
    using Index = std::uint32_t;
    static constexpr Index none = UINT32_MAX;

    struct Folder {
        FolderFacts own;
        std::int64_t bytes = 0;        // with all folders below
        std::uint32_t files = 0;       // the same
        std::uint32_t unreadable = 0;  // the same, unreadable folders among them
        std::uint32_t latest = 0;      // the same
        Index parent = none;           // none for a root
        Index firstChild = 0;          // where its folders begin, or would if it had any
        std::uint32_t nameEnd = 0;     // in the tree's names
    };
    static_assert(sizeof(Folder) == 64);

    /// Indices from `first` up to, not including, `last`.
    struct Range {
        Index first = 0;
        Index last = 0;
    };

    std::size_t size() const { return folders_.size(); }
    bool empty() const { return folders_.empty(); }
    const Folder& operator[](Index index) const { return folders_[index]; }

    /// The roots stand first, in the order of the walk: the home is the first one.
    std::uint32_t rootCount() const { return rootCount_; }

    /// The folders directly inside one, in the byte order of their names.
    Range children(Index index) const;

    /// The last component of the path; a root's whole path. Bytes as stored.
    std::string_view name(Index index) const;

    /// The absolute path.
    std::string path(Index index) const;

    /// The folder at an absolute path, `none` when the walk has not met it.
    Index find(std::string_view path) const;

private:
    friend class FolderTreeBuilder;

    Index childNamed(Index folder, std::string_view name) const;

    std::vector<Folder> folders_;  // level by level, each folder's own side by side
    std::string names_;            // one after another, in the order of the folders
    std::uint32_t rootCount_ = 0;
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
    static FolderTree build(std::vector<Entry> entries);

private:
    static void addUp(FolderTree& tree);
};

}  // namespace velto
