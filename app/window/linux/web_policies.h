#pragma once

#include <memory>
#include <string>

#include "app/window/linux/GtkWebView.h"
#include "app/window/linux/gtk.h"
#include "platform/Platform.h"

namespace velto::window {

/// Followed links and requests for new windows go to the default browser; the context menu loses
/// its developer entries. `platform` outlives the view.
void applyWebPolicies(WebKitWebView* view, Platform& platform);

/// A view with these policies that has begun to load the page. The engine's process for it takes a
/// while to start and can do so while the window is made: before the engine takes a page in it asks
/// for leave through the main loop, so whatever is added to the view until then is in time.
std::shared_ptr<GtkWebView> openPage(WebKitNetworkSession* session, Platform& platform,
                                     const std::string& pageUri);

}  // namespace velto::window
