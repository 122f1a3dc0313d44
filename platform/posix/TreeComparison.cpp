#include "platform/posix/TreeComparison.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr std::size_t compareBuffer = 1024 * 1024;
constexpr int compareFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr mode_t permissions = 07777;

/// Answers that are no fault of the disk: what was to be compared is not as it was, or is closed.
bool meansUnlike(const FileError& error) {
    constexpr int reasons[] = {ENOENT, ENOTDIR, ELOOP, EBUSY, EACCES, EPERM, ENAMETOOLONG};
    return std::ranges::find(reasons, error.code()) != std::end(reasons);
}

bool isAlikeTime(const struct stat& left, const struct stat& right) {
    const auto apart = modifiedTime(left).tv_sec - modifiedTime(right).tv_sec;
    return apart > -2 && apart < 2;
}

/// The permissions that a copy may have: what a file grants in its owner's name goes with the owner
/// (TreeCopy).
bool isAlikeMode(const struct stat& left, const struct stat& right) {
    const mode_t differing = (left.st_mode ^ right.st_mode) & permissions;
    const bool isSameOwner = left.st_uid == right.st_uid && left.st_gid == right.st_gid;
    return (differing & ~(isSameOwner ? 0U : static_cast<mode_t>(S_ISUID | S_ISGID))) == 0;
}

[[noreturn]] void fail(const std::string& path, int reason = errno) {
    throw FileError("compare", path, reason);
}

}  // namespace

TreeComparison::TreeComparison(FileCalls& calls) : calls_(calls) {}

bool TreeComparison::areAlike(const Entry& left, const Entry& right) {
    return compare(left, right, Likeness::same);
}

bool TreeComparison::isHeldBy(const Entry& rest, const Entry& whole) {
    return compare(rest, whole, Likeness::emptied);
}

bool TreeComparison::isBegunCopyOf(const Entry& copy, const Entry& source) {
    return compare(copy, source, Likeness::begun);
}

bool TreeComparison::compare(const Entry& rest, const Entry& whole, Likeness likeness) {
    likeness_ = likeness;
    try {
        return compareTrees(rest, whole);
    } catch (const FileError& error) {
        if (meansUnlike(error)) return false;
        throw;
    }
}

bool TreeComparison::compareTrees(const Entry& rest, const Entry& whole) {
    Descent walk(calls_, rest, "compare");
    Descent beside(calls_, whole, "compare");
    if (!compareEntry(walk, rest.name, beside, whole.name)) return false;
    while (walk.depth() > 0) {
        if (const auto name = walk.next()) {
            if (!compareEntry(walk, *name, beside, *name)) return false;
        } else {
            walk.leave();
            beside.leave();
        }
    }
    return true;
}

bool TreeComparison::compareEntry(Descent& rest, const std::string& name, Descent& whole,
                                  const std::string& wholeName) {
    const struct stat status = rest.examine(name);
    const struct stat wholeStatus = whole.examine(wholeName);
    if ((status.st_mode & S_IFMT) != (wholeStatus.st_mode & S_IFMT)) return false;
    if (!isKeptAlike(status, wholeStatus)) return false;
    if (S_ISREG(status.st_mode)) {
        return compareFiles(rest, name, status, whole, wholeName, wholeStatus);
    }
    if (S_ISDIR(status.st_mode)) {
        return enterFolders(rest, name, status, whole, wholeName, wholeStatus);
    }
    return S_ISLNK(status.st_mode) && compareLinks(rest, name, whole, wholeName);
}

/// What the attributes of an entry tell.
bool TreeComparison::isKeptAlike(const struct stat& rest, const struct stat& whole) const {
    const bool isFolder = S_ISDIR(rest.st_mode);
    // Its attributes come last.
    if (likeness_ == Likeness::begun) return isFolder || rest.st_size <= whole.st_size;
    if (isFolder && likeness_ == Likeness::emptied) {
        struct stat closed = rest;
        closed.st_mode = (closed.st_mode & ~static_cast<mode_t>(S_IRWXU)) |
                         (whole.st_mode & static_cast<mode_t>(S_IRWXU));
        return isAlikeMode(closed, whole);
    }
    if (!isFolder && rest.st_size != whole.st_size) return false;
    // A link's own permissions mean nothing, and systems differ in them.
    return isAlikeTime(rest, whole) && (S_ISLNK(rest.st_mode) || isAlikeMode(rest, whole));
}

