#include "platform/macos/MacLocale.h"

#include "platform/macos/foundation_text.h"

namespace velto {

std::vector<std::string> MacLocale::preferredLanguages() const {
    @autoreleasepool {
        std::vector<std::string> languages;
        for (NSString* language in NSLocale.preferredLanguages) languages.push_back(utf8(language));
        return languages;
    }
}

std::string MacLocale::decimal(double value, std::string_view localeIdentifier) const {
    @autoreleasepool {
        NSNumberFormatter* formatter = [[NSNumberFormatter alloc] init];
        formatter.numberStyle = NSNumberFormatterDecimalStyle;
        formatter.locale = [NSLocale localeWithLocaleIdentifier:nsString(localeIdentifier)];
        formatter.maximumFractionDigits = 1;
        return utf8([formatter stringFromNumber:[NSNumber numberWithDouble:value]]);
    }
}

int MacLocale::compare(std::string_view left, std::string_view right) const {
    @autoreleasepool {
        return static_cast<int>([nsString(left) localizedCaseInsensitiveCompare:nsString(right)]);
    }
}

std::string MacLocale::lowerCased(std::string_view text) const {
    @autoreleasepool {
        return utf8(nsString(text).lowercaseString);
    }
}

}  // namespace velto
