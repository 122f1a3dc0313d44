#include "platform/posix/volume_move.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace velto {
namespace {

[[noreturn]] void fail(const Entry& entry, int reason = errno) {
    throw FileError("move", entry.path(), reason);
}

bool isUnsupported(int reason) {
    return reason == EXDEV || reason == EINVAL || reason == ENOTSUP || reason == EOPNOTSUPP ||
           reason == ENOSYS;
}

/// A file gets its new name before it loses the old one; either name is the whole file.
bool moveByNames(FileCalls& calls, const Entry& from, const Entry& to) {
    if (calls.addName(from.folder(), from.c_str(), to.folder(), to.c_str()) != 0) {
        if (isUnsupported(errno) || errno == EPERM || errno == EMLINK) return false;
        fail(from);
    }
    if (calls.remove(from.folder(), from.c_str(), 0) == 0) return true;
    const int reason = errno;
    calls.remove(to.folder(), to.c_str(), 0);
    fail(from, reason);
}

/// A folder takes the place of an empty one that was made for it.
bool moveOntoPlaceholder(FileCalls& calls, const Entry& from, const Entry& to) {
    if (calls.makeFolder(to.folder(), to.c_str(), placeholder) != 0) fail(to);
    if (calls.replace(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return true;
    const int reason = errno;
    calls.remove(to.folder(), to.c_str(), AT_REMOVEDIR);
    if (reason == EXDEV) return false;
    fail(from, reason);
}

}  // namespace

bool moveOnce(FileCalls& calls, const Entry& from, const Entry& to) {
    if (calls.rename(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return true;
    if (isUnsupported(errno)) return false;
    fail(from);
}

bool moveStepwise(FileCalls& calls, const Entry& from, const Entry& to) {
    struct stat status;
    if (!isThere(calls, from, status, "move")) fail(from, ENOENT);
    return S_ISDIR(status.st_mode) ? moveOntoPlaceholder(calls, from, to)
                                   : moveByNames(calls, from, to);
}

void moveWithinVolume(FileCalls& calls, const Entry& from, const Entry& to) {
    if (!moveOnce(calls, from, to) && !moveStepwise(calls, from, to)) fail(from, ENOTSUP);
}

}  // namespace velto
