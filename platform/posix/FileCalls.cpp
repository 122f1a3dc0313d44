#include "platform/posix/FileCalls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "platform/posix/names_in_folder.h"
#include "platform/posix/uninterrupted.h"

namespace velto {

int FileCalls::open(int folder, const char* name, int flags, mode_t mode) {
    return uninterrupted([&] { return ::openat(folder, name, flags, mode); });
}

int FileCalls::stat(int folder, const char* name, struct stat& status) {
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW);
}

int FileCalls::statTarget(const char* path, struct stat& status) { return ::stat(path, &status); }

int FileCalls::status(int file, struct stat& status) { return ::fstat(file, &status); }

long FileCalls::longestName(int folder) { return ::fpathconf(folder, _PC_NAME_MAX); }

int FileCalls::resolve(const char* path, std::string& real) {
    const std::unique_ptr<char, decltype(&std::free)> found(::realpath(path, nullptr), &std::free);
    if (!found) return -1;
    real = found.get();
    return 0;
}

int FileCalls::names(Descriptor folder, std::vector<std::string>& names) {
    auto found = namesInFolder(std::move(folder));
    if (!found) return -1;
    names = std::move(*found);
    return 0;
}

ssize_t FileCalls::read(int file, void* buffer, std::size_t size) {
    return uninterrupted([&] { return ::read(file, buffer, size); });
}

ssize_t FileCalls::write(int file, const void* data, std::size_t size) {
    return uninterrupted([&] { return ::write(file, data, size); });
}

ssize_t FileCalls::readAt(int file, void* buffer, std::size_t size, off_t offset) {
    return uninterrupted([&] { return ::pread(file, buffer, size, offset); });
}

ssize_t FileCalls::writeAt(int file, const void* data, std::size_t size, off_t offset) {
    return uninterrupted([&] { return ::pwrite(file, data, size, offset); });
}

off_t FileCalls::seek(int file, off_t offset, int whence) { return ::lseek(file, offset, whence); }

int FileCalls::resize(int file, off_t size) {
    return uninterrupted([&] { return ::ftruncate(file, size); });
}

int FileCalls::sync(int file) {
#ifdef F_FULLFSYNC
    // Where the system has it, its plain sync stops at the drive's own cache. Some file systems
    // refuse it and take the plain one.
    if (::fcntl(file, F_FULLFSYNC) == 0) return 0;
#endif
    return uninterrupted([&] { return ::fsync(file); });
}

int FileCalls::flush(int file) {
    return uninterrupted([&] { return ::fsync(file); });
}

int FileCalls::changeMode(int file, mode_t mode) { return ::fchmod(file, mode); }

int FileCalls::changeMode(int folder, const char* name, mode_t mode) {
    return ::fchmodat(folder, name, mode, AT_SYMLINK_NOFOLLOW);
}

int FileCalls::changeOwner(int file, uid_t user, gid_t group) {
    return ::fchown(file, user, group);
}

int FileCalls::setTimes(int file, const struct timespec (&times)[2]) {
    return ::futimens(file, times);
}

int FileCalls::setTimes(int folder, const char* name, const struct timespec (&times)[2]) {
    return ::utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW);
}

int FileCalls::makeFolder(int folder, const char* name, mode_t mode) {
    return ::mkdirat(folder, name, mode);
}

int FileCalls::makeLink(const char* target, int folder, const char* name) {
    return ::symlinkat(target, folder, name);
}

int FileCalls::readLink(int folder, const char* name, std::string& target) {
    target.resize(1024);
    while (true) {
        const ssize_t length = ::readlinkat(folder, name, target.data(), target.size());
        if (length < 0) return -1;
        const auto size = static_cast<std::size_t>(length);
        const bool whole = size < target.size();
        target.resize(whole ? size : target.size() * 2);
        if (whole) return 0;
    }
}

int FileCalls::remove(int folder, const char* name, int flags) {
    return ::unlinkat(folder, name, flags);
}

int FileCalls::replace(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameat(fromFolder, from, toFolder, to);
}

int FileCalls::addName(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::linkat(fromFolder, from, toFolder, to, 0);
}

int FileCalls::lock(int file, int operation) {
    return uninterrupted([&] { return ::flock(file, operation); });
}

FileCalls& systemFileCalls() {
    static FileCalls calls;
    return calls;
}

}  // namespace velto
