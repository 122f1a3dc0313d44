#include "fuzz/engine/linux/ConfinedCalls.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include "platform/values/text.h"

namespace velto::fuzz {
namespace {

std::string pathOf(int file) {
    std::array<char, PATH_MAX> path;
    const ssize_t length =
        ::readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path.data(), path.size());
    return length <= 0 ? "" : std::string(path.data(), static_cast<std::size_t>(length));
}

/// Where a name leads to, with the links on the way resolved but for its own.
std::string placeOf(int folder, const char* name) {
    std::string path = name;
    // The common case, and the quick one: the kernel knows an open folder by its real path.
    const bool isEntry = folder != AT_FDCWD && path.find('/') == std::string::npos;
    if (isEntry) return standardizedPath(pathOf(folder) + "/" + path);
    if (!path.starts_with('/')) path = pathOf(folder) + "/" + path;
    const std::string standard = standardizedPath(path);
    const std::string parent = parentFolder(standard);
    if (parent.empty()) return standard;
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(parent.c_str(), nullptr),
                                                           &std::free);
    if (!real) return standard;
    return std::string(real.get()) + "/" + std::string(lastPathComponent(standard));
}

int refused(int reason) {
    errno = reason;
    return -1;
}

}  // namespace

bool ConfinedCalls::isInside(const std::string& path) const {
    return isAtOrBelow(standardizedPath(path), root_);
}

bool ConfinedCalls::isOnTheWay(const std::string& path) const {
    return path == "/" || isAtOrBelow(root_, standardizedPath(path));
}

bool ConfinedCalls::mayChange(const char* what, const std::string& path) {
    if (isInside(path)) return true;
    const std::lock_guard guard(lock_);
    escapes_.push_back(std::string(what) + " " + path);
    return false;
}

bool ConfinedCalls::mayChange(const char* what, int folder, const char* name) {
    return mayChange(what, placeOf(folder, name));
}

int ConfinedCalls::open(int folder, const char* name, int flags, mode_t mode) {
    const bool changes = (flags & O_PATH) == 0 &&
                         ((flags & (O_CREAT | O_TRUNC)) != 0 || (flags & O_ACCMODE) != O_RDONLY);
    if (changes && !mayChange("write", folder, name)) return refused(EPERM);
    const std::string place = placeOf(folder, name);
    if (!isInside(place) && !isOnTheWay(place)) return refused(ENOENT);
    const int file = FileCalls::open(folder, name, flags, mode);
    if (file < 0) return file;
    const std::string opened = pathOf(file);
    if (isInside(opened) || isOnTheWay(opened)) return file;
    ::close(file);
    return refused(ENOENT);
}

int ConfinedCalls::stat(int folder, const char* name, struct stat& status) {
    const std::string place = placeOf(folder, name);
    if (!isInside(place) && !isOnTheWay(place)) return refused(ENOENT);
    return FileCalls::stat(folder, name, status);
}

int ConfinedCalls::readLink(int folder, const char* name, std::string& target) {
    if (!isInside(placeOf(folder, name))) return refused(ENOENT);
    return FileCalls::readLink(folder, name, target);
}

int ConfinedCalls::changeMode(int file, mode_t mode) {
    return mayChange("change", pathOf(file)) ? FileCalls::changeMode(file, mode) : refused(EPERM);
}

int ConfinedCalls::changeMode(int folder, const char* name, mode_t mode) {
    if (!mayChange("change", folder, name)) return refused(EPERM);
    return FileCalls::changeMode(folder, name, mode);
}

int ConfinedCalls::changeOwner(int file, uid_t user, gid_t group) {
    if (!mayChange("change", pathOf(file))) return refused(EPERM);
    return FileCalls::changeOwner(file, user, group);
}

int ConfinedCalls::setTimes(int file, const struct timespec (&times)[2]) {
    return mayChange("date", pathOf(file)) ? FileCalls::setTimes(file, times) : refused(EPERM);
}

int ConfinedCalls::setTimes(int folder, const char* name, const struct timespec (&times)[2]) {
    if (!mayChange("date", folder, name)) return refused(EPERM);
    return FileCalls::setTimes(folder, name, times);
}

/// Making a folder that is there is how it is looked for.
int ConfinedCalls::makeFolder(int folder, const char* name, mode_t mode) {
    const std::string place = placeOf(folder, name);
    if (isOnTheWay(place)) return refused(EEXIST);
    return mayChange("make", place) ? FileCalls::makeFolder(folder, name, mode) : refused(EPERM);
}

int ConfinedCalls::makeLink(const char* target, int folder, const char* name) {
    if (!mayChange("link", folder, name)) return refused(EPERM);
    return FileCalls::makeLink(target, folder, name);
}

int ConfinedCalls::remove(int folder, const char* name, int flags) {
    if (!mayChange("remove", folder, name)) return refused(EPERM);
    return FileCalls::remove(folder, name, flags);
}

int ConfinedCalls::replace(int fromFolder, const char* from, int toFolder, const char* to) {
    if (!mayChange("move", fromFolder, from) || !mayChange("move to", toFolder, to)) {
        return refused(EPERM);
    }
    return FileCalls::replace(fromFolder, from, toFolder, to);
}

int ConfinedCalls::rename(int fromFolder, const char* from, int toFolder, const char* to) {
    if (!mayChange("move", fromFolder, from) || !mayChange("move to", toFolder, to)) {
        return refused(EPERM);
    }
    return FileCalls::rename(fromFolder, from, toFolder, to);
}

int ConfinedCalls::addName(int fromFolder, const char* from, int toFolder, const char* to) {
    if (!mayChange("name", fromFolder, from) || !mayChange("name", toFolder, to)) {
        return refused(EPERM);
    }
    return FileCalls::addName(fromFolder, from, toFolder, to);
}

}  // namespace velto::fuzz
