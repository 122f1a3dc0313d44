#import <Foundation/Foundation.h>

#include "platform/macos/foundation_text.h"
#include "platform/values/PropertyList.h"

namespace velto {
namespace {

constexpr int mostDepth = 200;  // deeper values are left out; no program looks there

PropertyList convert(id object, int depth) {
    PropertyList result;
    if (depth == mostDepth) return result;
    if ([object isKindOfClass:NSString.class]) {
        result.value = utf8(static_cast<NSString*>(object));
    } else if ([object isKindOfClass:NSNumber.class]) {
        NSNumber* number = static_cast<NSNumber*>(object);
        if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID()) {
            result.value = static_cast<bool>(number.boolValue);
        } else if (CFNumberIsFloatType((__bridge CFNumberRef)number)) {
            result.value = number.doubleValue;
        } else {
            result.value = static_cast<std::int64_t>(number.longLongValue);
        }
    } else if ([object isKindOfClass:NSArray.class]) {
        PropertyList::List list;
        for (id item in static_cast<NSArray*>(object)) list.push_back(convert(item, depth + 1));
        result.value = std::move(list);
    } else if ([object isKindOfClass:NSDictionary.class]) {
        NSDictionary* dictionary = static_cast<NSDictionary*>(object);
        PropertyList::Dictionary entries;
        for (id key in dictionary) {
            if (![key isKindOfClass:NSString.class]) continue;
            entries.push_back({utf8(static_cast<NSString*>(key)),
                               convert([dictionary objectForKey:key], depth + 1)});
        }
        result.value = std::move(entries);
    }
    return result;
}

}  // namespace

std::optional<PropertyList> readPropertyList(std::string_view bytes) {
    if (!isBoundedPropertyList(bytes)) return std::nullopt;
    @autoreleasepool {
        NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        id parsed = [NSPropertyListSerialization propertyListWithData:data
                                                              options:NSPropertyListImmutable
                                                               format:nullptr
                                                                error:nil];
        if (parsed == nil) return std::nullopt;
        return convert(parsed, 0);
    }
}

}  // namespace velto
