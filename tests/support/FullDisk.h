#pragma once

#include <fcntl.h>

#include <cerrno>

#include "platform/posix/FileCalls.h"

namespace velto {

/// A disk with so much space left: what is written and made takes of it, what is removed gives it
/// back. Files count whole blocks, folders one. Copying inside the kernel is not possible.
class FullDisk final : public FileCalls {
public:
    static constexpr long long block = 4096;
    long long left = 1LL << 40;  // bytes
    int error = ENOSPC;

    int open(int folder, const char* name, int flags, mode_t mode) override {
        struct stat status;
        const bool isMade = (flags & O_CREAT) != 0 && FileCalls::stat(folder, name, status) != 0;
        if (isMade && left < block) return refuse();
        return FileCalls::open(folder, name, flags, mode);
    }
    ssize_t write(int file, const void* data, std::size_t size) override {
        return take(size) ? FileCalls::write(file, data, size) : refuse();
    }
    ssize_t writeAt(int file, const void* data, std::size_t size, off_t offset) override {
        return take(size) ? FileCalls::writeAt(file, data, size, offset) : refuse();
    }
    ssize_t copyRange(int, int, off_t, std::size_t) override {
        errno = ENOTSUP;
        return -1;
    }
    int makeFolder(int folder, const char* name, mode_t mode) override {
        struct stat status;
        const bool isNew = FileCalls::stat(folder, name, status) != 0;
        if (isNew && left < block) return refuse();
        const int result = FileCalls::makeFolder(folder, name, mode);
        if (result == 0) left -= block;
        return result;
    }
    int remove(int folder, const char* name, int flags) override {
        struct stat status;
        const bool isThere = FileCalls::stat(folder, name, status) == 0;
        const int result = FileCalls::remove(folder, name, flags);
        if (result == 0 && isThere) giveBack(status);
        return result;
    }
    int replace(int fromFolder, const char* from, int toFolder, const char* to) override {
        struct stat status;
        const bool isThere = FileCalls::stat(toFolder, to, status) == 0;
        const int result = FileCalls::replace(fromFolder, from, toFolder, to);
        if (result == 0 && isThere) giveBack(status);
        return result;
    }
    int sync(int) override { return 0; }
    int flush(int) override { return 0; }

private:
    bool take(std::size_t size) {
        const long long wanted = (static_cast<long long>(size) + block - 1) / block * block;
        if (wanted > left) return false;
        left -= wanted;
        return true;
    }
    void giveBack(const struct stat& status) {
        if (S_ISDIR(status.st_mode)) left += block;
        if (S_ISREG(status.st_mode)) left += (status.st_size + block - 1) / block * block;
    }
    int refuse() const {
        errno = error;
        return -1;
    }
};

}  // namespace velto
