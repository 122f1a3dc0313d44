#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"
#include "platform/posix/mounts.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// A folder on the way down.
struct Level {
    std::string name;
    Descriptor folder;
    dev_t device;
    ino_t inode;
    std::vector<std::string> names;  // still to be removed
    int refills = 0;                 // how often something was in it again when it went
};

constexpr int listFlags = O_RDONLY | folderFlags;
constexpr int attempts = 8;  // what is being removed may change meanwhile; not for ever
constexpr std::size_t levelsKeptOpen = 64;  // of a deep tree only the lowest folders stay open

/// Removes a tree by handles all the way down: a folder that is swapped for a link meanwhile is
/// removed as the link that it has become, and nothing behind it is touched. Works in a loop, and
/// with few descriptors, so that no depth is too much. A closed folder is opened again through
/// "..", and used only if it is the same one.
class Removal {
public:
    /// `path` is for errors alone. With `makeWritable`, folders that refuse their owner are opened
    /// up before they are emptied.
    Removal(FileCalls& calls, Descriptor parent, std::string path, bool makeWritable)
        : calls_(calls), path_(std::move(path)), makeWritable_(makeWritable) {
        mount_ = mountOf(calls_, parent.number(), "", "remove", path_);
        levels_.push_back(
            {.name = "", .folder = std::move(parent), .device = 0, .inode = 0, .names = {}});
    }

    void run(const std::string& name) {
        // All of it or nothing: what is mounted inside would stop the removal half-way.
        const int parent = levels_.front().folder.number();
        struct stat status;
        const bool isFolder =
            isThere(calls_, parent, name.c_str(), status) && S_ISDIR(status.st_mode);
        if (!isFolder || calls_.mayHoldMount(parent, name.c_str())) {
            requireNoMounts(calls_, parent, name, parentFolder(path_));
        }
        removeEntry(name);
        while (levels_.size() > 1) {
            std::vector<std::string>& names = levels_.back().names;
            if (names.empty()) {
                leave();
                continue;
            }
            const std::string next = std::move(names.back());
            names.pop_back();
            removeEntry(next);
        }
    }

private:
    /// Removes anything but a folder; enters a folder.
    void removeEntry(const std::string& name) {
        const int folder = levels_.back().folder.number();
        for (int attempt = 0; attempt < attempts; ++attempt) {
            struct stat status;
            if (!isThere(calls_, folder, name.c_str(), status)) {
                if (errno == ENOENT) return;  // somebody else was faster
                fail(name);
            }
            if (S_ISDIR(status.st_mode)) {
                if (enter(name)) return;
            } else {
                if (calls_.remove(folder, name.c_str(), 0) == 0) return;
                // What POSIX and Linux say of a file that has become a folder; the first also of
                // one that may not be removed. ENOENT counts once another look has confirmed it,
                // and so does any other failure of a call that was carried out.
                const int reason = errno;
                if (reason != EPERM && reason != EISDIR && reason != ENOENT) {
                    if (!isThere(calls_, folder, name.c_str(), status) && errno == ENOENT) return;
                    errno = reason;
                    break;
                }
            }
        }
        fail(name);
    }

    /// False with `errno` set when the name is no folder any more.
    bool enter(const std::string& name) {
        const Level& parent = levels_.back();
        Descriptor folder(calls_.open(parent.folder.number(), name.c_str(), listFlags, 0));
        if (!folder.isOpen() && errno == EACCES && makeWritable_) {
            folder = openUnreadable(parent.folder.number(), name.c_str());
        }
        if (!folder.isOpen()) {
            // macOS and Linux answer ELOOP or ENOTDIR for a link.
            if (errno == ENOTDIR || errno == ELOOP || errno == ENOENT) return false;
            fail(name);
        }
        struct stat status;
        if (calls_.status(folder.number(), status) != 0) fail(name);
        // What is mounted here is no part of the folder.
        if (mountOf(calls_, folder.number(), "", "remove", placeOf(name)) != mount_) {
            failMounted("remove", placeOf(name), EXDEV);
        }
        // Refused to all but the owner; then removing what is inside tells why.
        if (makeWritable_ && (status.st_mode & S_IRWXU) != S_IRWXU) {
            calls_.changeMode(folder.number(), (status.st_mode & 07777) | S_IRWXU);
        }
        levels_.push_back({.name = name,
                           .folder = std::move(folder),
                           .device = status.st_dev,
                           .inode = status.st_ino,
                           .names = {}});
        list();
        // The folder that holds the whole stays open: what lies above it is not ours to judge.
        if (levels_.size() > levelsKeptOpen + 1) {
            levels_[levels_.size() - levelsKeptOpen].folder = Descriptor();
        }
        return true;
    }

