#pragma once

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
        everything,  // stays with all that lies in it
        profile,     // of one browser: goes with that browser alone
    };

    std::string HomeLayout::*base;
    std::string_view below;  // begins with a slash
    Extent extent;
    std::string_view why;     // who would lose what
    std::string_view owners;  // of a profile: identifiers of the browser, between spaces
};

/// The whole table.
std::span<const KeptPlace> keptPlaces();

/// The row that decides about a path (absolute, standardised): the longest that names it or a
/// folder above it, in any mixture of large and small letters (ASCII); null for none, and on a
/// Mac's home.
const KeptPlace* keptPlaceOf(std::string_view path, const HomeLayout& home);

/// True for what stays, for all but the browser `identifier` whose own profile it is: a kept place,
/// anything in one of `everything` or a profile, and what holds a kept place.
bool isKept(std::string_view path, const HomeLayout& home, std::string_view identifier);

/// The same before anybody knows which application is meant: profiles do not count.
bool isKeptFromAll(std::string_view path, const HomeLayout& home);

/// True for a browser's profile, or what lies in one.
bool isProfile(std::string_view path, const HomeLayout& home);

}  // namespace velto
