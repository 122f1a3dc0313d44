#pragma once

#include <string>

#include "platform/UserDefaults.h"

/// How large the page is shown: 1 is its own size. It goes in steps, and is kept over restarts.
namespace velto::window {

inline constexpr double ownSize = 1;

/// The next step up or down; at the end of the steps the last one.
double zoomedIn(double zoom);
double zoomedOut(double zoom);

/// The step that was kept; whatever else is stored there counts as none.
double keptZoom(const UserDefaults& defaults);
void keepZoom(UserDefaults& defaults, double zoom);

/// The script that tells the page, in its own pixels, what does not grow with it: the strip at the
/// top that drags the window, and the window's buttons over its right corner (`roomAtEnd`, points).
std::string roomScript(double roomAtEnd, double zoom);

}  // namespace velto::window
