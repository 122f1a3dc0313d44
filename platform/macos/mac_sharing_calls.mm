#include <fcntl.h>
#include <libproc.h>
#include <stdio.h>
#include <sys/attr.h>
#include <sys/clonefile.h>
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include "platform/posix/FileCalls.h"
#include "platform/posix/attribute_names.h"
#include "platform/posix/mac_attributes.h"

namespace velto {
namespace {

int failWith(int error) {
    errno = error;
    return -1;
}

/// Whether the volume of a mount point clones files; the system tells that of whole volumes.
bool clonesFiles(const char* mountPoint) {
    struct __attribute__((packed, aligned(4))) {
        uint32_t length;
        vol_capabilities_attr_t capabilities;
    } found = {};
    struct attrlist wanted = {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.volattr = ATTR_VOL_INFO | ATTR_VOL_CAPABILITIES;
    if (::getattrlist(mountPoint, &wanted, &found, sizeof found, 0) != 0) return false;
    const auto& valid = found.capabilities.valid;
    const auto& set = found.capabilities.capabilities;
    return (valid[VOL_CAPABILITIES_INTERFACES] & set[VOL_CAPABILITIES_INTERFACES] &
            VOL_CAP_INT_CLONE) != 0;
}

/// One of the attributes that APFS has besides (getattrlist(2)): 64 bits. False with `errno`.
bool readNumber(int file, attrgroup_t attribute, uint64_t& number) {
    struct __attribute__((packed, aligned(4))) {
        uint32_t length;
        attribute_set_t returned;
        uint64_t value;
    } found = {};
    struct attrlist wanted = {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = ATTR_CMN_RETURNED_ATTRS;
    wanted.forkattr = attribute;
    if (::fgetattrlist(file, &wanted, &found, sizeof found, FSOPT_ATTR_CMN_EXTENDED) != 0) {
        return false;
    }
    if ((found.returned.forkattr & attribute) == 0) {
        errno = ENOTSUP;
        return false;
    }
    number = found.value;
    return true;
}

/// A clone has the attributes of what it was made from; it is to get others.
int removeAttributes(int file) {
    std::string names;
    const ssize_t size = ::flistxattr(file, nullptr, 0, 0);
    if (size < 0) return errno == ENOTSUP ? 0 : -1;
    names.resize(static_cast<std::size_t>(size));
    const ssize_t length = ::flistxattr(file, names.data(), names.size(), 0);
    if (length < 0) return -1;
    names.resize(static_cast<std::size_t>(length));
    for (const std::string& name : attributeNamesIn(names)) {
        if (::fremovexattr(file, name.c_str(), 0) != 0 && errno != ENOATTR &&
            !mayStayBehindOnMac(name, errno)) {
            return -1;
        }
    }
    return 0;
}

}  // namespace

int FileCalls::mayShare(int from, int to) {
    struct stat one;
    struct stat other;
    if (::fstat(from, &one) != 0 || ::fstat(to, &other) != 0) return -1;
    if (one.st_dev != other.st_dev) return failWith(EXDEV);
    struct statfs volume;
    if (::fstatfs(to, &volume) != 0) return -1;
    if ((volume.f_flags & MNT_RDONLY) != 0) return failWith(EROFS);
    return clonesFiles(volume.f_mntonname) ? 0 : failWith(ENOTSUP);
}

ssize_t FileCalls::shareRange(int, int, off_t, std::size_t) {
    return failWith(ENOTSUP);  // the system clones whole files only
}

int FileCalls::ownSpace(int file, OwnSpace& space) {
    uint64_t bytes = 0;
    if (!readNumber(file, ATTR_CMNEXT_PRIVATESIZE, bytes)) return -1;
    space = {.bytes = static_cast<std::int64_t>(bytes), .isExact = true};
    return 0;
}

// Clones have one number as long as nothing was written to either. With blocks of its own besides
// a file is none any more, whatever its number says.
int FileCalls::isOneWith(int file, int other) {
    uint64_t one = 0;
    uint64_t two = 0;
    uint64_t own = 0;
    if (!readNumber(file, ATTR_CMNEXT_CLONEID, one) ||
        !readNumber(other, ATTR_CMNEXT_CLONEID, two) ||
        !readNumber(other, ATTR_CMNEXT_PRIVATESIZE, own)) {
        return errno == ENOTSUP ? 0 : -1;
    }
    return one != 0 && one == two && own == 0 ? 1 : 0;
}

int FileCalls::cloneTo(int file, int folder, const char* name) {
    if (::fclonefileat(file, folder, name, CLONE_NOFOLLOW | CLONE_NOOWNERCOPY) != 0) return -1;
    const Descriptor made(::openat(folder, name, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    // Flags of the original would come along: hidden, for one.
    if (made.isOpen() && ::fchflags(made.number(), 0) == 0 &&
        removeAttributes(made.number()) == 0) {
        return 0;
    }
    const int reason = errno;
    ::unlinkat(folder, name, 0);
    return failWith(reason);
}

int FileCalls::exchange(int oneFolder, const char* one, int otherFolder, const char* other) {
    return ::renameatx_np(oneFolder, one, otherFolder, other, RENAME_SWAP);
}

// Of other users' processes the system tells nothing; a file of this user's home that such a one
// has open for writing is one that both have agreed on.
int FileCalls::isOpenElsewhere(int file) {
    std::array<char, MAXPATHLEN> path{};
    if (::fcntl(file, F_GETPATH, path.data()) != 0) return -1;
    std::vector<pid_t> found(1024);
    const int size =
        ::proc_listpidspath(PROC_ALL_PIDS, 0, path.data(), PROC_LISTPIDSPATH_EXCLUDE_EVTONLY,
                            found.data(), static_cast<int>(found.size() * sizeof(pid_t)));
    if (size < 0) return -1;
    const auto count = static_cast<std::size_t>(size) / sizeof(pid_t);
    for (std::size_t index = 0; index < count && index < found.size(); ++index) {
        if (found[index] != 0 && found[index] != ::getpid()) return 1;
    }
    return 0;
}

}  // namespace velto
