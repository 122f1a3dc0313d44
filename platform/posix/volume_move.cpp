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

/// A file gets its new name before it loses the old one; either name is the whole file. Tells which
/// file that was. False when the volume gives no second names.
bool addSecondName(FileCalls& calls, const Entry& from, const Entry& to, struct stat& moved) {
    // Of a file with several names another one may stand there: that is not ours to take.
    if (bearerOf(calls, to, moved) == Bearer::wanted) fail(to, EEXIST);
    if (calls.addName(from.folder(), from.c_str(), to.folder(), to.c_str()) != 0) {
        if (bearerOf(calls, to, moved) != Bearer::wanted) {
            if (isUnsupported(errno) || errno == EPERM || errno == EMLINK) return false;
            fail(from);
        }
    }
    // It may have been saved anew since it was looked at.
    struct stat named;
    if (isThere(calls, to.folder(), to.c_str(), named)) moved = named;
    return true;
}

/// Ends a move by names that cannot go on: the new name goes while the old one is known to be
/// whole.
[[noreturn]] void takeNewNameBack(FileCalls& calls, const Entry& from, const Entry& to,
                                  const struct stat& moved, int reason) {
    if (bearerOf(calls, from, moved) == Bearer::wanted &&
        bearerOf(calls, to, moved) == Bearer::wanted) {
        calls.remove(to.folder(), to.c_str(), 0);
    }
    fail(from, reason);
}

/// True when the name is gone, whatever was reported, or stands for something else by now.
bool dropName(FileCalls& calls, const Entry& entry, const struct stat& moved) {
    if (calls.remove(entry.folder(), entry.c_str(), 0) == 0) return true;
    const Bearer left = bearerOf(calls, entry, moved);
    return left == Bearer::nobody || left == Bearer::another;
}

/// Of a file whose old name nobody else uses.
bool moveByNames(FileCalls& calls, const Entry& from, const Entry& to, struct stat& moved) {
    if (!addSecondName(calls, from, to, moved)) return false;
    // Without a journal of the volume's own a loss of power could keep the removal alone.
    if (syncNames(calls, to.folder()) != 0 || !dropName(calls, from, moved)) {
        takeNewNameBack(calls, from, to, moved, errno);
    }
    return true;
}

/// Of any file. No system removes a name only if it still stands for a certain file, and a program
/// may save the file just now by renaming a new version over it. So the old name is not removed but
/// renamed to one that nobody else uses, and goes once it is seen what it stands for; a new version
/// gets its name back.
bool moveByNames(FileCalls& calls, const Entry& from, const Entry& to, const Entry& aside,
                 struct stat& moved) {
    // After a loss of power an earlier move's name may be back.
    const bool isSecondName = moved.st_nlink > 1 && bearerOf(calls, aside, moved) == Bearer::wanted;
    if (isSecondName && !dropName(calls, aside, moved)) fail(aside);
    struct stat held;
    if (isThere(calls, aside, held, "move")) fail(aside, EEXIST);
    if (!addSecondName(calls, from, to, moved)) return false;
    if (syncNames(calls, to.folder()) != 0) takeNewNameBack(calls, from, to, moved, errno);
    const bool isReplaced =
        calls.replace(from.folder(), from.c_str(), aside.folder(), aside.c_str()) == 0;
    const int reason = errno;
    switch (bearerOf(calls, aside, moved)) {
        case Bearer::wanted:
            if (!dropName(calls, aside, moved)) fail(aside);
            return true;
        case Bearer::another:
            moveWithinVolume(calls, aside, from);
            return true;
        case Bearer::nobody:
            if (isReplaced || bearerOf(calls, from, moved) != Bearer::wanted) return true;
            takeNewNameBack(calls, from, to, moved, reason);
        case Bearer::unknown:
            break;
    }
    fail(from, isReplaced ? errno : reason);
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

bool moveStepwise(FileCalls& calls, const Entry& from, const Entry& to, const Entry& aside) {
    struct stat status;
    if (!isThere(calls, from, status, "move")) fail(from, ENOENT);
    return S_ISDIR(status.st_mode) ? moveOntoPlaceholder(calls, from, to, status)
                                   : moveByNames(calls, from, to, aside, status);
}

void moveAside(FileCalls& calls, const Entry& from, const Entry& to) {
    struct stat moved;
    if (!isThere(calls, from, moved, "move")) fail(from, ENOENT);
    if (moveOnce(calls, from, to)) return;
    struct stat held;
    if (isThere(calls, to, held, "move")) fail(to, EEXIST);
    if (calls.replace(from.folder(), from.c_str(), to.folder(), to.c_str()) == 0) return;
    const int reason = errno;
    const Bearer arrived = bearerOf(calls, to, moved);
    if (arrived == Bearer::wanted || arrived == Bearer::another) return;
    fail(from, isUnsupported(reason) ? ENOTSUP : reason);
}

void moveWithinVolume(FileCalls& calls, const Entry& from, const Entry& to) {
    if (moveOnce(calls, from, to)) return;
    struct stat status;
    if (!isThere(calls, from, status, "move")) fail(from, ENOENT);
    const bool isMoved = S_ISDIR(status.st_mode) ? moveOntoPlaceholder(calls, from, to, status)
                                                 : moveByNames(calls, from, to, status);
    if (!isMoved) fail(from, ENOTSUP);
}

}  // namespace velto
