#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/DirectoryReader.h"
#include "platform/FileManager.h"

namespace velto {

/// The space in bytes that each path takes up on disk, in the order given, folders with everything
/// below them, all measured at the same time on as many threads as the machine has processors.
/// Links take up nothing and are never followed; nor do folders themselves; what cannot be read
/// counts 0, and so does a path where nothing is. Blocks; safe from every thread. Throws
/// std::system_error when no thread can be started.
std::vector<std::int64_t> allocatedSizes(const FileManager& files, DirectoryReader& reader,
                                         const std::vector<std::string>& paths);

}  // namespace velto
