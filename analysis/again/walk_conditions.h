#pragma once

#include <string>
#include <vector>

#include "platform/HomeLayout.h"

namespace velto {

/// Everything besides the disk that a walk's result depends on, as a text that is another one when
/// any of it is: the program's version, the layout of the home, what the user keeps out, access,
/// and what is mounted inside (`mounted`: paths).
std::string walkConditions(const HomeLayout& layout, const std::vector<std::string>& excluded,
                           bool hasAccess, const std::vector<std::string>& mounted);

}  // namespace velto
