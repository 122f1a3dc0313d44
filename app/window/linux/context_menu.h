#pragma once

#include "app/window/linux/gtk.h"

namespace velto::window {

/// Takes the developer entries and those of a browser (back, forward, reload) out of a menu and its
/// submenus, and the separators that would then stand at an end or beside another one.
void removeUnwantedItems(WebKitContextMenu* menu);

}  // namespace velto::window
