#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/DirectoryReader.h"

namespace velto {

/// The logical size in bytes of each folder, in the order given, all measured at the same time on
/// as many threads as the machine has processors: the sum of the own sizes of everything below it.
/// Hidden entries count, links and folders count as themselves, links are never followed, several
/// names of one file count each, what cannot be read counts 0, and a sum beyond 64 bits stays at
/// the largest number.
///
/// Nothing for what cannot be opened as a folder: a missing one, one without permission, a file, a
/// link. Links above it are followed. Paths are absolute. Blocks; safe from every thread; throws
/// what the reader throws, and std::system_error when no thread can be started.
std::vector<std::optional<std::int64_t>> folderSizes(DirectoryReader& reader,
                                                     const std::vector<std::string>& folders);

/// What is known of a folder once everything below it has been met.
struct FolderMeasure {
    std::int64_t bytes = 0;  // logical, as above
    double newest = 0;       // last change of anything inside, seconds since 1970; 0: nothing tells
};

/// The same walk, with the dates that it meets anyway. The folder's own date is no part of it.
std::vector<std::optional<FolderMeasure>> folderMeasures(DirectoryReader& reader,
                                                         const std::vector<std::string>& folders);

}  // namespace velto
