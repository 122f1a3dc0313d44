#include "platform/linux/LinuxDirectoryReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "platform/posix/Descriptor.h"
#include "platform/posix/uninterrupted.h"

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

struct LinuxFolder final : OpenFolder {
    explicit LinuxFolder(Descriptor opened) : descriptor(std::move(opened)) {}
    Descriptor descriptor;
    bool wasRead = false;
};

constexpr std::size_t listingBytes = 64 * 1024;
constexpr std::int64_t statxBlock = 512;  // stx_blocks counts units of 512 bytes (statx(2))

std::shared_ptr<OpenFolder> openAt(int parent, const char* name, int extraFlags) {
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | extraFlags;
    // O_NOATIME is refused to all but the owner (open(2)).
    int number = uninterrupted([&] { return ::openat(parent, name, flags | O_NOATIME); });
    if (number < 0 && errno == EPERM) {
        number = uninterrupted([&] { return ::openat(parent, name, flags); });
    }
    if (number < 0) return nullptr;
    return std::make_shared<LinuxFolder>(Descriptor(number));
}

double seconds(const struct statx_timestamp& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

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
/// else the options ask for.
void describe(int folder, const LinuxDirent& record, const ReadOptions& options,
              DirectoryEntry& entry) {
    const bool kindIsKnown = record.type != DT_REG && record.type != DT_UNKNOWN;
    if (kindIsKnown) {
        entry.kind = kindOfType(record.type);
        if (!options.sizeEveryEntry) return;
    }
    struct statx status;
    constexpr unsigned wanted = STATX_TYPE | STATX_SIZE | STATX_BLOCKS | STATX_ATIME | STATX_MTIME;
    constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
    if (::statx(folder, record.name, flags, wanted, &status) != 0) {
        // A folder is still a folder, to be opened or not.
        if (!kindIsKnown) entry.kind = EntryKind::unreadable;
        return;
    }
    entry.kind = kindOfMode(status.stx_mode);
    if (entry.kind == EntryKind::regular || options.sizeEveryEntry) {
        entry.logicalSize = static_cast<std::int64_t>(status.stx_size);
    }
    if (entry.kind != EntryKind::regular) return;
    if ((status.stx_mask & STATX_BLOCKS) != 0) {
        entry.allocatedSize = static_cast<std::int64_t>(status.stx_blocks) * statxBlock;
    }
    if ((status.stx_mask & STATX_ATIME) != 0) entry.accessed = seconds(status.stx_atime);
    if ((status.stx_mask & STATX_MTIME) != 0) entry.modified = seconds(status.stx_mtime);
}

}  // namespace

std::shared_ptr<OpenFolder> LinuxDirectoryReader::open(const std::string& path) {
    return openAt(AT_FDCWD, path.c_str(), 0);
}

std::shared_ptr<OpenFolder> LinuxDirectoryReader::openChild(OpenFolder& parent,
                                                            std::string_view name) {
    // A name in an entry list is not null-terminated; file names have at most 255 bytes.
    std::array<char, 256> terminated;
    if (name.size() >= terminated.size() || name.find('/') != std::string_view::npos) {
        errno = name.size() >= terminated.size() ? ENAMETOOLONG : EINVAL;
        return nullptr;
    }
    std::memcpy(terminated.data(), name.data(), name.size());
    terminated[name.size()] = '\0';
    const int folder = static_cast<LinuxFolder&>(parent).descriptor.number();
    return openAt(folder, terminated.data(), O_NOFOLLOW);
}

bool LinuxDirectoryReader::read(OpenFolder& folder, const ReadOptions& options,
                                EntryList& entries) {
    auto& opened = static_cast<LinuxFolder&>(folder);
    const int number = opened.descriptor.number();
    if (opened.wasRead && ::lseek(number, 0, SEEK_SET) != 0) return false;
    opened.wasRead = true;
    alignas(LinuxDirent) std::array<char, listingBytes> buffer;
    while (true) {
        const long bytes = uninterrupted(
            [&] { return ::syscall(SYS_getdents64, number, buffer.data(), buffer.size()); });
        if (bytes < 0) return false;
        if (bytes == 0) return true;
        for (long position = 0; position < bytes;) {
            const auto& record = *reinterpret_cast<const LinuxDirent*>(buffer.data() + position);
            position += record.length;
            const char* name = record.name;
            if (name[0] == '.') {
                if (options.skipHidden) continue;
                if (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')) continue;
            }
            DirectoryEntry& entry = entries.add(name);
            describe(number, record, options, entry);
        }
    }
}

}  // namespace velto
