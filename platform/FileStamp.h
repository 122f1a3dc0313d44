#pragma once

#include <cstdint>

#include "platform/FileManager.h"

namespace velto {

/// What tells whether a file's content may be another one by now: as long as all of it is the same,
/// nobody has written to the file, but for a change in the same moment of a coarse clock.
struct FileStamp {
    FileIdentity identity{};
    std::int64_t length = 0;    // bytes
    std::int64_t modified = 0;  // of the content; nanoseconds since 1970
    std::int64_t changed = 0;   // of content, names or attributes; nanoseconds since 1970

    bool operator==(const FileStamp&) const = default;
};

}  // namespace velto
