#include <copyfile.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/attr.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "platform/posix/FileCalls.h"
#include "platform/posix/attribute_names.h"
#include "platform/posix/mac_attributes.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

/// False with `errno` set when it cannot be read. The value may grow between the two calls.
bool readAttribute(int file, const char* name, std::string& value) {
    while (true) {
        const ssize_t size = ::fgetxattr(file, name, nullptr, 0, 0, 0);
        if (size < 0) return false;
        value.resize(static_cast<std::size_t>(size));
        const ssize_t length = ::fgetxattr(file, name, value.data(), value.size(), 0, 0);
        if (length >= 0) {
            value.resize(static_cast<std::size_t>(length));
            return true;
        }
        if (errno != ERANGE) return false;
    }
}

bool attributeNames(int file, std::string& names) {
    while (true) {
        const ssize_t size = ::flistxattr(file, nullptr, 0, 0);
        if (size < 0) return errno == ENOTSUP;  // a volume without attributes has none
        names.resize(static_cast<std::size_t>(size));
        const ssize_t length = ::flistxattr(file, names.data(), names.size(), 0);
        if (length >= 0) {
            names.resize(static_cast<std::size_t>(length));
            return true;
        }
        if (errno != ERANGE) return false;
    }
}

}  // namespace

// A Mac mounts whole volumes only.
int FileCalls::mount(int folder, const char* name, std::uint64_t& mount) {
    struct stat status;
    const int result = *name == '\0' ? ::fstat(folder, &status)
                                     : ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW);
    if (result == 0) mount = static_cast<std::uint64_t>(status.st_dev);
    return result;
}

// The list of mounts spells a place in one of several ways (firmlinks): no place is ruled out.
bool FileCalls::mayHoldMount(int, const char*) { return true; }

int FileCalls::rename(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameatx_np(fromFolder, from, toFolder, to, RENAME_EXCL);
}

ssize_t FileCalls::copyRange(int, int, off_t, std::size_t) {
    errno = ENOTSUP;  // the system copies whole files only
    return -1;
}

// The system copies all or fails at the first that it refuses; then each is tried by itself. Not
// COPYFILE_STAT: it would lock the copy of a locked file before the rest of it is done.
int FileCalls::copyAttributes(int from, int to) {
    if (::fcopyfile(from, to, nullptr, COPYFILE_XATTR) == 0) return 0;
    if (errno != EPERM && errno != EACCES) return -1;
    std::string names;
    if (!attributeNames(from, names)) return -1;
    std::string value;
    for (const std::string& name : attributeNamesIn(names)) {
        if (!readAttribute(from, name.c_str(), value)) {
            if (errno == ENOATTR || mayStayBehindOnMac(name, errno)) continue;
            return -1;
        }
        if (::fsetxattr(to, name.c_str(), value.data(), value.size(), 0, 0) != 0 &&
            !mayStayBehindOnMac(name, errno)) {
            return -1;
        }
    }
    return 0;
}

int FileCalls::holdsAttributes(int from, int to) {
    std::string names;
    if (!attributeNames(from, names)) return -1;
    std::string value;
    std::string kept;
    for (const std::string& name : attributeNamesIn(names)) {
        if (isAttributeOfMacSystem(name)) continue;
        if (!readAttribute(from, name.c_str(), value)) {
            if (errno == ENOATTR) continue;
            return -1;
        }
        if (!readAttribute(to, name.c_str(), kept)) {
            return errno == ENOATTR || errno == ENOTSUP ? 0 : -1;
        }
        if (kept != value) return 0;
    }
    return 1;
}

int FileCalls::copyAccess(int from, int to) {
    struct stat status;
    if (::fcopyfile(from, to, nullptr, COPYFILE_ACL) != 0 || ::fstat(from, &status) != 0) return -1;
    const unsigned flags = flagsOf(status) & keptFlags;
    // A volume without flags keeps the file whole all the same.
    if (flags == 0 || ::fchflags(to, flags) == 0 || errno == ENOTSUP) return 0;
    return -1;
}

int FileCalls::copyBirthTime(int from, int to) {
    struct __attribute__((packed, aligned(4))) {
        uint32_t length;
        struct timespec born;
    } found = {};
    struct attrlist list = {};
    list.bitmapcount = ATTR_BIT_MAP_COUNT;
    list.commonattr = ATTR_CMN_CRTIME;
    if (::fgetattrlist(from, &list, &found, sizeof found, 0) != 0) return -1;
    struct timespec born = found.born;
    if (born.tv_sec <= 0) return 0;  // a volume that keeps none
    return ::fsetattrlist(to, &list, &born, sizeof born, 0);
}

// Disk images have been seen to call a hole what had content that was not written out yet.
bool FileCalls::knowsHoles() { return false; }

int FileCalls::dropCache(int file) { return ::fcntl(file, F_NOCACHE, 1); }

}  // namespace velto
