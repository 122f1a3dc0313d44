#pragma once

#include <optional>

#include "platform/ApplicationShell.h"
#include "platform/UserDefaults.h"

namespace velto::window {

/// The appearance that the person has chosen for the window; nothing while it follows the system's.
std::optional<Appearance> keptAppearance(const UserDefaults& defaults);

/// Keeps it; nothing forgets it.
void keepAppearance(UserDefaults& defaults, std::optional<Appearance> appearance);

}  // namespace velto::window
