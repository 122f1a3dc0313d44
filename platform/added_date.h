#pragma once

#include <optional>
#include <string>

namespace velto {

/// When the item at an absolute path was put into the folder that it lies in, in seconds since
/// 1970. Links are not followed. Nothing where the file system keeps no such date (none does on
/// Linux) or when the item cannot be read.
std::optional<double> dateAddedToFolder(const std::string& path);

}  // namespace velto
