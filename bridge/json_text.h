#pragma once

#include <string>
#include <string_view>

namespace velto {

/// Appends a path or a name as a JSON string, in the form of `pathText`. What nearly all names are
/// costs no more than a look at each byte.
void appendPathJson(std::string& json, std::string_view path);

}  // namespace velto
