#include "platform/macos/MacUserDefaults.h"

#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

DefaultsValue numberValue(NSNumber* number) {
    const auto type = CFGetTypeID((__bridge CFTypeRef)number);
    if (type == CFBooleanGetTypeID()) return static_cast<bool>(number.boolValue);
    if (CFNumberIsFloatType((__bridge CFNumberRef)number)) return number.doubleValue;
    return std::int64_t{number.longLongValue};
}

id object(bool value) { return [NSNumber numberWithBool:value]; }
id object(std::int64_t value) { return [NSNumber numberWithLongLong:value]; }
id object(double value) { return [NSNumber numberWithDouble:value]; }
id object(const std::string& value) { return nsString(value); }

/// A run without a window ends right after it has set a value, before the system would pass it on.
void handOver() { CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication); }

}  // namespace

std::optional<DefaultsValue> MacUserDefaults::value(const std::string& key) const {
    @autoreleasepool {
        id stored = [NSUserDefaults.standardUserDefaults objectForKey:nsString(key)];
        if ([stored isKindOfClass:NSNumber.class]) return numberValue(stored);
        if ([stored isKindOfClass:NSString.class]) return utf8(stored);
        return std::nullopt;
    }
}

void MacUserDefaults::setValue(const std::string& key, DefaultsValue value) {
    @autoreleasepool {
        id stored = std::visit([](const auto& held) { return object(held); }, value);
        [NSUserDefaults.standardUserDefaults setObject:stored forKey:nsString(key)];
        handOver();
    }
}

void MacUserDefaults::remove(const std::string& key) {
    @autoreleasepool {
        [NSUserDefaults.standardUserDefaults removeObjectForKey:nsString(key)];
        handOver();
    }
}

}  // namespace velto
