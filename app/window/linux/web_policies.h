#pragma once

#include "app/window/linux/gtk.h"
#include "platform/Platform.h"

namespace velto::window {

/// Followed links and requests for new windows go to the default browser; the context menu loses
/// its developer entries. `platform` outlives the view.
void applyWebPolicies(WebKitWebView* view, Platform& platform);

}  // namespace velto::window