    /// A folder that its owner may not even read, by its name.
    Descriptor openUnreadable(int parent, const char* name) {
        if (calls_.changeMode(parent, name, S_IRWXU) != 0) {
            errno = EACCES;
            return Descriptor();
        }
        return Descriptor(calls_.open(parent, name, listFlags, 0));
    }

    void list() {
        Level& level = levels_.back();
        Descriptor listing(calls_.open(level.folder.number(), ".", listFlags, 0));
        if (!listing.isOpen()) fail("");
        if (calls_.names(std::move(listing), level.names) != 0) fail("");
    }

    /// Removes the emptied folder itself.
    void leave() {
        Level& level = levels_.back();
        const int parent = parentOfLast();
        const bool isGone = calls_.remove(parent, level.name.c_str(), AT_REMOVEDIR) == 0 ||
                            isGoneAllTheSame(parent, level.name);
        if (isGone) {
            levels_.pop_back();
            return;
        }
        // A program that still runs may have put something into its folder.
        const bool isWorthATry = errno == ENOTEMPTY || errno == EEXIST || errno == ENOENT;
        if (!isWorthATry || ++level.refills == attempts) fail("");
        list();
    }

    /// Of a name whose removal has failed: the answer may have been lost. Keeps `errno` for when it
    /// is still there.
    bool isGoneAllTheSame(int parent, const std::string& name) {
        const int reason = errno;
        struct stat status;
        const bool isGone = !isThere(calls_, parent, name.c_str(), status) && errno == ENOENT;
        errno = reason;
        return isGone;
    }

    int parentOfLast() {
        Level& parent = levels_[levels_.size() - 2];
        if (parent.folder.isOpen()) return parent.folder.number();
        Descriptor folder(calls_.open(levels_.back().folder.number(), "..", listFlags, 0));
        struct stat status;
        if (!folder.isOpen() || calls_.status(folder.number(), status) != 0) fail("");
        // Another one: the folder was moved away while it was being emptied.
        if (status.st_dev != parent.device || status.st_ino != parent.inode) fail("", ESTALE);
        parent.folder = std::move(folder);
        return parent.folder.number();
    }

    /// `name` is an entry of the current folder; empty for that folder itself.
    std::string placeOf(const std::string& name) const {
        std::string place = path_;
        for (std::size_t index = 2; index < levels_.size(); ++index) {
            place += "/" + levels_[index].name;
        }
        if (levels_.size() > 1 && !name.empty()) place += "/" + name;
        return place;
    }
    [[noreturn]] void fail(const std::string& name, int reason = errno) const {
        throw FileError("remove", placeOf(name), reason);
    }

    FileCalls& calls_;
    std::uint64_t mount_ = 0;  // of the folder that holds the item, and of all that goes
    std::string path_;
    bool makeWritable_;
    std::vector<Level> levels_;  // first the folder that holds the item
};

}  // namespace

void PosixFileManager::removeAll(const std::string& path) {
    // With a trailing slash the system would follow a link at the end of the path.
    std::string whole = path;
    while (whole.size() > 1 && whole.back() == '/')
        whole.pop_back();
    const std::size_t slash = whole.rfind('/');
    const std::string name = slash == std::string::npos ? "" : whole.substr(slash + 1);
    if (name.empty() || name == "." || name == ".." || whole.find('\0') != std::string::npos) {
        throw FileError("remove", path, EINVAL);
    }
    const std::string parent = slash == 0 ? "/" : whole.substr(0, slash);
    Descriptor folder(calls_.open(AT_FDCWD, parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder.isOpen()) {
        if (errno == ENOENT || errno == ENOTDIR) return;  // then nothing stands at `path`
        throw FileError("remove", path, errno);
    }
    Removal(calls_, std::move(folder), whole, false).run(name);
}

void PosixFileManager::removeAll(const FolderHandle& parent, const std::string& name) {
    const Entry entry(parent, name);
    Descriptor folder(calls_.open(entry.folder(), ".", passThrough | folderFlags, 0));
    if (!folder.isOpen()) throw FileError("remove", entry.path(), errno);
    Removal(calls_, std::move(folder), entry.path(), true).run(name);
}

}  // namespace velto
