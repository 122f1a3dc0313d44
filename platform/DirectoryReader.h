#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

enum class EntryKind : std::uint8_t { regular, folder, symbolicLink, other, unreadable };

/// One entry of a folder. Sizes, times, inode and links are read for regular files only; of any
/// other entry what the options ask for.
struct DirectoryEntry {
    std::string_view name;  // bytes as stored; points into the list that holds the entry
    EntryKind kind = EntryKind::other;
    bool hiddenFlag = false;  // the file system's own hidden flag (a leading full stop is not)
    std::int64_t allocatedSize = -1;  // bytes on disk, -1 when the system does not say
    std::int64_t logicalSize = 0;     // bytes
    double accessed = 0;              // seconds since 1970, 0 when the system does not say
    double modified = 0;              // seconds since 1970, 0 when the system does not say
    std::uint64_t inode = 0;          // on its volume, 0 when the system does not say
    std::uint32_t links = 1;          // names that the file has, here and elsewhere
};

/// The entries of one folder; reused from folder to folder so that reading allocates nothing once
/// it has grown. The names live as long as the list is neither cleared nor destroyed.
class EntryList {
public:
    void clear();
    /// Copies `name` into the list and returns the new entry.
    DirectoryEntry& add(std::string_view name);
    /// Room of at least `bytes` in the list's own memory, aligned for any record. It is the
    /// caller's to write until something else is asked of the list; what is kept of it lives as
    /// long as the names.
    std::span<char> room(std::size_t bytes);
    /// Keeps the first `bytes` of the room given last.
    void keep(std::size_t bytes) { used_ += bytes; }
    /// A new entry whose name lies in what was kept, or will be before the list is asked anew.
    DirectoryEntry& addKept(std::string_view name) {
        DirectoryEntry& entry = entries_.emplace_back();
        entry.name = name;
        return entry;
    }
    const std::vector<DirectoryEntry>& entries() const { return entries_; }
    /// For who reads names first and attributes later.
    std::vector<DirectoryEntry>& entries() { return entries_; }
    /// Takes back the last one; its name's room is not used again.
    void removeLast() { entries_.pop_back(); }

private:
    static constexpr std::size_t chunkSize = 64 * 1024;

    std::vector<DirectoryEntry> entries_;
    std::vector<std::unique_ptr<char[]>> chunks_;
    std::size_t chunk_ = 0;
    std::size_t used_ = 0;
};

/// An open folder. Closing is the destructor's.
class OpenFolder {
public:
    virtual ~OpenFolder() = default;
};

struct ReadOptions {
    bool skipHidden = false;  // leave out names that begin with a full stop and flagged entries
    /// Names that are kept although flagged hidden (the folder's flag only, not a leading stop).
    const std::vector<std::string>* keepFlagged = nullptr;
    /// The logical size of folders, links and special files too: what they take up themselves, not
    /// what is in them or where they lead. 0 when it cannot be read.
    bool sizeEveryEntry = false;
    /// What links and special files take up on disk, with their modification, inode and names.
    bool allocatedOfEveryFile = false;
    /// So many threads read the attributes of one folder where the system gives them file by file
    /// only: for a folder that somebody waits for. A walk has its threads in other folders.
    std::size_t threads = 1;
};

/// What the system says of a folder itself.
struct FolderStatus {
    std::uint64_t device = 0;        // the volume
    std::uint64_t mount = 0;         // the mount through which it is seen, 0 when unknown
    std::uint64_t inode = 0;         // on its volume
    std::int64_t allocatedSize = 0;  // bytes on disk of its own listing
    double modified = 0;             // seconds since 1970
};

/// Reads folders. One instance serves many threads at once; it has no state of its own.
class DirectoryReader {
public:
    virtual ~DirectoryReader() = default;

    /// Opens the folder at an absolute path; links in the path are followed (the caller has
    /// resolved it). Null with `errno` set when it cannot be opened or is no folder.
    virtual std::shared_ptr<OpenFolder> open(const std::string& path) = 0;

    /// Opens a folder inside an open one, never through a link: a name that has become a link
    /// since it was listed is refused. Null with `errno` set on failure.
    virtual std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) = 0;

    /// Appends all entries except "." and ".." to `entries`, in no order. An entry whose attributes
    /// cannot be read has the kind `unreadable`; one that is removed meanwhile is none. False with
    /// `errno` set when the listing itself failed; what was read before stays in the list.
    virtual bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) = 0;

    /// What an open folder is, or with a name the folder of that name in it, which is neither
    /// opened nor waited for: a dead volume that is mounted there holds nobody up. False with
    /// `errno` set when it cannot be told.
    virtual bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) = 0;
};

}  // namespace velto
