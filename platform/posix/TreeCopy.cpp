#include "platform/posix/TreeCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/posix/mounts.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr std::size_t copyBuffer = 1024 * 1024;
constexpr std::size_t zeroBlock = 64 * 1024;      // left out where all of it is zero
constexpr off_t copiedAtOnce = 64 * 1024 * 1024;  // copied between two looks at the result
constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;
constexpr int sourceFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr int targetFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

[[noreturn]] void copyFailed(const std::string& path, int reason = errno) {
    throw FileError("copy", path, reason);
}

}  // namespace

TreeCopy::TreeCopy(FileCalls& calls) : calls_(calls) {}

void TreeCopy::copy(const Entry& source, const Entry& target) {
    copied_.clear();
    Descent from(calls_, source, "copy");
    Descent to(calls_, target, "copy");
    mount_ = from.mount("");
    copyEntry(from, source.name, to, target.name);
    while (from.depth() > 0) {
        if (const auto name = from.next()) {
            copyEntry(from, *name, to, *name);
        } else {
            leaveFolder(from, to);
        }
    }
}

void TreeCopy::requireUnchanged(const Entry& source, bool renamed) {
    const auto isSame = [&](const Met& then, const Met& now) {
        if (then.depth != now.depth || then.name != now.name) return false;
        // Renaming is a change of the entry itself on most file systems.
        const bool exact = !(renamed && then.depth == 0);
        return exact ? isSameState(then.status, now.status) : isUnmodified(then.status, now.status);
    };
    if (!std::ranges::equal(copied_, look(source), isSame)) copyFailed(source.path(), EBUSY);
}

TreeCopy::Tree TreeCopy::look(const Entry& root) {
    Tree tree;
    Descent walk(calls_, root, "copy");
    const auto visit = [&](const std::string& name) {
        const struct stat status = walk.examine(name);
        tree.push_back({walk.depth(), walk.depth() == 0 ? "" : name, status});
        if (!S_ISDIR(status.st_mode)) return;
        walk.enter(name, status);
        walk.list();
    };
    visit(root.name);
    while (walk.depth() > 0) {
        if (const auto name = walk.next()) {
            visit(*name);
        } else {
            walk.leave();
        }
    }
    return tree;
}

void TreeCopy::copyEntry(Descent& from, const std::string& name, Descent& to,
                         const std::string& newName) {
    const struct stat status = from.examine(name);
    copied_.push_back({from.depth(), from.depth() == 0 ? "" : name, status});
    // What is mounted here is no part of what is moved.
    if (from.mount(name) != mount_) failMounted("copy", from.path(name), EXDEV);
    if (isLocked(status)) copyFailed(from.path(name), EPERM);
    if (S_ISREG(status.st_mode)) return copyFile(from, name, to, newName, status);
    if (S_ISDIR(status.st_mode)) return enterFolder(from, name, to, newName, status);
    if (S_ISLNK(status.st_mode)) return copyLink(from, name, to, newName, status);
    copyFailed(from.path(name), EOPNOTSUPP);
}

void TreeCopy::copyFile(const Descent& from, const std::string& name, const Descent& to,
                        const std::string& newName, const struct stat& status) {
    const Descriptor source(calls_.open(from.folder(), name.c_str(), sourceFlags, 0));
    struct stat opened;
    if (!source.isOpen() || calls_.status(source.number(), opened) != 0)
        copyFailed(from.path(name));
    if (!isSameState(status, opened)) copyFailed(from.path(name), EBUSY);
    const Descriptor target(calls_.open(to.folder(), newName.c_str(), targetFlags, privateFile));
    if (!target.isOpen()) copyFailed(to.path(newName));
    copyContent(source.number(), target.number(), from.path(name), status.st_size);
    finish(source.number(), target.number(), to.path(newName), status, from.depth() == 0);
    requireSameContent(source.number(), target.number(), from.path(name), status);
}

void TreeCopy::enterFolder(Descent& from, const std::string& name, Descent& to,
                           const std::string& newName, const struct stat& status) {
    requireRemovable(from, name, status);
    from.enter(name, status);
    from.list();
    if (calls_.makeFolder(to.folder(), newName.c_str(), privateFolder) != 0) {
        copyFailed(to.path(newName));
    }
    to.enter(newName, to.examine(newName));
}

/// The way up must be open again before a folder gets permissions that may close it.
void TreeCopy::leaveFolder(Descent& from, Descent& to) {
    const Descent::Level source = from.leave();
    const Descent::Level target = to.leave();
    finish(source.folder.number(), target.folder.number(), to.path(target.name), source.status,
           from.depth() == 0);
}

void TreeCopy::copyLink(const Descent& from, const std::string& name, const Descent& to,
                        const std::string& newName, const struct stat& status) {
    std::string leadsTo;
    if (calls_.readLink(from.folder(), name.c_str(), leadsTo) != 0) copyFailed(from.path(name));
    const timespec times[2] = {accessedTime(status), modifiedTime(status)};
    if (calls_.makeLink(leadsTo.c_str(), to.folder(), newName.c_str()) != 0 ||
        calls_.setTimes(to.folder(), newName.c_str(), times) != 0) {
        copyFailed(to.path(newName));
    }
}

/// Holes stay holes where both sides know them.
void TreeCopy::copyContent(int from, int to, const std::string& path, off_t size) {
    if (!calls_.knowsHoles()) return copyWithoutHoles(from, to, path, size);
    for (off_t position = 0; position < size;) {
        off_t start = calls_.seek(from, position, SEEK_DATA);
        if (start < 0 && errno == ENXIO) break;  // nothing but a hole up to the end
        if (start < 0) start = position;         // holes are not known here
        off_t end = calls_.seek(from, start, SEEK_HOLE);
        if (end <= start) end = size;
        copyPiece(from, to, path, start, std::min(end, size));
        position = end;
    }
    if (calls_.resize(to, size) != 0) copyFailed(path);
}

