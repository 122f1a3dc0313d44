#include "platform/posix/TreeCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr std::size_t bufferSize = 1024 * 1024;
constexpr off_t pieceSize = 64 * 1024 * 1024;  // copied between two looks at the result
constexpr std::ptrdiff_t deepest = 400;        // levels; each holds two open folders and some stack
constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;
constexpr int readFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr int createFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

bool isAlike(const struct stat& left, const struct stat& right) {
    if ((left.st_mode & S_IFMT) != (right.st_mode & S_IFMT)) return false;
    if (modifiedTime(left).tv_sec != modifiedTime(right).tv_sec) return false;
    return S_ISDIR(left.st_mode) || left.st_size == right.st_size;
}

[[noreturn]] void fail(const std::string& path, int reason = errno) {
    throw FileError("copy", path, reason);
}

}  // namespace

TreeCopy::TreeCopy(FileCalls& calls) : calls_(calls), buffer_(bufferSize) {}

void TreeCopy::copy(const Entry& source, const Entry& target) {
    copied_.clear();
    copyEntry({source.folder(), source.name, source.path()},
              {target.folder(), target.name, target.path()}, "");
}

void TreeCopy::requireUnchanged(const Entry& source, bool renamed) {
    Seen now;
    look({source.folder(), source.name, source.path()}, "", now);
    const auto isSame = [&](const Seen::value_type& then, const Seen::value_type& found) {
        if (then.first != found.first) return false;
        // Renaming is a change of the entry itself on most file systems.
        const bool exact = !(renamed && then.first.empty());
        return exact ? isSameState(then.second, found.second)
                     : isUnmodified(then.second, found.second);
    };
    if (!std::ranges::equal(copied_, now, isSame)) fail(source.path(), EBUSY);
}

bool TreeCopy::areAlike(const Entry& left, const Entry& right) {
    Seen first;
    Seen second;
    look({left.folder(), left.name, left.path()}, "", first);
    look({right.folder(), right.name, right.path()}, "", second);
    return std::ranges::equal(first, second, [](const auto& one, const auto& other) {
        return one.first == other.first && isAlike(one.second, other.second);
    });
}

void TreeCopy::look(const Place& place, const std::string& below, Seen& seen) {
    const struct stat status = examine(place);
    seen.emplace(below, status);
    if (!S_ISDIR(status.st_mode)) return;
    const Descriptor folder(
        calls_.open(place.folder, place.name.c_str(), O_RDONLY | folderFlags, 0));
    if (!folder.isOpen()) fail(place.path);
    for (const std::string& name : namesIn(calls_, folder.number(), place.path, "copy")) {
        const Place child{folder.number(), name, place.path + "/" + name};
        look(child, below + "/" + name, seen);
    }
}

struct stat TreeCopy::examine(const Place& place) {
    struct stat status;
    if (calls_.stat(place.folder, place.name.c_str(), status) != 0) fail(place.path);
    return status;
}

void TreeCopy::copyEntry(const Place& source, const Place& target, const std::string& below) {
    const struct stat status = examine(source);
    copied_.emplace(below, status);
    // Another volume is mounted here: its content is no part of what is moved.
    if (status.st_dev != copied_.begin()->second.st_dev) fail(source.path, EXDEV);
    if (S_ISREG(status.st_mode)) return copyFile(source, target, status);
    if (S_ISDIR(status.st_mode)) return copyFolder(source, target, status, below);
    if (S_ISLNK(status.st_mode)) return copyLink(source, target, status);
    fail(source.path, EOPNOTSUPP);
}

void TreeCopy::copyFile(const Place& source, const Place& target, const struct stat& status) {
    const Descriptor from(calls_.open(source.folder, source.name.c_str(), readFlags, 0));
    if (!from.isOpen()) fail(source.path);
    struct stat opened;
    if (calls_.status(from.number(), opened) != 0) fail(source.path);
    if (!isSameState(status, opened)) fail(source.path, EBUSY);
    const Descriptor to(calls_.open(target.folder, target.name.c_str(), createFlags, privateFile));
    if (!to.isOpen()) fail(target.path);
    copyContent(from.number(), to.number(), source, status.st_size);
    finish(from.number(), to.number(), target, status);
}

