#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/posix/Descriptor.h"

namespace velto {

/// The names in an open folder without "." and ".."; nothing, with `errno` set, when it cannot be
/// listed.
std::optional<std::vector<std::string>> namesInFolder(Descriptor folder);

}  // namespace velto
