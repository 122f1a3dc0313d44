#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr mode_t newFolderMode = 0700;

FileIdentity identityOf(const struct stat& status) {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

/// Why a component could not be opened as a folder: a link answers ENOTDIR on some systems.
int reasonOf(FileCalls& calls, int parent, const char* name) {
    const int reason = errno;
    struct stat status;
    if (reason != ENOTDIR || calls.stat(parent, name, status) != 0) return reason;
    return S_ISLNK(status.st_mode) ? ELOOP : ENOTDIR;
}

Descriptor openComponent(FileCalls& calls, int parent, const char* name, FolderPath how) {
    const int flags = how == FolderPath::throughLinks ? folderFlags & ~O_NOFOLLOW : folderFlags;
    Descriptor opened(calls.open(parent, name, passThrough | flags, 0));
    if (opened.isOpen() || how != FolderPath::createdWithoutLinks || errno != ENOENT) return opened;
    if (calls.makeFolder(parent, name, newFolderMode) != 0) {
        if (errno != EEXIST) return opened;
    } else if (syncNames(calls, parent) != 0) {
        return opened;  // what is put into a folder is lost with the folder's own name
    }
    return Descriptor(calls.open(parent, name, passThrough | flags, 0));
}

}  // namespace

std::unique_ptr<FolderHandle> PosixFileManager::openFolder(const std::string& path,
                                                           FolderPath how) {
    std::string_view rest = path;
    const auto fail = [&](int reason) {
        throw FileError("open folder", path.substr(0, path.size() - rest.size()), reason);
    };
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) {
        throw FileError("open folder", path, EINVAL);
    }
    Descriptor folder(calls_.open(AT_FDCWD, "/", passThrough | folderFlags, 0));
    if (!folder.isOpen()) fail(errno);
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string name(rest.substr(0, rest.find('/')));
        rest.remove_prefix(name.size());
        if (name.empty()) continue;
        Descriptor next = openComponent(calls_, folder.number(), name.c_str(), how);
        if (!next.isOpen()) fail(reasonOf(calls_, folder.number(), name.c_str()));
        folder = std::move(next);
    }
    return std::make_unique<PosixFolder>(calls_, std::move(folder), path == "/" ? "" : path);
}

std::unique_ptr<FolderHandle> PosixFileManager::openFolder(const FolderHandle& parent,
                                                           const std::string& name) {
    const Entry entry(parent, name);
    Descriptor folder(calls_.open(entry.folder(), entry.c_str(), passThrough | folderFlags, 0));
    if (!folder.isOpen()) {
        const int reason = reasonOf(calls_, entry.folder(), entry.c_str());
        throw FileError("open folder", entry.path(), reason);
    }
    return std::make_unique<PosixFolder>(calls_, std::move(folder), entry.path());
}

bool PosixFileManager::isOwnFolder(const FolderHandle& folder, const FolderHandle& other) {
    struct stat status;
    struct stat likewise;
    if (calls_.status(number(folder), status) != 0 || calls_.status(number(other), likewise) != 0) {
        throw FileError("examine", posix(folder).path, errno);
    }
    return status.st_uid == ::geteuid() || status.st_uid == likewise.st_uid;
}

std::string PosixFileManager::volumeOf(const FolderHandle& folder) {
    std::string identity;
    // The place that a network volume comes from may have any bytes.
    return calls_.volume(number(folder), identity) == 0 ? validUtf8(identity) : std::string();
}

bool PosixFileManager::areOnOneMount(const FolderHandle& one, const FolderHandle& other) {
    std::uint64_t mount = 0;
    std::uint64_t otherMount = 0;
    return calls_.mount(number(one), "", mount) == 0 &&
           calls_.mount(number(other), "", otherMount) == 0 && mount == otherMount;
}

std::size_t PosixFileManager::longestName(const FolderHandle& folder) {
    constexpr std::size_t usual = 255;  // what most file systems take
    const long longest = calls_.longestName(number(folder));
    return longest > 0 ? static_cast<std::size_t>(longest) : usual;
}

