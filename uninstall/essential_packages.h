#pragma once

#include <string_view>

namespace velto {

/// True for a package without which the computer does not start, the user cannot log in or the
/// desktop is gone, and for this program's own. Such a package goes with no application.
bool isEssentialPackage(std::string_view name);

}  // namespace velto
