#pragma once

#import <AppKit/AppKit.h>

#include "app/VeltoApp.h"

namespace velto::window {

/// Where the entries of the program's own commands send what: an action with the entry, whose tag
/// is the place in `VeltoApp::commands()`, `settingsTag` or `guideTag`.
struct CommandReceiver {
    id target;
    SEL action;
};
inline constexpr NSInteger settingsTag = -1;
inline constexpr NSInteger guideTag = -2;

/// Gives the application its menu bar in the current language.
void installMainMenu(VeltoApp& app, const CommandReceiver& receiver);

}  // namespace velto::window
