#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// True when one of the process arguments is this very text, wherever it stands.
inline bool isGiven(std::string_view argument, const std::vector<std::string>& arguments) {
    return std::ranges::find(arguments, argument) != arguments.end();
}

}  // namespace velto
