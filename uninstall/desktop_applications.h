#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"
#include "uninstall/AppEntry.h"

namespace velto {

/// An application of a Linux home: what its desktop entry starts.
struct DesktopApplication {
    AppEntry entry;
    std::string id;          // of the desktop entry; its path where an AppImage has none
    std::string file;        // of the entry; empty where it has none
    std::string executable;  // absolute
    std::string script;      // what an interpreter is told to run, absolute; else empty
    std::string flatpak;     // identifier of the Flatpak that it starts, else empty
    std::string snap;        // (instance) name of the Snap that it starts, else empty
    std::vector<std::string> arguments{};  // of the executable, without opened files
    bool isIdentified = false;             // a process that runs `executable` is this application
};

/// All of them: each entry that is shown to the user is an application, whatever program it shares
/// with others (a launcher, a browser, a container), and so is an AppImage without one. Each has a
/// path of its own: of several entries that start the same Flatpak of the user, or the same program
/// of the home in the same way, the least special one counts.
///
/// `path` is what removing the application removes: an AppImage or another program file of the
/// home, the folder of the home that a user's own entry starts when it is named like the
/// application, the folder of a user-level Flatpak. For everything else, which cannot be removed
/// from here, it is the desktop entry. `apple` marks what belongs to the system's packages, `store`
/// a Flatpak or Snap. `exec` is empty where the executable says nothing about the application.
/// Never throws.
std::vector<DesktopApplication> desktopApplications(const Platform& platform);

}  // namespace velto
