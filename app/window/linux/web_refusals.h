#pragma once

#include "app/window/linux/gtk.h"

namespace velto::window {

/// Answers everything that a page can ask of a browser with no: new views, permissions, passwords,
/// notifications, files, colours, printing, full screen. Dialogs of scripts are closed unseen. The
/// page asks for none of it.
void refuseRequests(WebKitWebView* view);

/// Nothing dropped on the view navigates or reaches a script. After the view is made, which brings
/// its own way of taking drops.
void refuseDrops(GtkWidget* view);

}  // namespace velto::window
