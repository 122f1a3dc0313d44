#pragma once

#include <optional>
#include <string>

#include "platform/Platform.h"
#include "uninstall/AppEntry.h"
#include "uninstall/InstalledApps.h"

namespace velto {

/// Whether an application itself can be removed from here, known before anything is removed.
struct AppRemoval {
    /// Why it stays; empty when it goes. "admin": for all users, or somebody else's; "system": a
    /// part of the system; "shared": a folder of many things; "protected": a protected place;
    /// "entry": only its entry in the menu is in reach, and what that starts stays.
    std::string stays;
    /// Of a program that goes as a single file: its folder, which stays; else empty.
    std::string folder;

    bool operator==(const AppRemoval&) const = default;
};

/// Nothing on a Mac's home, where the place of a bundle says it all. Blocking; safe from every
/// thread; never throws.
std::optional<AppRemoval> appRemoval(const Platform& platform, const InstalledApps& apps,
                                     const AppEntry& entry);

}  // namespace velto
