#include "platform/linux/LinuxDirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "platform/parallel.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/uninterrupted.h"
#include "platform/values/units.h"

namespace velto {
namespace {

/// The record that getdents64 writes (getdents(2)); the name is null-terminated.
struct LinuxDirent {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char name[1];
};

// Folders are opened and closed without the library's functions, which make each call a point at
// which a thread may be cancelled: beside other threads that costs two locked instructions a call.

struct LinuxFolder final : OpenFolder {
    explicit LinuxFolder(Descriptor opened) : descriptor(std::move(opened)) {}
    ~LinuxFolder() override {
        const int error = errno;
        ::syscall(SYS_close, descriptor.release());
        errno = error;
    }
    Descriptor descriptor;
    bool wasRead = false;
};

// At least so much is asked of a listing at once: what one call costs beside its entries is lost in
// it. A small folder's second call, which tells the end, leaves the rest of the room unused.
constexpr std::size_t listingBytes = 16 * 1024;
// Where a file system that numbers the names of a folder up to here (ext4, btrfs) stands behind the
// last one: nothing can follow it, and the call that would say so is spared.
constexpr std::int64_t lastPosition = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t statxBlock = 512;  // stx_blocks counts units of 512 bytes (statx(2))

std::shared_ptr<OpenFolder> openAt(int parent, const char* name, int extraFlags) {
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | extraFlags;
    const auto open = [&](int with) {
        return uninterrupted(
            [&] { return static_cast<int>(::syscall(SYS_openat, parent, name, with)); });
    };
    // O_NOATIME is refused to all but the owner (open(2)).
    int number = open(flags | O_NOATIME);
    if (number < 0 && errno == EPERM) number = open(flags);
    if (number < 0) return nullptr;
    return std::make_shared<LinuxFolder>(Descriptor(number));
}

double seconds(const struct statx_timestamp& time) { return momentOf(time.tv_sec, time.tv_nsec); }

EntryKind kindOfType(std::uint8_t type) {
    switch (type) {
        case DT_DIR:
            return EntryKind::folder;
        case DT_LNK:
            return EntryKind::symbolicLink;
        case DT_REG:
            return EntryKind::regular;
        default:
            return EntryKind::other;
    }
}

EntryKind kindOfMode(std::uint16_t mode) {
    if (S_ISDIR(mode)) return EntryKind::folder;
    if (S_ISLNK(mode)) return EntryKind::symbolicLink;
    return S_ISREG(mode) ? EntryKind::regular : EntryKind::other;
}

/// Reads the attributes of a regular file, the kind where the listing did not tell it, and what
/// else the options ask for. An entry that is gone since it was listed loses its name.
void describe(int folder, const char* name, std::uint8_t type, const ReadOptions& options,
              DirectoryEntry& entry) {
    const bool kindIsKnown = type != DT_REG && type != DT_UNKNOWN;
    if (kindIsKnown) {
        entry.kind = kindOfType(type);
        const bool isWanted = options.sizeEveryEntry ||
                              (options.allocatedOfEveryFile && entry.kind != EntryKind::folder);
        if (!isWanted) return;
    }
    struct statx status;
    constexpr unsigned wanted = STATX_TYPE | STATX_SIZE | STATX_BLOCKS | STATX_ATIME | STATX_MTIME |
                                STATX_INO | STATX_NLINK;
    constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (::statx(folder, name, flags, wanted, &status) != 0) {
        if (errno == ENOENT) {
            entry.name = {};
        } else if (!kindIsKnown) {  // a folder is still a folder, to be opened or not
            entry.kind = EntryKind::unreadable;
        }
        return;
    }
    entry.kind = kindOfMode(status.stx_mode);
    if (entry.kind == EntryKind::regular || options.sizeEveryEntry) {
        entry.logicalSize = static_cast<std::int64_t>(status.stx_size);
    }
    const bool isFile = entry.kind == EntryKind::regular ||
                        (options.allocatedOfEveryFile && entry.kind != EntryKind::folder);
    if (!isFile) return;
    if ((status.stx_mask & STATX_BLOCKS) != 0) {
        entry.allocatedSize = static_cast<std::int64_t>(status.stx_blocks) * statxBlock;
    }
    if ((status.stx_mask & STATX_ATIME) != 0) entry.accessed = seconds(status.stx_atime);
    if ((status.stx_mask & STATX_MTIME) != 0) entry.modified = seconds(status.stx_mtime);
    if ((status.stx_mask & STATX_INO) != 0) entry.inode = status.stx_ino;
    if ((status.stx_mask & STATX_NLINK) != 0) entry.links = status.stx_nlink;
}

/// A null-terminated copy of a name, which in an entry list is none; file names have at most 255
/// bytes.
class TerminatedName {
public:
    /// False with `errno` set for what can be no name.
    bool set(std::string_view name) {
        if (name.size() >= text_.size() || name.find('/') != std::string_view::npos) {
            errno = name.size() >= text_.size() ? ENAMETOOLONG : EINVAL;
            return false;
        }
        name.copy(text_.data(), name.size());
        text_[name.size()] = '\0';
        return true;
    }
    const char* text() const { return text_.data(); }

private:
    std::array<char, 256> text_;
};

/// Describes the entries of one folder at once; `types` are theirs, as the listing told them.
void describeAll(int folder, const std::vector<std::uint8_t>& types, const ReadOptions& options,
                 std::span<DirectoryEntry> entries) {
    constexpr std::size_t block = 256;  // some 0.3 ms of work for a thread
    const auto describeBlock = [&](std::size_t number, std::size_t) {
        const std::size_t last = std::min(entries.size(), (number + 1) * block);
        for (std::size_t index = number * block; index < last; ++index) {
            TerminatedName name;
            if (name.set(entries[index].name)) {
                describe(folder, name.text(), types[index], options, entries[index]);
            } else {
                entries[index].kind = EntryKind::unreadable;
            }
        }
    };
    forEachInParallel((entries.size() + block - 1) / block,
                      std::min(options.threads, processorCount()), describeBlock);
}

/// Appends the names of an open folder, and tells what the listing says of each to `found`. False
/// with `errno` set when the listing breaks off.
template <typename Found>
bool list(int folder, const ReadOptions& options, EntryList& entries, const Found& found) {
    while (true) {
        // The names stay where the system writes them.
        const std::span<char> listing = entries.room(listingBytes);
        const long bytes = uninterrupted(
            [&] { return ::syscall(SYS_getdents64, folder, listing.data(), listing.size()); });
        if (bytes <= 0) return bytes == 0;
        entries.keep(static_cast<std::size_t>(bytes));
        std::int64_t next = 0;
        for (long position = 0; position < bytes;) {
            const auto& record = *reinterpret_cast<const LinuxDirent*>(listing.data() + position);
            position += record.length;
            next = record.offset;
            const char* name = record.name;
            if (name[0] == '.') {
                if (options.skipHidden) continue;
                if (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')) continue;
            }
            found(record, entries.addKept(name));
        }
        if (next == lastPosition) return true;
    }
}

}  // namespace

std::shared_ptr<OpenFolder> LinuxDirectoryReader::open(const std::string& path) {
    return openAt(AT_FDCWD, path.c_str(), 0);
}

std::shared_ptr<OpenFolder> LinuxDirectoryReader::openChild(OpenFolder& parent,
                                                            std::string_view name) {
    TerminatedName terminated;
    if (!terminated.set(name)) return nullptr;
    const int folder = static_cast<LinuxFolder&>(parent).descriptor.number();
    return openAt(folder, terminated.text(), O_NOFOLLOW);
}

bool LinuxDirectoryReader::read(OpenFolder& folder, const ReadOptions& options,
                                EntryList& entries) {
    auto& opened = static_cast<LinuxFolder&>(folder);
    const int number = opened.descriptor.number();
    if (opened.wasRead && ::lseek(number, 0, SEEK_SET) != 0) return false;
    opened.wasRead = true;
    if (options.threads <= 1) {
        return list(number, options, entries,
                    [&](const LinuxDirent& record, DirectoryEntry& entry) {
                        describe(number, record.name, record.type, options, entry);
                        if (entry.name.empty()) entries.removeLast();
                    });
    }
    const std::size_t before = entries.entries().size();
    std::vector<std::uint8_t> types;
    const bool isWhole =
        list(number, options, entries,
             [&](const LinuxDirent& record, DirectoryEntry&) { types.push_back(record.type); });
    const int error = errno;
    describeAll(number, types, options, std::span(entries.entries()).subspan(before));
    std::erase_if(entries.entries(),
                  [](const DirectoryEntry& entry) { return entry.name.empty(); });
    errno = error;
    return isWhole;
}

bool LinuxDirectoryReader::status(OpenFolder& folder, std::string_view name, FolderStatus& status) {
    TerminatedName terminated;
    if (!terminated.set(name)) return false;
    struct statx found;
    constexpr unsigned wanted = STATX_TYPE | STATX_BLOCKS | STATX_MTIME | STATX_INO | STATX_MNT_ID;
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC |
                      (name.empty() ? AT_EMPTY_PATH : 0);
    const int number = static_cast<LinuxFolder&>(folder).descriptor.number();
    if (::statx(number, terminated.text(), flags, wanted, &found) != 0) return false;
    if (!S_ISDIR(found.stx_mode)) {
        errno = ENOTDIR;
        return false;
    }
    status.device = std::uint64_t{found.stx_dev_major} << 32 | found.stx_dev_minor;
    // Kernels before 5.8 do not tell mounts apart.
    status.mount = (found.stx_mask & STATX_MNT_ID) != 0 ? found.stx_mnt_id : 0;
    status.inode = found.stx_ino;
    status.allocatedSize = static_cast<std::int64_t>(found.stx_blocks) * statxBlock;
    status.modified = seconds(found.stx_mtime);
    return true;
}

}  // namespace velto