void TreeCopy::copyFolder(const Place& source, const Place& target, const struct stat& status,
                          const std::string& below) {
    if (std::ranges::count(below, '/') > deepest) fail(source.path, ENAMETOOLONG);
    requireRemovable(source, status);
    const Descriptor from(
        calls_.open(source.folder, source.name.c_str(), O_RDONLY | folderFlags, 0));
    if (!from.isOpen()) fail(source.path);
    if (calls_.makeFolder(target.folder, target.name.c_str(), privateFolder) != 0) {
        fail(target.path);
    }
    const Descriptor to(calls_.open(target.folder, target.name.c_str(), O_RDONLY | folderFlags, 0));
    if (!to.isOpen()) fail(target.path);
    for (const std::string& name : namesIn(calls_, from.number(), source.path, "copy")) {
        copyEntry({from.number(), name, source.path + "/" + name},
                  {to.number(), name, target.path + "/" + name}, below + "/" + name);
    }
    finish(from.number(), to.number(), target, status);
}

void TreeCopy::copyLink(const Place& source, const Place& target, const struct stat& status) {
    std::string leadsTo;
    if (calls_.readLink(source.folder, source.name.c_str(), leadsTo) != 0) fail(source.path);
    if (calls_.makeLink(leadsTo.c_str(), target.folder, target.name.c_str()) != 0) {
        fail(target.path);
    }
    const timespec times[2] = {accessedTime(status), modifiedTime(status)};
    if (calls_.setTimes(target.folder, target.name.c_str(), times) != 0) fail(target.path);
}

/// Holes stay holes where both sides know them.
void TreeCopy::copyContent(int from, int to, const Place& source, off_t size) {
    for (off_t position = 0; position < size;) {
        off_t start = calls_.seek(from, position, SEEK_DATA);
        if (start < 0 && errno == ENXIO) break;  // nothing but a hole up to the end
        if (start < 0) start = position;         // holes are not known here
        off_t end = calls_.seek(from, start, SEEK_HOLE);
        if (end <= start) end = size;
        copyPiece(from, to, source, start, std::min(end, size));
        position = end;
    }
    if (calls_.resize(to, size) != 0) fail(source.path);
}

void TreeCopy::copyPiece(int from, int to, const Place& source, off_t start, off_t end) {
    while (start < end) {
        const auto wanted = static_cast<std::size_t>(std::min(end - start, pieceSize));
        const ssize_t copied = calls_.copyRange(from, to, start, wanted);
        if (copied <= 0) break;
        start += copied;
    }
    // Through this process when the kernel does not do it; that also tells why it failed.
    while (start < end) {
        const auto wanted = std::min(static_cast<std::size_t>(end - start), buffer_.size());
        const ssize_t length = calls_.readAt(from, buffer_.data(), wanted, start);
        if (length < 0) fail(source.path);
        if (length == 0) fail(source.path, EBUSY);  // it has become shorter
        for (ssize_t written = 0; written < length;) {
            const ssize_t part = calls_.writeAt(to, buffer_.data() + written,
                                                static_cast<std::size_t>(length - written), start);
            if (part < 0) fail(source.path);
            written += part;
            start += part;
        }
    }
}

void TreeCopy::finish(int from, int to, const Place& target, const struct stat& status) {
    if (calls_.copyAttributes(from, to) != 0) fail(target.path);
    mode_t mode = status.st_mode & 07777;
    if (calls_.changeOwner(to, status.st_uid, status.st_gid) != 0) {
        // Only an administrator may give files away. Rights of a former owner must not become
        // rights of this one.
        mode &= static_cast<mode_t>(~(S_ISUID | S_ISGID));
    }
    const timespec times[2] = {accessedTime(status), modifiedTime(status)};
    if (calls_.changeMode(to, mode) != 0 || calls_.setTimes(to, times) != 0 ||
        calls_.sync(to) != 0) {
        fail(target.path);
    }
}

/// A folder that could be copied but not emptied afterwards would end up in two places.
void TreeCopy::requireRemovable(const Place& place, const struct stat& status) const {
    if (status.st_uid == ::geteuid()) return;  // at worst it is made writable first
    if (::faccessat(place.folder, place.name.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        fail(place.path);
    }
}

}  // namespace velto
