#include "platform/posix/FileCalls.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "platform/posix/uninterrupted.h"

namespace velto {

int FileCalls::open(int folder, const char* name, int flags, mode_t mode) {
    return uninterrupted([&] { return ::openat(folder, name, flags, mode); });
}

int FileCalls::stat(int folder, const char* name, struct stat& status) {
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW);
}

ssize_t FileCalls::read(int file, void* buffer, std::size_t size) {
    return uninterrupted([&] { return ::read(file, buffer, size); });
}

ssize_t FileCalls::write(int file, const void* data, std::size_t size) {
    return uninterrupted([&] { return ::write(file, data, size); });
}

int FileCalls::sync(int file) {
#ifdef F_FULLFSYNC
    // Where the system has it, its plain sync stops at the drive's own cache. Some file systems
    // refuse it and take the plain one.
    if (::fcntl(file, F_FULLFSYNC) == 0) return 0;
#endif
    return uninterrupted([&] { return ::fsync(file); });
}

int FileCalls::changeMode(int file, mode_t mode) { return ::fchmod(file, mode); }

int FileCalls::makeFolder(int folder, const char* name, mode_t mode) {
    return ::mkdirat(folder, name, mode);
}

int FileCalls::remove(int folder, const char* name, int flags) {
    return ::unlinkat(folder, name, flags);
}

int FileCalls::replace(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameat(fromFolder, from, toFolder, to);
}

FileCalls& systemFileCalls() {
    static FileCalls calls;
    return calls;
}

}  // namespace velto
