#include "platform/posix/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <random>
#include <string_view>

#include <fmt/format.h>

#include "platform/FileManager.h"
#include "platform/own_folder.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr mode_t fileMode = 0600;
constexpr std::string_view prefix = ".velto-";
constexpr std::size_t digits = 16;

/// A name that nobody can have taken beforehand; short, whatever the length of the file's own.
std::string temporaryName() {
    std::random_device source;
    return fmt::format("{}{:08x}{:08x}", prefix, source(), source());
}

/// True when a sweep took it between its making and its locking.
bool isSwept(FileCalls& calls, int folder, const TemporaryFile& made) {
    if (calls.lock(made.file.number(), LOCK_EX | LOCK_NB) == 0) {
        struct stat status;
        return calls.stat(folder, made.name.c_str(), status) != 0 && errno == ENOENT;
    }
    return errno == EWOULDBLOCK;  // all else: no locks here, and then nobody sweeps
}

bool removeIfStale(FileCalls& calls, int folder, const std::string& name) {
    struct stat status;
    if (calls.stat(folder, name.c_str(), status) != 0) return false;
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) return false;
    const Descriptor file(
        calls.open(folder, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0));
    if (!file.isOpen() || calls.lock(file.number(), LOCK_EX | LOCK_NB) != 0) return false;
    // The save may have ended in the meantime: then the file bears another name already.
    struct stat now;
    if (calls.stat(folder, name.c_str(), now) != 0 || !isSameFile(status, now)) return false;
    return calls.remove(folder, name.c_str(), 0) == 0;
}

}  // namespace

TemporaryFile makeTemporary(FileCalls& calls, int folder) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    constexpr int mostAttempts = 10;  // a sweep looks at each name once
    for (int attempt = 1;; ++attempt) {
        TemporaryFile made{.name = temporaryName(), .file = {}};
        made.file = Descriptor(calls.open(folder, made.name.c_str(), flags, fileMode));
        if (!made.file.isOpen() || attempt == mostAttempts) return made;
        if (!isSwept(calls, folder, made)) return made;
    }
}

bool isNameOfTemporary(std::string_view name) {
    if (!name.starts_with(prefix) || name.size() != prefix.size() + digits) return false;
    return std::ranges::all_of(name.substr(prefix.size()), [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
    });
}

int removeStaleTemporaries(const std::string& path, FileCalls& calls) {
    const Descriptor folder(calls.open(AT_FDCWD, path.c_str(), O_RDONLY | folderFlags, 0));
    if (!folder.isOpen()) return 0;
    int removed = 0;
    try {
        for (const std::string& name : namesIn(calls, folder.number(), path, "list")) {
            if (isNameOfTemporary(name) && removeIfStale(calls, folder.number(), name)) ++removed;
        }
    } catch (const FileError&) {
        // See the declaration.
    }
    return removed;
}

}  // namespace velto
