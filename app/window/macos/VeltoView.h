#pragma once

#import <AppKit/AppKit.h>

#include "app/VeltoApp.h"

/// Hosts the web view that shows the page, from its making to the closing of the window.
@interface VeltoView : NSView

/// Makes the web view, attaches the application's bridge to it and loads the page. Both outlive the
/// view.
- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform;

/// How large the page is shown; kept over restarts.
- (void)enlargePage:(id)sender;
- (void)reducePage:(id)sender;
- (void)showPageAsItIs:(id)sender;

/// Stops the page and lets go of the web view.
- (void)close;

@end
