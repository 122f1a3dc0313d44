#pragma once

#include "app/window/PageFiles.h"

namespace velto::window {

/// Serves the page's addresses to every view that is made afterwards. `files` outlives the views.
void servePage(const PageFiles& files);

}  // namespace velto::window
