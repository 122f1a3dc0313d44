#pragma once

#include <string>

#include "platform/FileManager.h"

namespace velto {

/// The icon theme that the user's desktop uses: what GTK's own settings in `configuration`
/// ($XDG_CONFIG_HOME) say, which also KDE writes, else GNOME's settings. Empty when nobody says.
/// Blocking; never throws.
std::string iconThemeName(const FileManager& files, const std::string& configuration);

}  // namespace velto
