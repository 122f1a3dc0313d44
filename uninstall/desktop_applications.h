#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"
#include "uninstall/AppEntry.h"

namespace velto {

/// An application of a Linux home: what its desktop entry starts.
struct DesktopApplication {
    AppEntry entry;
    std::string executable;     // absolute
    std::string icon;           // as the desktop entry names it
    bool isIdentified = false;  // a running process of `executable` is this application
};

/// All of them; hidden entries are left out, and several entries of one application count once.
///
/// `path` is what removing the application removes: an AppImage or another program file of the
/// home, the folder of the home that a user's own entry starts when it is named like the
/// application, the folder of a user-level Flatpak. For everything else, which cannot be removed
/// from here, it is the desktop entry. `apple` marks what belongs to the system's packages, `store`
/// a Flatpak or Snap. Never throws.
std::vector<DesktopApplication> desktopApplications(const Platform& platform);

}  // namespace velto