bool TreeComparison::compareFiles(const Descent& rest, const std::string& name,
                                  const struct stat& status, const Descent& whole,
                                  const std::string& wholeName, const struct stat& wholeStatus) {
    const Descriptor file(calls_.open(rest.folder(), name.c_str(), compareFlags, 0));
    const Descriptor other(calls_.open(whole.folder(), wholeName.c_str(), compareFlags, 0));
    struct stat opened;
    struct stat otherOpened;
    if (!file.isOpen() || calls_.status(file.number(), opened) != 0) fail(rest.path(name));
    if (!other.isOpen() || calls_.status(other.number(), otherOpened) != 0) {
        fail(whole.path(wholeName));
    }
    if (!isSameState(status, opened) || !isSameState(wholeStatus, otherOpened)) return false;
    return hasAttributesOf(file.number(), other.number(), rest.path(name)) &&
           compareContent(file.number(), other.number(), status.st_size, rest.path(name));
}

bool TreeComparison::enterFolders(Descent& rest, const std::string& name, const struct stat& status,
                                  Descent& whole, const std::string& wholeName,
                                  const struct stat& wholeStatus) {
    rest.enter(name, status);
    whole.enter(wholeName, wholeStatus);
    const std::string path = rest.path("");
    if (likeness_ == Likeness::same) {
        // Each name of the one is looked for in the other; as many of them are the same ones.
        const auto count = namesIn(calls_, rest.folder(), path, "compare").size();
        if (count != namesIn(calls_, whole.folder(), path, "compare").size()) return false;
    }
    if (likeness_ != Likeness::begun) {
        const Descriptor folder(calls_.open(rest.folder(), ".", compareFlags | O_DIRECTORY, 0));
        const Descriptor other(calls_.open(whole.folder(), ".", compareFlags | O_DIRECTORY, 0));
        if (!folder.isOpen() || !other.isOpen()) fail(path);
        if (!hasAttributesOf(folder.number(), other.number(), path)) return false;
    }
    rest.list();
    return true;
}

bool TreeComparison::compareLinks(const Descent& rest, const std::string& name,
                                  const Descent& whole, const std::string& wholeName) {
    std::string target;
    std::string wholeTarget;
    if (calls_.readLink(rest.folder(), name.c_str(), target) != 0) fail(rest.path(name));
    if (calls_.readLink(whole.folder(), wholeName.c_str(), wholeTarget) != 0) {
        fail(whole.path(wholeName));
    }
    return target == wholeTarget;
}

/// All is read: what is said of holes is no proof of what is there.
bool TreeComparison::compareContent(int rest, int whole, off_t size, const std::string& path) {
    const auto most = static_cast<std::size_t>(std::min(size, static_cast<off_t>(compareBuffer)));
    if (buffer_.size() < most) buffer_.resize(most);
    if (wholeBuffer_.size() < most) wholeBuffer_.resize(most);
    for (off_t start = 0; start < size;) {
        const auto length = std::min(static_cast<std::size_t>(size - start), compareBuffer);
        readWhole(rest, buffer_, length, start, path);
        readWhole(whole, wholeBuffer_, length, start, path);
        if (!areBytesAlike(length)) return false;
        start += static_cast<off_t>(length);
    }
    return true;
}

bool TreeComparison::areBytesAlike(std::size_t length) const {
    if (std::memcmp(buffer_.data(), wholeBuffer_.data(), length) == 0) return true;
    if (likeness_ != Likeness::begun) return false;
    for (std::size_t index = 0; index < length; ++index) {
        if (buffer_[index] != 0 && buffer_[index] != wholeBuffer_[index]) return false;
    }
    return true;
}

/// Throws EBUSY when the file has become shorter.
void TreeComparison::readWhole(int file, std::vector<char>& buffer, std::size_t length,
                               off_t offset, const std::string& path) {
    for (std::size_t filled = 0; filled < length;) {
        const ssize_t part = calls_.readAt(file, buffer.data() + filled, length - filled,
                                           offset + static_cast<off_t>(filled));
        if (part < 0) fail(path);
        if (part == 0) fail(path, EBUSY);
        filled += static_cast<std::size_t>(part);
    }
}

bool TreeComparison::hasAttributesOf(int rest, int whole, const std::string& path) {
    if (likeness_ == Likeness::begun) return true;
    const int answer = calls_.holdsAttributes(rest, whole);
    if (answer < 0) fail(path);
    return answer > 0;
}

}  // namespace velto
