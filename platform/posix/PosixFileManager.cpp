#include "platform/posix/PosixFileManager.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/readable_file.h"
#include "platform/posix/same_state.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr mode_t folderMode = 0700;
constexpr std::int64_t statBlock = 512;  // st_blocks counts units of 512 bytes (stat(2))

[[noreturn]] void fail(const char* attempt, const std::string& path) {
    throw FileError(attempt, path, errno);
}

/// A path with a NUL byte would be cut short by every system call and mean another file.
void requireWholePath(const char* attempt, const std::string& path) {
    if (path.find('\0') != std::string::npos || path.empty()) {
        throw FileError(attempt, path.substr(0, path.find('\0')), EINVAL);
    }
}

double seconds(const timespec& time) { return momentOf(time.tv_sec, time.tv_nsec); }

/// Makes a folder whose own name has reached the disk before anything is put into it. False with
/// `errno` when it was not made.
bool makeOne(FileCalls& calls, const std::string& path) {
    if (calls.makeFolder(AT_FDCWD, path.c_str(), folderMode) != 0) return false;
    const std::string_view whole(path.data(), path.find_last_not_of('/') + 1);
    const std::string above(whole.substr(0, whole.find_last_of('/') + 1));
    const Descriptor folder(calls.open(AT_FDCWD, above.empty() ? "." : above.c_str(),
                                       passThrough | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder.isOpen() || syncNames(calls, folder.number()) != 0) fail("create folder", path);
    return true;
}

FileKind kindOf(mode_t mode) {
    if (S_ISREG(mode)) return FileKind::regular;
    if (S_ISDIR(mode)) return FileKind::folder;
    return S_ISLNK(mode) ? FileKind::symbolicLink : FileKind::other;
}

}  // namespace

FileAttributes attributesFrom(const struct stat& status) {
    return {.kind = kindOf(status.st_mode),
            .allocatedSize = static_cast<std::int64_t>(status.st_blocks) * statBlock,
            .logicalSize = static_cast<std::int64_t>(status.st_size),
            .modified = seconds(modifiedTime(status)),
            .accessed = seconds(accessedTime(status)),
            .identity = {static_cast<std::uint64_t>(status.st_dev),
                         static_cast<std::uint64_t>(status.st_ino)},
            .owner = static_cast<std::uint32_t>(status.st_uid)};
}

bool PosixFileManager::exists(const std::string& path) const {
    struct stat status;
    if (path.find('\0') != std::string::npos) return false;
    return calls_.stat(AT_FDCWD, path.c_str(), status) == 0;
}

std::optional<FileAttributes> PosixFileManager::attributes(const std::string& path) const {
    struct stat status;
    if (path.find('\0') != std::string::npos) return std::nullopt;
    if (calls_.stat(AT_FDCWD, path.c_str(), status) != 0) return std::nullopt;
    return attributesFrom(status);
}

std::vector<std::string> PosixFileManager::list(const std::string& folder) const {
    requireWholePath("list", folder);
    Descriptor opened(calls_.open(AT_FDCWD, folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!opened.isOpen()) fail("list", folder);
    std::vector<std::string> names;
    if (calls_.names(std::move(opened), names) != 0) fail("list", folder);
    return names;
}

std::string PosixFileManager::resolved(const std::string& path) const {
    requireWholePath("resolve", path);
    std::string real;
    if (calls_.resolve(path.c_str(), real) != 0) fail("resolve", path);
    return real;
}

std::string PosixFileManager::read(const std::string& path, const ReadLimit& limit) const {
    requireWholePath("read", path);
    const ReadableFile file = openReadable(calls_, path, limit);
    return readWhole(calls_, file, path, limit);
}

void PosixFileManager::createFolders(const std::string& path) {
    requireWholePath("create folder", path);
    if (makeOne(calls_, path)) return;
    if (errno == ENOENT) {
        const std::size_t slash = path.find_last_of('/');
        if (slash == std::string::npos || slash == 0) fail("create folder", path);
        createFolders(path.substr(0, slash));
        if (makeOne(calls_, path)) return;
    }
    // Something stands there: fine when it is a folder, or a link to one. Not every system says
    // EEXIST for it: a read-only volume and the root have their own answers.
    const int reason = errno;
    struct stat status;
    if (calls_.statTarget(path.c_str(), status) == 0 && S_ISDIR(status.st_mode)) return;
    throw FileError("create folder", path, reason == EEXIST ? ENOTDIR : reason);
}

}  // namespace velto
