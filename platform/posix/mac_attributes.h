#pragma once

#include <string_view>

namespace velto {

/// True for an extended attribute that a Mac writes for itself: with values of its own from place
/// to place, and often for nobody else to set. What it keeps there for the user (tags, comments,
/// the Finder's colours, resource forks) is none of these.
bool isAttributeOfMacSystem(std::string_view name);

/// Whether a copy is whole all the same when setting an attribute of that name has failed with that
/// errno: one of the system's that may not be set.
bool mayStayBehindOnMac(std::string_view name, int reason);

}  // namespace velto
