#include "platform/linux/LinuxVolumeInfo.h"

#include <sys/statvfs.h>

#include "platform/linux/mount_table.h"
#include "platform/posix/uninterrupted.h"

namespace velto {
namespace {

std::optional<struct statvfs> figuresOf(const std::string& path) {
    struct statvfs figures {};
    if (uninterrupted([&] { return statvfs(path.c_str(), &figures); }) != 0) return std::nullopt;
    if (figures.f_blocks == 0) return std::nullopt;  // a file system without blocks, like /proc
    return figures;
}

std::optional<std::int64_t> bytes(fsblkcnt_t blocks, unsigned long blockSize) {
    std::int64_t result = 0;
    if (__builtin_mul_overflow(blocks, blockSize, &result)) return std::nullopt;
    return result;
}

}  // namespace

std::optional<std::int64_t> LinuxVolumeInfo::totalCapacity(const std::string& path) const {
    const auto figures = figuresOf(path);
    return figures ? bytes(figures->f_blocks, figures->f_frsize) : std::nullopt;
}

std::optional<std::int64_t> LinuxVolumeInfo::availableCapacity(const std::string& path) const {
    const auto figures = figuresOf(path);
    return figures ? bytes(figures->f_bavail, figures->f_frsize) : std::nullopt;
}

std::optional<std::int64_t> LinuxVolumeInfo::reservedCapacity(const std::string& path) const {
    const auto figures = figuresOf(path);
    if (!figures || figures->f_bfree <= figures->f_bavail) return std::nullopt;
    return bytes(figures->f_bfree - figures->f_bavail, figures->f_frsize);
}

/// Nothing here is given back by itself.
std::optional<std::int64_t> LinuxVolumeInfo::purgeableCapacity(const std::string&) const {
    return std::nullopt;
}

std::vector<MountedVolume> LinuxVolumeInfo::volumesBelow(const std::string& folder) const {
    std::vector<MountedVolume> volumes;
    const std::vector<Mount> all = systemMounts().value_or(std::vector<Mount>());
    for (const Mount& mount : otherVolumesBelow(all, folder)) {
        if (mayWait(all, mount.place)) {
            volumes.push_back({.path = mount.place, .used = std::nullopt});
        } else if (const auto figures = figuresOf(mount.place)) {
            const auto used = bytes(figures->f_blocks - figures->f_bfree, figures->f_frsize);
            volumes.push_back({.path = mount.place, .used = used});
        }
    }
    return volumes;
}

}  // namespace velto
