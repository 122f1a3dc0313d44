#include "platform/macos/MacVolumeInfo.h"

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

}  // namespace velto
