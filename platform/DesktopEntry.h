#pragma once

#include <optional>
#include <string>

namespace velto {

/// A file that tells a desktop how to start an application (Desktop Entry Specification).
struct DesktopEntry {
    std::string name;        // in the user's language
    std::string executable;  // absolute, links resolved
    std::string icon;        // the name of a theme's icon, or an absolute path; may be empty
    std::string version;     // of the application, where its packager wrote it down
    std::string flatpak;     // identifier of the Flatpak that it starts, else empty
    bool isSnap = false;
    bool isShown = true;        // on this desktop, to the user
    bool startsScript = false;  // `executable` only runs something: a shell, a launcher
};

/// Reads the entry at a path. Nothing when there is none, when it is marked as deleted, or when the
/// program that it starts is not installed. Safe from every thread; never throws. A Mac has none.
std::optional<DesktopEntry> readDesktopEntry(const std::string& path);

}  // namespace velto
