#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "platform/HomeLayout.h"

/// What a freedesktop home holds that no uninstall takes along, whatever an application is called:
/// passwords, mail, what the desktop itself goes by, what several applications share. A Mac's home
/// has rules of its own and none of these.
namespace velto {

struct KeptPlace {
    enum class Extent {
        folder,      // stays as a whole; what lies in it may go where a rule names it
        programs,    // the same; the user's own programs lie in it
        maker,       // the same, and each application of one maker has a folder in it
        everything,  // stays with all that lies in it
        profile,     // of one browser: goes with that browser alone
    };

    std::string HomeLayout::*base;
    Extent extent;
    std::string_view names;        // below the base, between bars; empty for the base itself
    std::string_view why;          // who would lose what
    std::string_view owners = {};  // of a profile: identifiers of the browser, between spaces
};

/// The whole table.
std::span<const KeptPlace> keptPlaces();

/// The row that decides about a path and the length of the place that it names; null for none.
struct KeptMatch {
    const KeptPlace* row = nullptr;
    std::size_t length = 0;
};

/// The longest place that is the path (absolute, standardised) or a folder above it; below its base
/// in any mixture of large and small letters (ASCII). None on a Mac's home.
KeptMatch keptPlaceOf(std::string_view path, const HomeLayout& home);

/// True for what stays, for all but the browser `identifier` whose own profile it is: a kept place,
/// anything in one of `everything` or a profile, and what holds a kept place.
bool isKept(std::string_view path, const HomeLayout& home, std::string_view identifier);

/// The same before anybody knows which application is meant: profiles do not count.
bool isKeptFromAll(std::string_view path, const HomeLayout& home);

/// True for a browser's profile, or what lies in one.
bool isProfile(std::string_view path, const HomeLayout& home);

/// True for what lies in a folder of programs that the user has installed, hidden as it may be.
bool isInProgramFolder(std::string_view path, const HomeLayout& home);

}  // namespace velto