void TreeCopy::copyPiece(int from, int to, const std::string& path, off_t start, off_t end) {
    while (start < end) {
        const auto wanted = static_cast<std::size_t>(std::min(end - start, copiedAtOnce));
        const ssize_t copied = calls_.copyRange(from, to, start, wanted);
        if (copied <= 0) break;
        start += copied;
    }
    // Through this process when the kernel does not do it; that also tells why it failed.
    while (start < end) {
        const std::size_t length = fill(buffer_, from, path, start, end);
        writeWhole(to, path, {buffer_.data(), length}, start);
        start += static_cast<off_t>(length);
    }
}

/// Where nothing that is said of holes can be believed, all is read, and what is nothing but zeros
/// is not written.
void TreeCopy::copyWithoutHoles(int from, int to, const std::string& path, off_t size) {
    for (off_t start = 0; start < size;) {
        const std::size_t length = fill(buffer_, from, path, start, size);
        for (std::size_t block = 0; block < length; block += zeroBlock) {
            const std::size_t end = std::min(block + zeroBlock, length);
            const char* bytes = buffer_.data() + block;
            const bool isZero = *bytes == 0 && std::memcmp(bytes, bytes + 1, end - block - 1) == 0;
            if (isZero) continue;
            writeWhole(to, path, {bytes, end - block}, start + static_cast<off_t>(block));
        }
        start += static_cast<off_t>(length);
    }
    if (calls_.resize(to, size) != 0) copyFailed(path);
}

/// Reads on from `start`, at most to `end` or as much as the buffer takes. Throws EBUSY when the
/// file has become shorter.
std::size_t TreeCopy::fill(std::vector<char>& buffer, int file, const std::string& path,
                           off_t start, off_t end) {
    const auto wanted = std::min(static_cast<std::size_t>(end - start), copyBuffer);
    if (buffer.size() < wanted) buffer.resize(wanted);
    std::size_t filled = 0;
    while (filled < wanted) {
        const ssize_t length = calls_.readAt(file, buffer.data() + filled, wanted - filled,
                                             start + static_cast<off_t>(filled));
        if (length < 0) copyFailed(path);
        if (length == 0) copyFailed(path, EBUSY);
        filled += static_cast<std::size_t>(length);
    }
    return filled;
}

void TreeCopy::writeWhole(int to, const std::string& path, std::string_view content, off_t start) {
    while (!content.empty()) {
        const ssize_t length = calls_.writeAt(to, content.data(), content.size(), start);
        if (length < 0) copyFailed(path);
        content.remove_prefix(static_cast<std::size_t>(length));
        start += length;
    }
}

/// The copy of a file is about to be all that is left of it. It has been synced; a hole that is
/// none, a block that was lost on the way or a kernel that copies something else shows here.
void TreeCopy::requireSameContent(int from, int to, const std::string& path,
                                  const struct stat& status) {
    struct stat copy;
    if (calls_.status(to, copy) != 0) copyFailed(path);
    calls_.dropCache(to);  // at worst it is compared with what memory holds
    bool isSame = copy.st_size == status.st_size;
    for (off_t start = 0; isSame && start < status.st_size;) {
        const std::size_t length = fill(buffer_, from, path, start, status.st_size);
        const off_t end = start + static_cast<off_t>(length);
        isSame = fill(copyBuffer_, to, path, start, end) == length &&
                 std::memcmp(buffer_.data(), copyBuffer_.data(), length) == 0;
        start = end;
    }
    if (!isSame) {
        struct stat now;
        const bool isUnchanged = calls_.status(from, now) == 0 && isSameState(status, now);
        if (!isUnchanged) copyFailed(path, EBUSY);
        throw FileError("copy", path, EIO, "the copy does not hold the same");
    }
    // Reading it is no use of it. What keeps the time from being put back keeps nobody from moving.
    const timespec times[2] = {accessedTime(status), modifiedTime(status)};
    if (calls_.status(to, copy) == 0 && !isSameTime(accessedTime(copy), times[0])) {
        calls_.setTimes(to, times);
    }
}

void TreeCopy::finish(int from, int to, const std::string& path, const struct stat& status,
                      bool isLast) {
    if (calls_.copyAttributes(from, to) != 0) copyFailed(path);
    mode_t mode = status.st_mode & 07777;
    if (calls_.changeOwner(to, status.st_uid, status.st_gid) != 0) {
        // Only an administrator may give files away; a group may still be one of this user's.
        // Rights of a former owner must not become rights of this one.
        calls_.changeOwner(to, static_cast<uid_t>(-1), status.st_gid);
        mode &= static_cast<mode_t>(~(S_ISUID | S_ISGID));
    }
    const timespec times[2] = {accessedTime(status), modifiedTime(status)};
    if (calls_.changeMode(to, mode) != 0 || calls_.setTimes(to, times) != 0) copyFailed(path);
    calls_.copyBirthTime(from, to);  // not every volume keeps one, and none is worth a failure
    if (calls_.copyAccess(from, to) != 0) copyFailed(path);
    // What the drive itself holds back need be written out only once, at the end.
    if ((isLast ? calls_.sync(to) : calls_.flush(to)) != 0) copyFailed(path);
}

/// A folder that could be copied but not emptied afterwards would end up in two places.
void TreeCopy::requireRemovable(const Descent& from, const std::string& name,
                                const struct stat& status) const {
    if (status.st_uid == ::geteuid()) return;  // at worst it is made writable first
    if (::faccessat(from.folder(), name.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        copyFailed(from.path(name));
    }
}

}  // namespace velto
