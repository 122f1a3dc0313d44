#include "platform/macos/MacVolumeInfo.h"

#include <sys/mount.h>

#include <algorithm>

#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

std::optional<std::int64_t> figure(const std::string& path, NSURLResourceKey key) {
    @autoreleasepool {
        // A new URL every time: a URL remembers the values it was asked for.
        NSNumber* value = nil;
        if (![fileURL(path) getResourceValue:&value forKey:key error:nil]) return std::nullopt;
        if (value == nil) return std::nullopt;
        return value.longLongValue;
    }
}

}  // namespace

std::optional<std::int64_t> MacVolumeInfo::totalCapacity(const std::string& path) const {
    return figure(path, NSURLVolumeTotalCapacityKey);
}

std::optional<std::int64_t> MacVolumeInfo::availableCapacity(const std::string& path) const {
    const auto important = figure(path, NSURLVolumeAvailableCapacityForImportantUsageKey);
    // Volumes of other formats than APFS answer 0; what is plainly free is the truth there.
    if (important.value_or(0) > 0) return important;
    return figure(path, NSURLVolumeAvailableCapacityKey);
}

std::optional<std::int64_t> MacVolumeInfo::reservedCapacity(const std::string&) const {
    return std::nullopt;  // an ordinary user can write all that is free
}

std::optional<std::int64_t> MacVolumeInfo::purgeableCapacity(const std::string& path) const {
    const auto important = figure(path, NSURLVolumeAvailableCapacityForImportantUsageKey);
    const auto plain = figure(path, NSURLVolumeAvailableCapacityKey);
    if (!important || !plain || *important <= *plain) return std::nullopt;
    return *important - *plain;
}

std::vector<MountedVolume> MacVolumeInfo::volumesBelow(const std::string& folder) const {
    // The figures that the kernel remembers: no volume is asked, so none is waited for.
    const int expected = ::getfsstat(nullptr, 0, MNT_NOWAIT);
    std::vector<struct statfs> mounts(static_cast<std::size_t>(std::max(0, expected)));
    const int count = ::getfsstat(
        mounts.data(), static_cast<int>(mounts.size() * sizeof(struct statfs)), MNT_NOWAIT);
    mounts.resize(static_cast<std::size_t>(std::clamp(count, 0, expected)));
    std::vector<MountedVolume> volumes;
    for (const struct statfs& mount : mounts) {
        const std::string place = mount.f_mntonname;
        if (!place.starts_with(folder + "/") || mount.f_blocks == 0) continue;
        const bool isLocal = (mount.f_flags & MNT_LOCAL) != 0;
        const auto used =
            static_cast<std::int64_t>((mount.f_blocks - mount.f_bfree) * mount.f_bsize);
        volumes.push_back({place, isLocal ? std::optional(used) : std::nullopt});
    }
    std::ranges::sort(volumes, {}, &MountedVolume::path);
    return volumes;
}

}  // namespace velto
