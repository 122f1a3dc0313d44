#pragma once

#import <AppKit/AppKit.h>

#include "app/VeltoApp.h"

namespace velto::window {

/// Gives the application its menu bar in the current language. The entries of the program's own
/// commands send `action` to `target`, with their place in `VeltoApp::commands()` as tag.
void installMainMenu(VeltoApp& app, id target, SEL action);

}  // namespace velto::window
