#include "platform/macos/MacWorkspace.h"

#import <AppKit/AppKit.h>

#include "platform/macos/foundation_text.h"
#include "platform/values/text.h"

namespace velto {

void MacWorkspace::openURL(const std::string& url) {
    NSURL* target = [NSURL URLWithString:nsString(url)];
    if (target == nil || ![NSWorkspace.sharedWorkspace openURL:target]) {
        log_.line("Velto ▶ no se pudo abrir " + singleLine(url));
    }
}

void MacWorkspace::reveal(const std::string& path) {
    NSURL* item = fileURL(path);
    if (item == nil) {
        log_.line("Velto ▶ no se pudo mostrar " + singleLine(path));
        return;
    }
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ item ]];
}

}  // namespace velto
