#pragma once

#import <AppKit/AppKit.h>

/// A transparent strip over the top of the page that moves the window.
@interface DragRegionView : NSView

/// Puts a region into the title-bar container of `window`, once.
+ (void)installInWindow:(NSWindow*)window;

@end
