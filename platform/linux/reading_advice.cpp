#include "platform/posix/reading_advice.h"

#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "platform/linux/extent_flags.h"
#include "platform/linux/mount_table.h"
#include "platform/linux/rotating_disk.h"

namespace velto {
namespace {

std::int64_t pageLength() {
    static const std::int64_t length = ::sysconf(_SC_PAGESIZE);
    return length;
}

/// The volume's device: of a file system that numbers its parts as devices of their own (btrfs),
/// the one that it was mounted from. 0 when there is none.
dev_t storageOf(dev_t volume, const std::string& path) {
    if (major(volume) != 0) return volume;
    const auto mounts = systemMounts();
    if (!mounts) return 0;
    const Mount* const mount = mountOf(*mounts, path);
    struct stat status {};
    if (mount == nullptr || mayWait(*mount) || !mount->source.starts_with("/dev/") ||
        ::stat(mount->source.c_str(), &status) != 0 || !S_ISBLK(status.st_mode)) {
        return 0;
    }
    return status.st_rdev;
}

}  // namespace

void readAsTold(int file) { ::posix_fadvise(file, 0, 0, POSIX_FADV_RANDOM); }

/// Of a file that this user may neither write nor owns the kernel says that it is all there (since
/// 5.2): then it is read the ordinary way, and nothing is taken from the cache.
std::vector<ByteRange> notCached(int file, ByteRange range) {
    const std::int64_t page = pageLength();
    const std::int64_t start = range.offset / page * page;
    const auto length = static_cast<std::size_t>(range.end() - start);
    if (range.length <= 0) return {};
    void* const memory =
        ::mmap(nullptr, length, PROT_READ, MAP_SHARED, file, static_cast<off_t>(start));
    if (memory == MAP_FAILED) return {};
    std::vector<unsigned char> pages((length + static_cast<std::size_t>(page) - 1) /
                                     static_cast<std::size_t>(page));
    const bool told = ::mincore(memory, length, pages.data()) == 0;
    ::munmap(memory, length);
    std::vector<ByteRange> ranges;
    for (std::size_t index = 0; told && index < pages.size(); ++index) {
        if ((pages[index] & 1) != 0) continue;
        const std::int64_t offset = start + static_cast<std::int64_t>(index) * page;
        if (!ranges.empty() && ranges.back().end() == offset) {
            ranges.back().length += page;
        } else {
            ranges.push_back({offset, page});
        }
    }
    return ranges;
}

void readAhead(int file, ByteRange range) {
    ::posix_fadvise(file, range.offset, range.length, POSIX_FADV_WILLNEED);
}

void forget(int file, ByteRange range) {
    ::posix_fadvise(file, range.offset, range.length, POSIX_FADV_DONTNEED);
}

std::optional<std::uint64_t> firstBlock(int file) {
    alignas(fiemap) std::array<std::byte, sizeof(fiemap) + sizeof(fiemap_extent)> memory{};
    auto* const map = reinterpret_cast<fiemap*>(memory.data());
    map->fm_length = FIEMAP_MAX_OFFSET;
    map->fm_extent_count = 1;
    if (::ioctl(file, FS_IOC_FIEMAP, map) != 0 || map->fm_mapped_extents == 0) return std::nullopt;
    fiemap_extent extent{};
    std::memcpy(&extent, memory.data() + offsetof(fiemap, fm_extents), sizeof extent);
    if ((extent.fe_flags & withoutPosition) != 0) return std::nullopt;
    return extent.fe_physical;
}

bool liesOnRotatingDisk(const struct stat& status, const std::string& path) {
    const dev_t storage = storageOf(status.st_dev, path);
    return storage != 0 && diskRotates("/sys", major(storage), minor(storage));
}

}  // namespace velto
