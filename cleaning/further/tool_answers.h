#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"

namespace velto {

/// What a tool writes, which is looked for in `folders`, the first that has it. Nothing when it is
/// not there or ends with a failure.
std::optional<std::string> toolAnswer(const Platform& platform, std::string_view tool,
                                      const std::vector<std::string>& arguments,
                                      const std::vector<std::string>& folders);

/// Takes what stands before the next `separator` off the front.
std::string_view nextPart(std::string_view& rest, char separator);

/// Without blanks, tabs and carriage returns around it.
std::string_view trimmedAnswer(std::string_view text);

}  // namespace velto
