#pragma once

#include <memory>

#include "app/window/linux/GtkWebView.h"
#include "app/window/linux/gtk.h"
#include "platform/Platform.h"

namespace velto::window {

/// The view shows the page and nothing else: followed links go to the default browser, all other
/// ways to leave the page or to open something beside it are refused, and so are drops and whatever
/// a page can ask of a browser (permissions, dialogs, files, printing). The context menu loses its
/// developer entries. `platform` outlives the view.
void applyWebPolicies(WebKitWebView* view, Platform& platform);

/// A view with these policies that has begun to load the page. The engine's process for it takes a
/// while to start and can do so while the window is made: before the engine takes a page in it asks
/// for leave through the main loop, so whatever is added to the view until then is in time.
std::shared_ptr<GtkWebView> openPage(WebKitNetworkSession* session, Platform& platform);

}  // namespace velto::window
