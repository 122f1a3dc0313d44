#import "app/window/macos/WindowConfigurator.h"

#import "app/window/macos/DragRegionView.h"

#include "app/window/macos/appearance.h"

@implementation WindowConfigurator

+ (NSView*)makeProbeView {
    return [[WindowProbeView alloc] initWithFrame:NSZeroRect];
}

+ (void)configureWindow:(NSWindow*)window {
    window.movable = YES;
    window.movableByWindowBackground = NO;

    [window makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];

    window.styleMask |= NSWindowStyleMaskFullSizeContentView;
    window.titlebarAppearsTransparent = YES;
    window.titleVisibility = NSWindowTitleHidden;

    [self paintWindow:window];
    [DragRegionView installInWindow:window];
}

+ (void)paintWindow:(NSWindow*)window {
    window.backgroundColor = velto::window::backgroundColourFor(window.effectiveAppearance);
}

@end

namespace {

NSString* const appearanceKey = @"effectiveAppearance";
char appearanceContext;  // its address tells our observation from a superclass's

}  // namespace

@implementation WindowProbeView {
    BOOL _observing;
}

- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    NSWindow* window = self.window;
    if (window == nil) return;
    [WindowConfigurator configureWindow:window];
    [window addObserver:self forKeyPath:appearanceKey options:0 context:&appearanceContext];
    _observing = YES;
}

- (void)viewWillMoveToWindow:(NSWindow*)newWindow {
    if (_observing) {  // `window` is still the one that is left
        [self.window removeObserver:self forKeyPath:appearanceKey context:&appearanceContext];
        _observing = NO;
    }
    [super viewWillMoveToWindow:newWindow];
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    if (context == &appearanceContext) {
        [WindowConfigurator paintWindow:self.window];
    } else {
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
    }
}

@end
