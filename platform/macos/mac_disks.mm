#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/storage/IOBlockStorageDriver.h>
#import <IOKit/storage/IOStorageProtocolCharacteristics.h>

#include <string>

#include "platform/macos/MacSystemCounters.h"

namespace velto {
namespace {

/// What is stored in a file, or in memory, is read and written once more on a disk of its own.
bool isDiskImage(io_registry_entry_t driver) {
    const id protocol = CFBridgingRelease(IORegistryEntrySearchCFProperty(
        driver, kIOServicePlane, CFSTR(kIOPropertyProtocolCharacteristicsKey), kCFAllocatorDefault,
        kIORegistryIterateRecursively | kIORegistryIterateParents));
    if (![protocol isKindOfClass:[NSDictionary class]]) return false;
    const id interconnect = ((NSDictionary*)protocol)[@kIOPropertyPhysicalInterconnectTypeKey];
    return [interconnect isEqual:@kIOPropertyPhysicalInterconnectTypeVirtual];
}

std::uint64_t bytesIn(NSDictionary* statistics, NSString* key) {
    id value = statistics[key];
    return [value isKindOfClass:[NSNumber class]] ? [value unsignedLongLongValue] : 0;
}

std::optional<DiskCounters> countersOf(io_registry_entry_t driver) {
    const id statistics = CFBridgingRelease(IORegistryEntryCreateCFProperty(
        driver, CFSTR(kIOBlockStorageDriverStatisticsKey), kCFAllocatorDefault, 0));
    std::uint64_t identifier = 0;
    if (![statistics isKindOfClass:[NSDictionary class]] || isDiskImage(driver) ||
        IORegistryEntryGetRegistryEntryID(driver, &identifier) != KERN_SUCCESS) {
        return std::nullopt;
    }
    return DiskCounters {
        .name = std::to_string(identifier),
        .read = bytesIn(statistics, @kIOBlockStorageDriverStatisticsBytesReadKey),
        .written = bytesIn(statistics, @kIOBlockStorageDriverStatisticsBytesWrittenKey)
    };
}

}  // namespace

std::optional<std::vector<DiskCounters>> MacSystemCounters::disks() {
    @autoreleasepool {
        io_iterator_t drivers = IO_OBJECT_NULL;
        if (IOServiceGetMatchingServices(kIOMainPortDefault,
                                         IOServiceMatching(kIOBlockStorageDriverClass),
                                         &drivers) != KERN_SUCCESS) {
            return std::nullopt;
        }
        std::vector<DiskCounters> disks;
        for (io_object_t driver = IOIteratorNext(drivers); driver != IO_OBJECT_NULL;
             driver = IOIteratorNext(drivers)) {
            if (auto counters = countersOf(driver)) disks.push_back(std::move(*counters));
            IOObjectRelease(driver);
        }
        IOObjectRelease(drivers);
        return disks;
    }
}

}  // namespace velto
