#pragma once

#include "app/window/linux/gtk.h"

namespace velto::window {

/// What the engine may do for the page: show it, run its scripts, keep its choices. What serves
/// browsing, speaks to the network or belongs to developers is off.
GlibReference<WebKitSettings> pageSettings();

}  // namespace velto::window
