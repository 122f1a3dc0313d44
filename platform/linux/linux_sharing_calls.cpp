#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/extent_flags.h"
#include "platform/posix/FileCalls.h"
#include "platform/posix/extents.h"
#include "platform/posix/uninterrupted.h"

namespace velto {
namespace {

constexpr unsigned extentsAtOnce = 256;

/// ioctl_fideduperange(2) with one target. The target's own answer is 0, a negative error number or
/// FILE_DEDUPE_RANGE_DIFFERS; nothing, with `errno`, when the request was refused as a whole.
std::optional<file_dedupe_range_info> ask(int from, int to, off_t offset, std::size_t size) {
    alignas(file_dedupe_range)
        std::array<std::byte, sizeof(file_dedupe_range) + sizeof(file_dedupe_range_info)>
            memory{};
    auto* const request = reinterpret_cast<file_dedupe_range*>(memory.data());
    request->src_offset = static_cast<__u64>(offset);
    request->src_length = size;
    request->dest_count = 1;
    file_dedupe_range_info target{};
    target.dest_fd = to;
    target.dest_offset = static_cast<__u64>(offset);
    std::memcpy(memory.data() + sizeof *request, &target, sizeof target);
    if (uninterrupted([&] { return ::ioctl(from, FIDEDUPERANGE, request); }) != 0) {
        return std::nullopt;
    }
    std::memcpy(&target, memory.data() + sizeof *request, sizeof target);
    return target;
}

/// Systems know several ways to say that they cannot: no such call at all, none of this file
/// system.
int asUnsupported(int error) {
    return error == ENOTTY || error == EOPNOTSUPP || error == ENOSYS ? ENOTSUP : error;
}

int failWith(int error) {
    errno = error;
    return -1;
}

/// Linux tells where each piece of a file lies (FS_IOC_FIEMAP), once all is written out.
int extentsOf(int file, std::vector<FileExtent>& found) {
    std::vector<std::byte> buffer(sizeof(fiemap) + extentsAtOnce * sizeof(fiemap_extent));
    for (__u64 start = 0;;) {
        std::ranges::fill(buffer, std::byte{0});
        auto* const map = reinterpret_cast<fiemap*>(buffer.data());
        map->fm_start = start;
        map->fm_length = FIEMAP_MAX_OFFSET - start;
        map->fm_flags = FIEMAP_FLAG_SYNC;
        map->fm_extent_count = extentsAtOnce;
        if (uninterrupted([&] { return ::ioctl(file, FS_IOC_FIEMAP, map); }) != 0) {
            return failWith(asUnsupported(errno));
        }
        if (map->fm_mapped_extents == 0) return 0;
        const auto* const extents =
            reinterpret_cast<const fiemap_extent*>(buffer.data() + offsetof(fiemap, fm_extents));
        for (__u32 index = 0; index < map->fm_mapped_extents; ++index) {
            const fiemap_extent& extent = extents[index];
            found.push_back({.offset = static_cast<std::int64_t>(extent.fe_logical),
                             .physical = static_cast<std::int64_t>(extent.fe_physical),
                             .length = static_cast<std::int64_t>(extent.fe_length),
                             .isShared = (extent.fe_flags & FIEMAP_EXTENT_SHARED) != 0,
                             .isEncoded = (extent.fe_flags & FIEMAP_EXTENT_ENCODED) != 0,
                             .isNowhere = (extent.fe_flags & withoutPosition) != 0});
            if ((extent.fe_flags & FIEMAP_EXTENT_LAST) != 0) return 0;
            start = extent.fe_logical + extent.fe_length;
        }
    }
}

}  // namespace

// A request of no length is judged and does nothing. That the volume shares at all shows in a
// request that no file system may grant, a range on top of itself: one that can share finds fault
// with the range, every other one with the request.
int FileCalls::mayShare(int from, int to) {
    auto answer = ask(from, to, 0, 0);
    if (!answer) return failWith(asUnsupported(errno));
    if (answer->status < 0) return failWith(asUnsupported(-answer->status));
    struct stat status;
    if (::fstat(from, &status) != 0) return -1;
    if (status.st_size == 0) return failWith(EINVAL);
    const auto length = static_cast<std::size_t>(std::min<off_t>(status.st_size, 4096));
    answer = ask(from, from, 0, length);
    if (!answer) return failWith(asUnsupported(errno));
    if (answer->status == -EINVAL) return 0;
    return failWith(answer->status < 0 ? asUnsupported(-answer->status) : ENOTSUP);
}

ssize_t FileCalls::shareRange(int from, int to, off_t offset, std::size_t size) {
    const auto answer = ask(from, to, offset, size);
    if (!answer) return failWith(asUnsupported(errno));
    if (answer->status == FILE_DEDUPE_RANGE_DIFFERS) return 0;
    if (answer->status < 0) return failWith(asUnsupported(-answer->status));
    // Alike, and yet nothing was done: asking on would never end.
    if (answer->bytes_deduped == 0) return failWith(EIO);
    return static_cast<ssize_t>(std::min<__u64>(answer->bytes_deduped, size));
}

int FileCalls::ownSpace(int file, OwnSpace& space) {
    struct stat status;
    std::vector<FileExtent> extents;
    if (::fstat(file, &status) != 0 || extentsOf(file, extents) != 0) return -1;
    space = ownSpaceIn(extents, status.st_size, status.st_blksize);
    return 0;
}

int FileCalls::isOneWith(int file, int other) {
    struct stat status;
    std::vector<FileExtent> one;
    std::vector<FileExtent> two;
    if (::fstat(file, &status) != 0 || extentsOf(file, one) != 0 || extentsOf(other, two) != 0) {
        return -1;
    }
    return liesInSameBlocks(std::move(one), std::move(two), status.st_size) ? 1 : 0;
}

int FileCalls::cloneTo(int file, int folder, const char* name) {
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const Descriptor made(::openat(folder, name, flags, 0600));
    if (!made.isOpen()) return -1;
    if (::ioctl(made.number(), FICLONE, file) == 0) return 0;
    const int reason = asUnsupported(errno);
    ::unlinkat(folder, name, 0);
    return failWith(reason);
}

int FileCalls::exchange(int oneFolder, const char* one, int otherFolder, const char* other) {
    return ::renameat2(oneFolder, one, otherFolder, other, RENAME_EXCHANGE);
}

// Which of them have it is only found by looking at every process; what it is asked for here is
// not needed, because the system shares ranges by itself.
int FileCalls::isOpenElsewhere(int) { return failWith(ENOTSUP); }

}  // namespace velto
