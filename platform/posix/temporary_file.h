#pragma once

#include <string>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileCalls.h"

namespace velto {

/// A new file that is to replace another. It is locked as long as it is open, which tells a sweep
/// of stale ones that somebody is at work.
struct TemporaryFile {
    std::string name;
    Descriptor file;  // for writing; not open, with `errno` set, when it could not be made
};

/// Makes one in an open folder, for the user alone (0600) as far as the umask lets.
TemporaryFile makeTemporary(FileCalls& calls, int folder);

}  // namespace velto
