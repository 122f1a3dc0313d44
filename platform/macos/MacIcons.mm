#include "platform/macos/MacIcons.h"

#import <AppKit/AppKit.h>

#include "platform/macos/foundation_text.h"

namespace velto {

std::optional<std::string> MacIcons::pngDataURL(const std::string& path, int pixels) {
    if (pixels <= 0) return std::nullopt;
    @autoreleasepool {
        NSImage* icon = [NSWorkspace.sharedWorkspace iconForFile:nsString(path)];
        NSBitmapImageRep* bitmap =
            [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                    pixelsWide:pixels
                                                    pixelsHigh:pixels
                                                 bitsPerSample:8
                                               samplesPerPixel:4
                                                      hasAlpha:YES
                                                      isPlanar:NO
                                                colorSpaceName:NSDeviceRGBColorSpace
                                                   bytesPerRow:0
                                                  bitsPerPixel:0];
        if (icon == nil || bitmap == nil) return std::nullopt;
        [NSGraphicsContext saveGraphicsState];
        NSGraphicsContext.currentContext =
            [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
        [icon drawInRect:NSMakeRect(0, 0, pixels, pixels)
                fromRect:NSZeroRect
               operation:NSCompositingOperationCopy
                fraction:1];
        [NSGraphicsContext restoreGraphicsState];
        NSData* png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
        if (png == nil) return std::nullopt;
        return "data:image/png;base64," + utf8([png base64EncodedStringWithOptions:0]);
    }
}

}  // namespace velto
