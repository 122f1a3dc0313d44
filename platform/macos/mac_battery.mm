#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/ps/IOPSKeys.h>
#import <IOKit/ps/IOPowerSources.h>

#include "platform/macos/MacSystemCounters.h"
#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

/// The description of the power source that is there; nil without one.
NSDictionary* presentSource() {
    const CFTypeRef information = IOPSCopyPowerSourcesInfo();
    if (information == nullptr) return nil;
    NSDictionary* present = nil;
    NSArray* sources = CFBridgingRelease(IOPSCopyPowerSourcesList(information));
    for (id source in sources) {
        // Belongs to what `information` holds.
        NSDictionary* description = (__bridge NSDictionary*)IOPSGetPowerSourceDescription(
            information, (__bridge CFTypeRef)source);
        if (![description[@kIOPSIsPresentKey] boolValue]) continue;
        present = description;
        break;
    }
    CFRelease(information);
    return present;
}

std::optional<std::int64_t> numberIn(NSDictionary* description, NSString* key) {
    id value = description[key];
    if (![value isKindOfClass:[NSNumber class]]) return std::nullopt;
    return [value longLongValue];
}

std::optional<std::int64_t> cycleCount() {
    const io_service_t battery =
        IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSmartBattery"));
    if (battery == IO_OBJECT_NULL) return std::nullopt;
    const id count = CFBridgingRelease(
        IORegistryEntryCreateCFProperty(battery, CFSTR("CycleCount"), kCFAllocatorDefault, 0));
    IOObjectRelease(battery);
    if (![count isKindOfClass:[NSNumber class]]) return std::nullopt;
    return [count longLongValue];
}

}  // namespace

std::optional<BatteryCounters> MacSystemCounters::battery() {
    @autoreleasepool {
        NSDictionary* source = presentSource();
        if (source == nil) return std::nullopt;
        constexpr std::int64_t unknown = -1;
        return BatteryCounters {
            .current = numberIn(source, @kIOPSCurrentCapacityKey).value_or(0),
            .maximum = numberIn(source, @kIOPSMaxCapacityKey).value_or(0),
            .isCharged = [source[@kIOPSIsChargedKey] boolValue] ? true : false,
            .isCharging = [source[@kIOPSIsChargingKey] boolValue] ? true : false,
            .powerSource = utf8(source[@kIOPSPowerSourceStateKey]),
            .minutesToFull = numberIn(source, @kIOPSTimeToFullChargeKey).value_or(unknown),
            .minutesToEmpty = numberIn(source, @kIOPSTimeToEmptyKey).value_or(unknown),
            .cycles = cycleCount()
        };
    }
}

}  // namespace velto
