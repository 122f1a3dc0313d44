#include "platform/macos/foundation_text.h"

#include "platform/values/text.h"

namespace velto {

NSString* nsString(std::string_view text) {
    const std::string valid = validUtf8(text);
    return [[NSString alloc] initWithBytes:valid.data()
                                    length:valid.size()
                                  encoding:NSUTF8StringEncoding];
}

std::string utf8(NSString* text) {
    const char* bytes = text.UTF8String;
    return bytes != nullptr ? bytes : "";
}

NSURL* fileURL(const std::string& path) {
    if (path.empty()) return nil;  // Foundation would take it for the current folder, or raise
    return [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                          isDirectory:NO
                                        relativeToURL:nil];
}

std::string pathOf(NSURL* url) {
    // Foundation raises an exception when asked for the file system representation of a path that
    // is nil or empty, so the path is looked at first.
    if (url.path.length == 0) return {};
    return url.fileSystemRepresentation;
}

}  // namespace velto
