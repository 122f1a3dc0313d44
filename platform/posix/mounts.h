#pragma once

#include <cstdint>
#include <string>

#include "platform/posix/FileCalls.h"

namespace velto {

/// The mount on which a name of an open folder lies; with an empty name that of the folder. Throws
/// FileError; `attempt` and `path` are for its message.
std::uint64_t mountOf(FileCalls& calls, int folder, const std::string& name, const char* attempt,
                      const std::string& path);

/// Throws SomethingMounted.
[[noreturn]] void failMounted(const char* attempt, const std::string& path, int code);

/// Throws EXDEV when anything is mounted on a name of an open folder or inside it, before anybody
/// has changed anything. What cannot be looked at is passed over. `path` is the open folder's.
void requireNoMounts(FileCalls& calls, int parent, const std::string& name,
                     const std::string& path);

}  // namespace velto
