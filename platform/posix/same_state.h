#pragma once

#include <sys/stat.h>

#include <ctime>

namespace velto {

// POSIX names the full times st_mtim and so on; macOS knows them as st_mtimespec.
template <typename Status>
timespec modifiedTime(const Status& status) {
    if constexpr (requires { status.st_mtim; }) {
        return status.st_mtim;
    } else {
        return status.st_mtimespec;
    }
}

template <typename Status>
timespec accessedTime(const Status& status) {
    if constexpr (requires { status.st_atim; }) {
        return status.st_atim;
    } else {
        return status.st_atimespec;
    }
}

template <typename Status>
timespec changedTime(const Status& status) {
    if constexpr (requires { status.st_ctim; }) {
        return status.st_ctim;
    } else {
        return status.st_ctimespec;
    }
}

/// Flags of a file that forbid to change or remove it: immutable or append-only for its owner, or
/// for everyone, or not to be unlinked (chflags(2) of macOS). Elsewhere a file has no such flags.
inline constexpr unsigned lockingFlags = 0x2 | 0x4 | 0x20000 | 0x40000 | 0x100000;

/// Flags that a copy keeps: not to be dumped, opaque, hidden (the same page).
inline constexpr unsigned keptFlags = 0x1 | 0x8 | 0x8000;

template <typename Status>
unsigned flagsOf(const Status& status) {
    if constexpr (requires { status.st_flags; }) {
        return status.st_flags;
    } else {
        return 0;
    }
}

/// A copy of it could not be followed by its removal.
template <typename Status>
bool isLocked(const Status& status) {
    return (flagsOf(status) & lockingFlags) != 0;
}

inline bool isSameTime(const timespec& left, const timespec& right) {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

inline bool isSameFile(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// The same file with the same content, as far as its times and size tell.
inline bool isUnmodified(const struct stat& left, const struct stat& right) {
    return isSameFile(left, right) && left.st_mode == right.st_mode &&
           left.st_size == right.st_size && isSameTime(modifiedTime(left), modifiedTime(right));
}

/// The same, and nothing else about it has changed either, its name included.
inline bool isSameState(const struct stat& left, const struct stat& right) {
    return isUnmodified(left, right) && isSameTime(changedTime(left), changedTime(right));
}

}  // namespace velto
