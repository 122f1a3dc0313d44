#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string_view>

#include "platform/posix/FileCalls.h"

namespace velto {

/// Lets the n-th system call of an operation fail, done or not, or ends the process just before, in
/// the middle of or just after it. Unless every call is asked for, only those count that change
/// something on the disk: dying before or after a call that only looks is dying after the change
/// before it.
class WatchedFileCalls final : public FileCalls {
public:
    enum class Action {
        none,
        fail,         // that call
        failOnwards,  // that one and every later one that changes something
        doThenFail,   // that call is carried out and fails all the same: its answer was lost
        dieBefore,
        dieMidway,
        dieAfter,
    };
    static constexpr int died = 99;  // exit status

    Action action = Action::none;
    int at = 0;       // index of the call
    int error = EIO;  // what it fails with
    bool countsAll = false;
    int count = 0;  // calls so far
    /// Called before every call that changes something, with the name that it is about.
    std::function<void(const char* call, const char* name)> before;
    /// Called before every call there is, with the name that it is about ("" for an open file); the
    /// call fails with what it returns unless that is 0.
    std::function<int(const char* call, const char* name)> refuses;

    int open(int folder, const char* name, int flags, mode_t mode) override {
        return run((flags & O_CREAT) != 0, "open", name,
                   [&] { return FileCalls::open(folder, name, flags, mode); });
    }
    int stat(int folder, const char* name, struct stat& status) override {
        return run(false, "stat", name, [&] { return FileCalls::stat(folder, name, status); });
    }
    int statTarget(const char* path, struct stat& status) override {
        return run(false, "statTarget", path, [&] { return FileCalls::statTarget(path, status); });
    }
    int resolve(const char* path, std::string& real) override {
        return run(false, "resolve", path, [&] { return FileCalls::resolve(path, real); });
    }
    int names(Descriptor folder, std::vector<std::string>& found) override {
        return run(false, "names", "", [&] { return FileCalls::names(std::move(folder), found); });
    }
    int status(int file, struct stat& status) override {
        return run(false, "status", "", [&] { return FileCalls::status(file, status); });
    }
    int mount(int folder, const char* name, std::uint64_t& mount) override {
        return run(false, "mount", name, [&] { return FileCalls::mount(folder, name, mount); });
    }
    int volume(int folder, std::string& identity) override {
        return run(false, "volume", "", [&] { return FileCalls::volume(folder, identity); });
    }
    long longestName(int folder) override {
        return run(false, "longestName", "", [&] { return FileCalls::longestName(folder); });
    }
    ssize_t read(int file, void* buffer, std::size_t size) override {
        return run(false, "read", "", [&] { return FileCalls::read(file, buffer, size); });
    }
    ssize_t write(int file, const void* data, std::size_t size) override {
        return run(
            true, "write", "", [&] { return FileCalls::write(file, data, size); },
            [&] { FileCalls::write(file, data, size / 2); });
    }
    ssize_t readAt(int file, void* buffer, std::size_t size, off_t offset) override {
        return run(false, "readAt", "",
                   [&] { return FileCalls::readAt(file, buffer, size, offset); });
    }
    ssize_t writeAt(int file, const void* data, std::size_t size, off_t offset) override {
        return run(
            true, "writeAt", "", [&] { return FileCalls::writeAt(file, data, size, offset); },
            [&] { FileCalls::writeAt(file, data, size / 2, offset); });
    }
    off_t seek(int file, off_t offset, int whence) override {
        return run(false, "seek", "", [&] { return FileCalls::seek(file, offset, whence); });
    }
    int resize(int file, off_t size) override {
        return run(true, "resize", "", [&] { return FileCalls::resize(file, size); });
    }
    int sync(int file) override {
        return run(true, "sync", "", [&] { return waitsForDisk ? FileCalls::sync(file) : 0; });
    }
    int flush(int file) override {
        return run(true, "flush", "", [&] { return waitsForDisk ? FileCalls::flush(file) : 0; });
    }
    int changeMode(int file, mode_t mode) override {
        return run(true, "changeMode", "", [&] { return FileCalls::changeMode(file, mode); });
    }
    int changeMode(int folder, const char* name, mode_t mode) override {
        return run(true, "changeMode", name,
                   [&] { return FileCalls::changeMode(folder, name, mode); });
    }
    int changeOwner(int file, uid_t user, gid_t group) override {
        return run(true, "changeOwner", "",
                   [&] { return FileCalls::changeOwner(file, user, group); });
    }
    int setTimes(int file, const struct timespec (&times)[2]) override {
        return run(true, "setTimes", "", [&] { return FileCalls::setTimes(file, times); });
    }
    int setTimes(int folder, const char* name, const struct timespec (&times)[2]) override {
        return run(true, "setTimes", name,
                   [&] { return FileCalls::setTimes(folder, name, times); });
    }
    int makeFolder(int folder, const char* name, mode_t mode) override {
        return run(true, "makeFolder", name,
                   [&] { return FileCalls::makeFolder(folder, name, mode); });
    }
    int makeLink(const char* target, int folder, const char* name) override {
        return run(true, "makeLink", name,
                   [&] { return FileCalls::makeLink(target, folder, name); });
    }
    int readLink(int folder, const char* name, std::string& target) override {
        return run(false, "readLink", name,
                   [&] { return FileCalls::readLink(folder, name, target); });
    }
    int remove(int folder, const char* name, int flags) override {
        return run(true, "remove", name, [&] { return FileCalls::remove(folder, name, flags); });
    }
    int replace(int fromFolder, const char* from, int toFolder, const char* to) override {
        return run(true, "replace", to,
                   [&] { return FileCalls::replace(fromFolder, from, toFolder, to); });
    }
    int rename(int fromFolder, const char* from, int toFolder, const char* to) override {
        return run(true, "rename", to, [&] {
            if (!knowsExclusiveRename) {
                errno = EINVAL;
                return -1;
            }
            return FileCalls::rename(fromFolder, from, toFolder, to);
        });
    }
    int addName(int fromFolder, const char* from, int toFolder, const char* to) override {
        return run(true, "addName", to,
                   [&] { return FileCalls::addName(fromFolder, from, toFolder, to); });
    }
    ssize_t copyRange(int from, int to, off_t offset, std::size_t size) override {
        return run(
            true, "copyRange", "", [&] { return FileCalls::copyRange(from, to, offset, size); },
            [&] { FileCalls::copyRange(from, to, offset, size / 2); });
    }
    int copyAttributes(int from, int to) override {
        return run(true, "copyAttributes", "", [&] { return FileCalls::copyAttributes(from, to); });
    }
    int holdsAttributes(int from, int to) override {
        return run(false, "holdsAttributes", "",
                   [&] { return FileCalls::holdsAttributes(from, to); });
    }
    int copyAccess(int from, int to) override {
        return run(true, "copyAccess", "", [&] { return FileCalls::copyAccess(from, to); });
    }
    int copyBirthTime(int from, int to) override {
        return run(true, "copyBirthTime", "", [&] { return FileCalls::copyBirthTime(from, to); });
    }
    int dropCache(int file) override {
        return run(false, "dropCache", "", [&] { return FileCalls::dropCache(file); });
    }
    int lock(int file, int operation) override {
        return run(false, "lock", "", [&] { return FileCalls::lock(file, operation); });
    }

