#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// The names in a list as the system writes it, each ended by a null character (flistxattr(2)).
std::vector<std::string> attributeNamesIn(std::string_view list);

}  // namespace velto