bool PosixFileManager::isAtOrBelow(const FolderHandle& folder, const FolderHandle& ancestor) {
    const auto fail = [&] { throw FileError("examine", posix(folder).path, errno); };
    struct stat wanted;
    struct stat here;
    if (calls_.status(number(ancestor), wanted) != 0) fail();
    if (calls_.status(number(folder), here) != 0) fail();
    Descriptor above;
    for (int current = number(folder);; current = above.number()) {
        if (identityOf(here) == identityOf(wanted)) return true;
        const FileIdentity below = identityOf(here);
        Descriptor next(calls_.open(current, "..", passThrough | folderFlags, 0));
        // Above a folder that may not be passed through lies none of ours.
        if (!next.isOpen() && errno == EACCES) return false;
        if (!next.isOpen() || calls_.status(next.number(), here) != 0) fail();
        if (identityOf(here) == below) return false;  // the top is its own parent
        above = std::move(next);
    }
}

std::optional<FileAttributes> PosixFileManager::attributes(const FolderHandle& folder,
                                                           const std::string& name) {
    struct stat status;
    if (!isThere(calls_, Entry(folder, name), status, "examine")) return std::nullopt;
    return attributesFrom(status);
}

std::vector<std::string> PosixFileManager::list(const FolderHandle& folder) {
    return namesIn(calls_, number(folder), posix(folder).path, "list");
}

void PosixFileManager::makeFolder(const FolderHandle& parent, const std::string& name) {
    const Entry entry(parent, name);
    if (calls_.makeFolder(entry.folder(), entry.c_str(), newFolderMode) != 0 ||
        syncNames(calls_, entry.folder()) != 0) {
        throw FileError("create folder", entry.path(), errno);
    }
}

bool PosixFileManager::removeEmptyFolder(const FolderHandle& parent, const std::string& name) {
    const Entry entry(parent, name);
    struct stat status;
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (calls_.remove(entry.folder(), entry.c_str(), AT_REMOVEDIR) == 0) return true;
        // EEXIST is another name of ENOTEMPTY (unlink(2) in POSIX).
        if (errno == ENOTEMPTY || errno == EEXIST) return false;
        if (errno != ENOENT) throw FileError("remove", entry.path(), errno);
        if (!isThere(calls_, entry, status, "remove")) return false;
    }
    throw FileError("remove", entry.path(), ENOENT);
}

void PosixFileManager::sync(const FolderHandle& folder) {
    if (syncNames(calls_, number(folder)) != 0) {
        throw FileError("sync", posix(folder).path, errno);
    }
}

Entry::Entry(const FolderHandle& folder, const std::string& entryName)
    : parent(posix(folder)), name(entryName) {
    if (name.empty() || name == "." || name == ".." ||
        name.find_first_of(std::string_view("/\0", 2)) != std::string::npos) {
        throw FileError("reach", path(), EINVAL);
    }
}

bool isThere(FileCalls& calls, int folder, const char* name, struct stat& status) {
    // Asked twice before it counts as gone: much is decided by that, and on a network volume a name
    // can be missing for a moment.
    for (int look = 0; look < 2; ++look) {
        if (calls.stat(folder, name, status) == 0) return true;
        // A name that is too long for the volume names nothing on it.
        if (errno != ENOENT && errno != ENAMETOOLONG) return false;
    }
    errno = ENOENT;
    return false;
}

bool isThere(FileCalls& calls, const Entry& entry, struct stat& status, const char* attempt) {
    if (isThere(calls, entry.folder(), entry.c_str(), status)) return true;
    if (errno == ENOENT) return false;
    throw FileError(attempt, entry.path(), errno);
}

int syncNames(FileCalls& calls, int folder) {
    const Descriptor readable(calls.open(folder, ".", O_RDONLY | folderFlags, 0));
    if (!readable.isOpen()) return errno == EACCES ? 0 : -1;
    return calls.sync(readable.number());
}

std::vector<std::string> namesIn(FileCalls& calls, int folder, const std::string& path,
                                 const char* attempt) {
    Descriptor readable(calls.open(folder, ".", O_RDONLY | folderFlags, 0));
    if (!readable.isOpen()) throw FileError(attempt, path, errno);
    std::vector<std::string> names;
    if (calls.names(std::move(readable), names) != 0) throw FileError(attempt, path, errno);
    return names;
}

}  // namespace velto
