#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/FileContent.h"

namespace velto {

/// What is asked of the system about reading an open file, each in the way of that system; see
/// FileContent. All of it is advice: nothing here fails.
void readAsTold(int file);
std::vector<ByteRange> notCached(int file, ByteRange range);
void readAhead(int file, ByteRange range);
void forget(int file, ByteRange range);

/// Where the first byte of an open file lies on its volume, in bytes; nothing where the system does
/// not say, or when the file has no place of its own (yet).
std::optional<std::uint64_t> firstBlock(int file);

/// Whether a file, by its status and its absolute path, is stored on a disk with moving heads.
/// False where that cannot be told.
bool liesOnRotatingDisk(const struct stat& status, const std::string& path);

}  // namespace velto
