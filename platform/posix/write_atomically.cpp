#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/temporary_file.h"

namespace velto {
namespace {

constexpr mode_t newFileMode = 0600;
constexpr mode_t keptMode = 0755;

bool writeWhole(FileCalls& calls, int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t length = calls.write(file, content.data(), content.size());
        if (length < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

/// The file that is replaced keeps its permissions, but for others to write it; one of another user
/// has none to keep. A new file is for the user alone whatever the umask.
bool setMode(FileCalls& calls, int folder, const std::string& name, int file) {
    struct stat old;
    struct stat made;
    const bool replaces = calls.stat(folder, name.c_str(), old) == 0 && S_ISREG(old.st_mode) &&
                          old.st_uid == ::geteuid();
    const mode_t wanted = replaces ? old.st_mode & keptMode : newFileMode;
    if (calls.status(file, made) == 0 && (made.st_mode & 07777) == wanted) return true;
    // Not every file system has permissions to give.
    return calls.changeMode(file, wanted) == 0 || !replaces;
}

}  // namespace

void PosixFileManager::writeAtomically(const std::string& path, std::string_view content) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || path.find('\0') != std::string::npos) {
        throw FileError("write", path, EINVAL);
    }
    const std::string folderPath = slash == 0 ? "/" : path.substr(0, slash);
    const Descriptor folder(
        calls_.open(AT_FDCWD, folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder.isOpen()) throw FileError("write", path, errno);
    writeIn(folder.number(), path.substr(slash + 1), content, path);
}

void PosixFileManager::writeAtomically(const FolderHandle& folder, const std::string& name,
                                       std::string_view content) {
    const Entry entry(folder, name);
    const Descriptor readable(calls_.open(entry.folder(), ".", O_RDONLY | folderFlags, 0));
    if (!readable.isOpen()) throw FileError("write", entry.path(), errno);
    writeIn(readable.number(), name, content, entry.path());
}

/// `path` is for messages alone.
void PosixFileManager::writeIn(int folder, const std::string& name, std::string_view content,
                               const std::string& path) {
    const auto fail = [&](int reason) { throw FileError("write", path, reason); };

    const TemporaryFile temporary = makeTemporary(calls_, folder);
    if (!temporary.file.isOpen()) fail(errno);
    const int file = temporary.file.number();
    const bool written = writeWhole(calls_, file, content) && setMode(calls_, folder, name, file) &&
                         calls_.sync(file) == 0 &&
                         calls_.replace(folder, temporary.name.c_str(), folder, name.c_str()) == 0;
    if (!written) {
        const int reason = errno;
        calls_.remove(folder, temporary.name.c_str(), 0);  // the old file stands as it was
        fail(reason);
    }
    // The new content is in place; a failure here only leaves open when it reaches the disk.
    calls_.sync(folder);
}

}  // namespace velto
