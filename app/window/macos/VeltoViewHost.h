#pragma once

#import <AppKit/AppKit.h>

#include "app/VeltoApp.h"

/// The content of the program's window: the page over all of it, and the probe that configures the
/// window. The bridge lives as long as this view shows the page; the application object makes it.
@interface VeltoViewHost : NSView

/// Both outlive the view.
- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform;

/// The window is about to go: lets go of the page.
- (void)close;

@end
