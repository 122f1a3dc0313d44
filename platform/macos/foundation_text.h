#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace velto {

/// Never nil: bytes that are not UTF-8 become U+FFFD.
NSString* nsString(std::string_view text);

/// UTF-8; empty for nil.
std::string utf8(NSString* text);

/// The file URL of an absolute path, byte for byte; nil when the system refuses the path.
NSURL* fileURL(const std::string& path);

/// The path of a file URL as the system calls take it; empty for nil.
std::string pathOf(NSURL* url);

}  // namespace velto
