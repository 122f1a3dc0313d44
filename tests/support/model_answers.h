#pragma once

#include <cerrno>

#include "platform/posix/PosixFolder.h"

namespace velto {

/// What a system call answers that fails for `reason`.
inline int failedFor(int reason) {
    errno = reason;
    return -1;
}

/// Opened only to be passed through, not to be read.
inline bool isPassedThrough(int flags) {
    return passThrough != O_RDONLY && (flags & passThrough) == passThrough;
}

}  // namespace velto
