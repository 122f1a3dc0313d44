#include "platform/posix/volume_move.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/same_state.h"

namespace velto {
namespace {

[[noreturn]] void fail(const Entry& entry, int reason = errno) {
    throw FileError("move", entry.path(), reason);
}

bool isUnsupported(int reason) {
    return reason == EXDEV || reason == EINVAL || reason == ENOTSUP || reason == EOPNOTSUPP ||
           reason == ENOSYS;
}

/// What a call that has failed may have done all the same: its answer was lost, or it was repeated
/// on the way and found its own work done.
enum class Bearer { wanted, another, nobody, unknown };

/// Who bears a name now, of which `wanted` is to be told apart. Keeps `errno`.
Bearer bearerOf(FileCalls& calls, const Entry& entry, const struct stat& wanted) {
    const int kept = errno;
    struct stat now;
    Bearer bearer = Bearer::unknown;
    if (isThere(calls, entry.folder(), entry.c_str(), now)) {
        bearer = isSameFile(now, wanted) ? Bearer::wanted : Bearer::another;
    } else if (errno == ENOENT) {
        bearer = Bearer::nobody;
    }
    errno = kept;
    return bearer;
}

/// A file gets its new name before it loses the old one; either name is the whole file. When a
/// program saves the file in between, by renaming a new version over it, the version that was to be
/// moved is at its target already and the new one stays where it is. No system can unlink a name
/// only if it still stands for a certain file: a save within the few microseconds between the last
/// look and the removal would still lose its name.
bool moveByNames(FileCalls& calls, const Entry& from, const Entry& to, const struct stat& moved) {
    // Of a file with several names another one may stand there: that is not ours to take.
    if (bearerOf(calls, to, moved) == Bearer::wanted) fail(to, EEXIST);
    if (calls.addName(from.folder(), from.c_str(), to.folder(), to.c_str()) != 0 &&
        bearerOf(calls, to, moved) != Bearer::wanted) {
        if (isUnsupported(errno) || errno == EPERM || errno == EMLINK) return false;
        fail(from);
    }
    if (bearerOf(calls, from, moved) == Bearer::another) return true;
    // Without a journal of the volume's own a loss of power could keep the removal alone.
    if (syncNames(calls, to.folder()) == 0 && calls.remove(from.folder(), from.c_str(), 0) == 0) {
        return true;
    }
    const int reason = errno;
    const Bearer left = bearerOf(calls, from, moved);
    if (left == Bearer::nobody || left == Bearer::another) return true;
    // Only while the old name is known to be whole may the new one go.
    if (left == Bearer::wanted && bearerOf(calls, to, moved) == Bearer::wanted) {
        calls.remove(to.folder(), to.c_str(), 0);
    }
    fail(from, reason);
}

/// A folder takes the place of an empty one that was made for it.
bool moveOntoPlaceholder(FileCalls& calls, const Entry& from, const Entry& to,
                         const struct stat& moved) {
    struct stat held;
    if (isThere(calls, to, held, "move")) fail(to, EEXIST);
    if (calls.makeFolder(to.folder(), to.c_str(), placeholder) != 0) {
        const int reason = errno;
        // Nothing was there before, and nobody else makes such folders: it was made all the same.
        const bool isHeld = isThere(calls, to, held, "move") && S_ISDIR(held.st_mode) &&
                            (held.st_mode & 0777) == placeholder;
        if (!isHeld) fail(to, reason);
    }
    if (calls.replace(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return true;
    const int reason = errno;
    const Bearer holder = bearerOf(calls, to, moved);
    if (holder == Bearer::wanted) return true;
    // The moved folder may be empty too: only what is known not to be it is removed.
    if (holder == Bearer::another) calls.remove(to.folder(), to.c_str(), AT_REMOVEDIR);
    if (reason == EXDEV) return false;
    fail(from, reason);
}

}  // namespace

bool moveOnce(FileCalls& calls, const Entry& from, const Entry& to) {
    struct stat moved;
    const bool isKnown = isThere(calls, from.folder(), from.c_str(), moved);
    if (calls.rename(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return true;
    if (isKnown && bearerOf(calls, from, moved) != Bearer::wanted &&
        bearerOf(calls, to, moved) == Bearer::wanted) {
        return true;
    }
    if (isUnsupported(errno)) return false;
    fail(from);
}

bool moveStepwise(FileCalls& calls, const Entry& from, const Entry& to) {
    struct stat status;
    if (!isThere(calls, from, status, "move")) fail(from, ENOENT);
    return S_ISDIR(status.st_mode) ? moveOntoPlaceholder(calls, from, to, status)
                                   : moveByNames(calls, from, to, status);
}

void moveWithinVolume(FileCalls& calls, const Entry& from, const Entry& to) {
    if (!moveOnce(calls, from, to) && !moveStepwise(calls, from, to)) fail(from, ENOTSUP);
}

}  // namespace velto
