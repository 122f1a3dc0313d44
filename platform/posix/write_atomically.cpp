#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <random>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"

namespace velto {
namespace {

constexpr mode_t fileMode = 0600;

/// A name that nobody can have taken beforehand; short, whatever the length of the file's own.
std::string temporaryName() {
    std::random_device source;
    return fmt::format(".velto-{:08x}{:08x}", source(), source());
}

bool writeWhole(FileCalls& calls, int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t length = calls.write(file, content.data(), content.size());
        if (length < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
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

    const std::string temporary = temporaryName();
    const Descriptor file(calls_.open(
        folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode));
    if (!file.isOpen()) fail(errno);

    // The file that is replaced keeps its permissions.
    struct stat old;
    const bool replaces = calls_.stat(folder, name.c_str(), old) == 0 && S_ISREG(old.st_mode);
    const bool written =
        writeWhole(calls_, file.number(), content) &&
        (!replaces || calls_.changeMode(file.number(), old.st_mode & 07777) == 0) &&
        calls_.sync(file.number()) == 0 &&
        calls_.replace(folder, temporary.c_str(), folder, name.c_str()) == 0;
    if (!written) {
        const int reason = errno;
        calls_.remove(folder, temporary.c_str(), 0);  // the old file stands as it was
        fail(reason);
    }
    // The new content is in place; a failure here only leaves open when it reaches the disk.
    calls_.sync(folder);
}

}  // namespace velto
