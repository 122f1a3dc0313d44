#include "support/ModelFileCalls.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "support/model_answers.h"

namespace velto {
namespace {

constexpr int firstDescriptor = 1 << 30;
constexpr std::int64_t second = 1'000'000'000;
constexpr mode_t readable = 4;
constexpr mode_t writable = 2;

timespec timeOf(std::int64_t nanoseconds) {
    timespec time{};
    time.tv_sec = static_cast<decltype(time.tv_sec)>(nanoseconds / second);
    time.tv_nsec = static_cast<decltype(time.tv_nsec)>(nanoseconds % second);
    return time;
}

// POSIX names the full times st_mtim and so on; macOS knows them as st_mtimespec.
template <typename Status>
void setTimesOf(Status& status, const ModelInode& inode) {
    if constexpr (requires { status.st_mtim; }) {
        status.st_atim = timeOf(inode.accessed);
        status.st_mtim = timeOf(inode.modified);
        status.st_ctim = timeOf(inode.changed);
    } else {
        status.st_atimespec = timeOf(inode.accessed);
        status.st_mtimespec = timeOf(inode.modified);
        status.st_ctimespec = timeOf(inode.changed);
    }
}

bool mayBeUsed(const ModelDisk& disk, const ModelInode& inode, ModelInode::Number number,
               int flags) {
    if (isPassedThrough(flags)) return true;
    const int access = flags & O_ACCMODE;
    if (inode.isFolder() && access != O_RDONLY) return failedFor(EISDIR) == 0;
    const mode_t wanted = (access != O_WRONLY ? readable : 0) | (access != O_RDONLY ? writable : 0);
    return disk.allows(number, wanted);
}

}  // namespace

ModelFileCalls::Handle* ModelFileCalls::handle(int file) {
    const auto index = static_cast<std::size_t>(file - firstDescriptor);
    if (file >= firstDescriptor && index < handles_.size()) return &handles_[index];
    errno = EBADF;
    return nullptr;
}

bool ModelFileCalls::reach(int folder, const char* path, bool followsLast,
                           ModelDisk::Place& place) {
    Number start = ModelImage::root;
    if (folder != AT_FDCWD && *path != '/') {
        const Handle* opened = handle(folder);
        if (opened == nullptr) return false;
        start = opened->inode;
    }
    return disk_.reach(start, path, followsLast, place);
}

bool ModelFileCalls::reachInode(int folder, const char* path, bool followsLast, Number& inode) {
    ModelDisk::Place place;
    if (!reach(folder, path, followsLast, place)) return false;
    if (place.inode == 0) errno = ENOENT;
    inode = place.inode;
    return inode != 0;
}

int ModelFileCalls::open(int folder, const char* name, int flags, mode_t mode) {
    ModelDisk::Place place;
    const bool isNew = (flags & (O_CREAT | O_EXCL)) == (O_CREAT | O_EXCL);
    if (!reach(folder, name, (flags & O_NOFOLLOW) == 0 && !isNew, place)) return -1;
    if (place.inode != 0 && isNew) return failedFor(EEXIST);
    if (place.inode == 0) {
        if ((flags & O_CREAT) == 0) return failedFor(ENOENT);
        if (disk_.make(place, S_IFREG | (mode & 07777), "", place.inode) != 0) return -1;
    } else {
        const ModelInode& inode = disk_.live().at(place.inode);
        if ((flags & O_DIRECTORY) != 0 && !inode.isFolder()) return failedFor(ENOTDIR);
        if (inode.isLink()) return failedFor(ELOOP);
        if (!mayBeUsed(disk_, inode, place.inode, flags)) return -1;
    }
    handles_.push_back({.inode = place.inode, .flags = flags});
    return firstDescriptor + static_cast<int>(handles_.size()) - 1;
}

void ModelFileCalls::fill(Number number, struct stat& status) const {
    const ModelInode& inode = disk_.live().at(number);
    std::memset(&status, 0, sizeof status);
    status.st_dev = static_cast<dev_t>(inode.volume) + 1;
    status.st_ino = static_cast<ino_t>(number);
    status.st_mode = inode.mode;
    status.st_nlink = static_cast<nlink_t>(inode.links);
    status.st_uid = ::geteuid();
    status.st_gid = ::getegid();
    if (inode.content) status.st_size = static_cast<off_t>(inode.content->size());
    status.st_blocks = static_cast<blkcnt_t>((status.st_size + 511) / 512);
    setTimesOf(status, inode);
}

int ModelFileCalls::stat(int folder, const char* name, struct stat& status) {
    Number inode = 0;
    if (!reachInode(folder, name, false, inode)) return -1;
    fill(inode, status);
    return 0;
}

int ModelFileCalls::statTarget(const char* path, struct stat& status) {
    Number inode = 0;
    if (!reachInode(AT_FDCWD, path, true, inode)) return -1;
    fill(inode, status);
    return 0;
}

int ModelFileCalls::status(int file, struct stat& status) {
    const Handle* opened = handle(file);
    if (opened == nullptr) return -1;
    fill(opened->inode, status);
    return 0;
}

/// Every volume is mounted once.
int ModelFileCalls::mount(int folder, const char* name, std::uint64_t& mount) {
    Number number = 0;
    if (!reachInode(folder, *name == '\0' ? "." : name, false, number)) return -1;
    mount = static_cast<std::uint64_t>(disk_.live().at(number).volume);
    return 0;
}

int ModelFileCalls::volume(int folder, std::string& identity) {
    std::uint64_t number = 0;
    if (mount(folder, "", number) != 0) return -1;
    identity = "volume " + std::to_string(number);
    return 0;
}

long ModelFileCalls::longestName(int) { return 255; }

int ModelFileCalls::resolve(const char* path, std::string& real) {
    ModelDisk::Place place;
    if (!reach(AT_FDCWD, path, true, place)) return -1;
    if (place.inode == 0) return failedFor(ENOENT);
    real = place.name == "." || place.name == ".." ? "" : "/" + place.name;
    for (Number current = place.folder; current != ModelImage::root;) {
        const Number above = disk_.live().at(current).parent;
        for (const auto& [name, entry] : disk_.live().at(above).entries) {
            if (disk_.live().mounted(entry) == current) real.insert(0, "/" + name);
        }
        current = above;
    }
    if (real.empty()) real = "/";
    return 0;
}

int ModelFileCalls::names(Descriptor folder, std::vector<std::string>& names) {
    const Handle* opened = handle(folder.number());
    if (opened == nullptr) return -1;
    const ModelInode& inode = disk_.live().at(opened->inode);
    if (!inode.isFolder()) return failedFor(ENOTDIR);
    names.clear();
    for (const auto& [name, entry] : inode.entries)
        names.push_back(name);
    return 0;
}

int ModelFileCalls::changeMode(int file, mode_t mode) {
    const Handle* opened = handle(file);
    if (opened == nullptr) return -1;
    const ModelInode& inode = disk_.live().at(opened->inode);
    disk_.setAttributes(opened->inode, mode, inode.accessed, inode.modified);
    return 0;
}

int ModelFileCalls::changeMode(int folder, const char* name, mode_t mode) {
    Number number = 0;
    if (!reachInode(folder, name, false, number)) return -1;
    const ModelInode& inode = disk_.live().at(number);
    if (inode.isLink()) return failedFor(EOPNOTSUPP);
    disk_.setAttributes(number, mode, inode.accessed, inode.modified);
    return 0;
}

int ModelFileCalls::changeOwner(int file, uid_t user, gid_t group) {
    if (handle(file) == nullptr) return -1;
    const bool isOwn = user == ::geteuid() || user == static_cast<uid_t>(-1);
    return isOwn && group == ::getegid() ? 0 : failedFor(EPERM);
}

int ModelFileCalls::setTimes(Number number, const struct timespec (&times)[2]) {
    const auto nanoseconds = [](const timespec& time) {
        return static_cast<std::int64_t>(time.tv_sec) * second + time.tv_nsec;
    };
    disk_.setAttributes(number, disk_.live().at(number).mode, nanoseconds(times[0]),
                        nanoseconds(times[1]));
    return 0;
}

int ModelFileCalls::setTimes(int file, const struct timespec (&times)[2]) {
    const Handle* opened = handle(file);
    return opened == nullptr ? -1 : setTimes(opened->inode, times);
}

int ModelFileCalls::setTimes(int folder, const char* name, const struct timespec (&times)[2]) {
    Number number = 0;
    return reachInode(folder, name, false, number) ? setTimes(number, times) : -1;
}

int ModelFileCalls::copyAttributes(int from, int to) {
    return handle(from) != nullptr && handle(to) != nullptr ? 0 : -1;
}

int ModelFileCalls::holdsAttributes(int from, int to) {
    return copyAttributes(from, to) == 0 ? 1 : -1;
}

int ModelFileCalls::copyAccess(int from, int to) { return copyAttributes(from, to); }

int ModelFileCalls::copyBirthTime(int from, int to) { return copyAttributes(from, to); }

int ModelFileCalls::dropCache(int file) { return handle(file) == nullptr ? -1 : 0; }

int ModelFileCalls::lock(int file, int) { return handle(file) == nullptr ? -1 : 0; }

}  // namespace velto
