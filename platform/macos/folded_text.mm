#include "platform/folded_text.h"

#import <Foundation/Foundation.h>

#include "platform/macos/foundation_text.h"
#include "platform/values/text.h"

namespace velto {

std::string foldedText(std::string_view text) {
    @autoreleasepool {
        NSString* bare =
            [nsString(validUtf8(text)) stringByFoldingWithOptions:NSDiacriticInsensitiveSearch
                                                           locale:nil];
        return utf8(bare.lowercaseString);
    }
}

}  // namespace velto
