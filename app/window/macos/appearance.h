#pragma once

#import <AppKit/AppKit.h>

#include "platform/ApplicationShell.h"

namespace velto::window {

/// Light or dark, whichever matches best.
Appearance appearanceOf(NSAppearance* appearance);

NSAppearance* namedAppearance(Appearance appearance);

/// The colour behind the page in that appearance.
NSColor* backgroundColourFor(NSAppearance* appearance);

}  // namespace velto::window
