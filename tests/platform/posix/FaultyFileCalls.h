#pragma once

#include <cerrno>

#include "platform/posix/FileCalls.h"

namespace velto {

/// Lets the n-th changing call of an operation fail without doing anything, or run something just
/// before one of them.
class FaultyFileCalls final : public FileCalls {
public:
    using FileCalls::changeMode;
    int failAt = -1;             // index of the call that fails, -1 for none
    int error = EIO;             // what it fails with
    int count = 0;               // calls so far
    std::size_t shortWrite = 0;  // most bytes that one write takes, 0 for any number

    int open(int folder, const char* name, int flags, mode_t mode) override {
        return fails() ? -1 : FileCalls::open(folder, name, flags, mode);
    }
    ssize_t write(int file, const void* data, std::size_t size) override {
        if (fails()) return -1;
        return FileCalls::write(file, data,
                                shortWrite == 0 || size < shortWrite ? size : shortWrite);
    }
    int sync(int file) override { return fails() ? -1 : FileCalls::sync(file); }
    int changeMode(int file, mode_t mode) override {
        return fails() ? -1 : FileCalls::changeMode(file, mode);
    }
    int makeFolder(int folder, const char* name, mode_t mode) override {
        return fails() ? -1 : FileCalls::makeFolder(folder, name, mode);
    }
    int remove(int folder, const char* name, int flags) override {
        return fails() ? -1 : FileCalls::remove(folder, name, flags);
    }
    int replace(int fromFolder, const char* from, int toFolder, const char* to) override {
        return fails() ? -1 : FileCalls::replace(fromFolder, from, toFolder, to);
    }

private:
    bool fails() {
        if (count++ != failAt) return false;
        errno = error;
        return true;
    }
};

}  // namespace velto
