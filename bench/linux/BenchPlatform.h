#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Platform.h"

namespace velto {

/// What the scanner needs of a machine, with the real folder reader, over the home at `home` in a
/// Mac's layout; the home grants access when it holds Library/Safari. Files do not open, so that
/// an analysis ends with the walk and what is made of it, without hashing.
std::unique_ptr<Platform> benchPlatform(const std::string& home);

/// The most memory that this process has had resident so far, in KiB; 0 when the system does not
/// say.
std::int64_t peakMemory();

}  // namespace velto