    int mayShare(int from, int to) override {
        return run(false, "mayShare", "", [&] { return FileCalls::mayShare(from, to); });
    }
    ssize_t shareRange(int from, int to, off_t offset, std::size_t size) override {
        return run(
            true, "shareRange", "", [&] { return FileCalls::shareRange(from, to, offset, size); },
            [&] { FileCalls::shareRange(from, to, offset, size / 2 / 4096 * 4096); });
    }
    int ownSpace(int file, OwnSpace& space) override {
        return run(false, "ownSpace", "", [&] { return FileCalls::ownSpace(file, space); });
    }
    int isOneWith(int file, int other) override {
        return run(false, "isOneWith", "", [&] { return FileCalls::isOneWith(file, other); });
    }
    int cloneTo(int file, int folder, const char* name) override {
        return run(true, "cloneTo", name, [&] { return FileCalls::cloneTo(file, folder, name); });
    }
    int exchange(int oneFolder, const char* one, int otherFolder, const char* other) override {
        return run(true, "exchange", one,
                   [&] { return FileCalls::exchange(oneFolder, one, otherFolder, other); });
    }
    int isOpenElsewhere(int file) override {
        return run(false, "isOpenElsewhere", "", [&] {
            return openElsewhere ? openElsewhere() : FileCalls::isOpenElsewhere(file);
        });
    }

    /// Answers for the system, which does not know it everywhere.
    std::function<int()> openElsewhere;
    /// False: as on a file system that cannot rename without replacing.
    bool knowsExclusiveRename = true;
    /// False: syncing is counted but not done. What a process leaves behind is the same.
    bool waitsForDisk = true;

private:
    template <typename Call>
    auto run(bool changes, const char* what, const char* name, Call call) -> decltype(call()) {
        return run(changes, what, name, call, [] {});
    }

    template <typename Call, typename Part>
    auto run(bool changes, const char* what, const char* name, Call call, Part part)
        -> decltype(call()) {
        if (changes && before) before(what, name);
        if (const int reason = refuses ? refuses(what, name) : 0) {
            errno = reason;
            return -1;
        }
        if (!changes && !countsAll) return call();
        const bool isIt = count++ == at;
        if (action == Action::failOnwards && changes && count > at) {
            errno = error;
            return -1;
        }
        if (!isIt) return call();
        if (action == Action::fail) {
            errno = error;
            return -1;
        }
        if (action == Action::dieBefore) _exit(died);
        if (action == Action::dieMidway) {
            part();
            _exit(died);
        }
        const auto result = call();
        if (action == Action::dieAfter) _exit(died);
        if (action == Action::doThenFail && result >= 0) {
            if (std::string_view(what) == "open") ::close(static_cast<int>(result));
            errno = error;
            return -1;
        }
        return result;
    }
};

}  // namespace velto
