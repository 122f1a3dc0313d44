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
