#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/storage/IOStorageDeviceCharacteristics.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/param.h>

#include <string_view>

#include "platform/posix/reading_advice.h"

namespace velto {

/// Not cached (fcntl(2)): what is in the cache already is read from there, the rest goes past it.
/// Then there is nothing to read ahead into, and nothing to give back.
void readAsTold(int file) {
    ::fcntl(file, F_NOCACHE, 1);
    ::fcntl(file, F_RDAHEAD, 0);
}

std::vector<ByteRange> notCached(int, ByteRange) { return {}; }
void readAhead(int, ByteRange) {}
void forget(int, ByteRange) {}

std::optional<std::uint64_t> firstBlock(int file) {
    struct log2phys place {};
    if (::fcntl(file, F_LOG2PHYS, &place) != 0 || place.l2p_devoffset < 0) return std::nullopt;
    return static_cast<std::uint64_t>(place.l2p_devoffset);
}

bool liesOnRotatingDisk(const struct stat&, const std::string& path) {
    constexpr std::string_view devices = "/dev/";
    struct statfs figures {};
    if (::statfs(path.c_str(), &figures) != 0) return false;
    const std::string_view source(figures.f_mntfromname);
    if (!source.starts_with(devices)) return false;  // a network volume
    @autoreleasepool {
        const io_service_t medium = IOServiceGetMatchingService(
            kIOMainPortDefault,
            IOBSDNameMatching(kIOMainPortDefault, 0, figures.f_mntfromname + devices.size()));
        if (medium == IO_OBJECT_NULL) return false;
        const id device = CFBridgingRelease(IORegistryEntrySearchCFProperty(
            medium, kIOServicePlane, CFSTR(kIOPropertyDeviceCharacteristicsKey),
            kCFAllocatorDefault, kIORegistryIterateRecursively | kIORegistryIterateParents));
        IOObjectRelease(medium);
        return [device isKindOfClass:[NSDictionary class]] &&
               [((NSDictionary*)device)[@kIOPropertyMediumTypeKey]
                   isEqual:@kIOPropertyMediumTypeRotationalKey];
    }
}

}  // namespace velto
