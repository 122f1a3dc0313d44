#include "platform/added_date.h"

#import <Foundation/Foundation.h>

#include "platform/macos/foundation_text.h"

namespace velto {

std::optional<double> dateAddedToFolder(const std::string& path) {
    @autoreleasepool {
        NSDate* date = nil;
        const BOOL isRead = [fileURL(path) getResourceValue:&date
                                                     forKey:NSURLAddedToDirectoryDateKey
                                                      error:nil];
        if (!isRead || date == nil) return std::nullopt;
        return date.timeIntervalSince1970;
    }
}

}  // namespace velto
