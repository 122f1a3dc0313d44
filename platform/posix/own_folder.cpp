#include "platform/own_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include <fmt/format.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/ownership.h"
#include "platform/posix/same_state.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

using Reason = UnsafeFolder::Reason;

constexpr mode_t ownMode = 0700;
constexpr mode_t othersMode = 0077;
constexpr mode_t othersWriting = 0022;

const char* textOf(Reason reason) {
    switch (reason) {
        case Reason::link:
            return "it is a link";
        case Reason::otherOwner:
            return "it belongs to another user";
        case Reason::openToOthers:
            return "other users may write there";
    }
    return "";
}

/// What stands at a name, as far as it can be a folder of the program's own.
struct stat examined(FileCalls& calls, int parent, const std::string& name,
                     const std::string& path) {
    struct stat status;
    if (calls.stat(parent, name.c_str(), status) != 0) throw FileError("examine", path, errno);
    if (S_ISLNK(status.st_mode)) throw UnsafeFolder(Reason::link, path);
    if (!S_ISDIR(status.st_mode)) throw FileError("open folder", path, ENOTDIR);
    struct stat above;
    if (calls.status(parent, above) != 0) throw FileError("examine", path, errno);
    if (!isOwn(status, above)) throw UnsafeFolder(Reason::otherOwner, path);
    return status;
}

}  // namespace

UnsafeFolder::UnsafeFolder(Reason reason, std::string path)
    : std::runtime_error(fmt::format("{} is not safe: {}", path, textOf(reason))),
      reason_(reason),
      path_(std::move(path)) {}

bool makeOwnFolder(const std::string& path, FileCalls& calls) {
    const std::string above = parentFolder(path);
    const std::string name(lastPathComponent(path));
    PosixFileManager(calls).createFolders(above);
    const Descriptor parent(
        calls.open(AT_FDCWD, above.c_str(), passThrough | O_DIRECTORY | O_CLOEXEC, 0));
    if (!parent.isOpen()) throw FileError("open folder", above, errno);

    const bool isMade = calls.makeFolder(parent.number(), name.c_str(), ownMode) == 0;
    const int reason = isMade ? 0 : errno;
    // What is put into it would be lost with its name.
    if (isMade && syncNames(calls, parent.number()) != 0) {
        throw FileError("create folder", path, errno);
    }
    struct stat status;
    if (!isMade && calls.stat(parent.number(), name.c_str(), status) != 0) {
        throw FileError("create folder", path, reason);
    }
    status = examined(calls, parent.number(), name, path);
    const mode_t mode = status.st_mode & 07777;
    const mode_t wanted = (mode & ~othersMode) | (isMade ? ownMode : 0);
    if (mode == wanted) return false;
    // Looked at again instead of believed: not every file system keeps what it was told.
    calls.changeMode(parent.number(), name.c_str(), wanted);
    status = examined(calls, parent.number(), name, path);
    if ((status.st_mode & othersWriting) != 0) throw UnsafeFolder(Reason::openToOthers, path);
    return !isMade && (status.st_mode & othersMode) == 0;
}

std::vector<std::string> closeToOthers(const std::string& path, FileCalls& calls) {
    std::vector<std::string> closed;
    const Descriptor folder(calls.open(AT_FDCWD, path.c_str(), O_RDONLY | folderFlags, 0));
    if (!folder.isOpen()) return closed;
    try {
        for (const std::string& name : namesIn(calls, folder.number(), path, "list")) {
            struct stat status;
            if (calls.stat(folder.number(), name.c_str(), status) != 0) continue;
            if (status.st_uid != ::geteuid()) continue;  // not ours to change
            if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) continue;
            if ((status.st_mode & othersWriting) == 0) continue;
            const mode_t wanted = status.st_mode & 07777 & ~othersMode;
            if (calls.changeMode(folder.number(), name.c_str(), wanted) == 0) {
                closed.push_back(fmt::format("{}/{}", path, name));
            }
        }
    } catch (const FileError&) {
        // See the declaration: what cannot be listed stays as it is.
    }
    return closed;
}

bool makeWay(const std::string& path, FileCalls& calls) {
    struct stat status;
    if (calls.stat(AT_FDCWD, path.c_str(), status) != 0) return false;
    if (S_ISREG(status.st_mode) && isOwn(calls, status, path)) return false;
    const std::string aside = fmt::format("{}.aside-{}", path, newUUID());
    if (calls.rename(AT_FDCWD, path.c_str(), AT_FDCWD, aside.c_str()) != 0) {
        throw FileError("move", path, errno);
    }
    return true;
}

}  // namespace velto
