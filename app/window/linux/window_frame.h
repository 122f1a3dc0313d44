#pragma once

#include "app/window/linux/gtk.h"
#include "platform/UserDefaults.h"

namespace velto::window {

/// Gives the window its first or its remembered size, never below the least one.
void restoreFrame(GtkWindow* window, const UserDefaults& defaults);

/// Remembers the size; of a maximised window the one that it returns to.
void rememberFrame(GtkWindow* window, UserDefaults& defaults);

}  // namespace velto::window
