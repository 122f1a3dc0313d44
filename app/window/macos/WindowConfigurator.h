#pragma once

#import <AppKit/AppKit.h>

/// Gives a window its looks: the page up to the top edge, an invisible title bar with a region to
/// drag the window by, and the background colour of its appearance.
@interface WindowConfigurator : NSObject

/// An invisible view that configures every window that it is placed in.
+ (NSView*)makeProbeView;

+ (void)configureWindow:(NSWindow*)window;

/// The background colour of the window's present appearance.
+ (void)paintWindow:(NSWindow*)window;

@end

/// Configures the window it is placed in and follows its appearance until it leaves the window.
@interface WindowProbeView : NSView
@end
