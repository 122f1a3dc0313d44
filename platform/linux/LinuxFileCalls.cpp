#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/linux/mount_table.h"
#include "platform/posix/FileCalls.h"
#include "platform/posix/attribute_names.h"
#include "platform/posix/uninterrupted.h"

namespace velto {
namespace {

/// Those that mount a further part of themselves when it is entered (linux/magic.h).
constexpr std::array<unsigned, 5> mountingFileSystems{
    NFS_SUPER_MAGIC, CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, AFS_SUPER_MAGIC, AFS_FS_MAGIC};

/// The access list of a file, and the one that a folder gives to what is made in it (acl(5)).
constexpr std::array accessLists{"system.posix_acl_access", "system.posix_acl_default"};

/// Attributes of the namespaces besides "user." may be the system's to write (security labels) or
/// unknown to the target's file system; the file is whole without them.
bool mayBeLeftOut(std::string_view name) {
    return !name.starts_with("user.") &&
           (errno == EPERM || errno == EACCES || errno == EOPNOTSUPP || errno == EINVAL);
}

/// Nothing with `errno` set when it cannot be read. The value may grow between the two calls.
bool readAttribute(int file, const char* name, std::string& value) {
    while (true) {
        const ssize_t size = ::fgetxattr(file, name, nullptr, 0);
        if (size < 0) return false;
        value.resize(static_cast<std::size_t>(size));
        const ssize_t length = ::fgetxattr(file, name, value.data(), value.size());
        if (length >= 0) {
            value.resize(static_cast<std::size_t>(length));
            return true;
        }
        if (errno != ERANGE) return false;
    }
}

bool attributeNames(int file, std::string& names) {
    while (true) {
        const ssize_t size = ::flistxattr(file, nullptr, 0);
        if (size < 0) return errno == EOPNOTSUPP;  // a file system without attributes has none
        names.resize(static_cast<std::size_t>(size));
        const ssize_t length = ::flistxattr(file, names.data(), names.size());
        if (length >= 0) {
            names.resize(static_cast<std::size_t>(length));
            return true;
        }
        if (errno != ERANGE) return false;
    }
}

}  // namespace

int FileCalls::mount(int folder, const char* name, std::uint64_t& mount) {
    struct statx status;
    // What the system mounts when it is entered is not mounted by looking at it.
    constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH | AT_NO_AUTOMOUNT;
    if (::statx(folder, name, flags, STATX_MNT_ID, &status) != 0) return -1;
    // Kernels before 5.8 know no numbers of mounts; there a volume is all that can be told apart.
    mount = (status.stx_mask & STATX_MNT_ID) != 0
                ? status.stx_mnt_id
                : (std::uint64_t{status.stx_dev_major} << 32 | status.stx_dev_minor);
    return 0;
}

bool FileCalls::mayHoldMount(int folder, const char* name) {
    struct statfs volume;
    if (::fstatfs(folder, &volume) != 0 ||
        std::ranges::find(mountingFileSystems, static_cast<unsigned>(volume.f_type)) !=
            mountingFileSystems.end()) {
        return true;
    }
    // A folder that was deleted, or lies outside of what this process sees, has no place there.
    std::error_code error;
    const std::string place =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder), error);
    if (error || !place.starts_with('/') || place.ends_with(" (deleted)")) return true;
    const auto mounts = systemMounts();
    return !mounts || holdsMount(*mounts, (place == "/" ? "" : place) + "/" + name);
}

int FileCalls::rename(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE);
}

ssize_t FileCalls::copyRange(int from, int to, off_t offset, std::size_t size) {
    loff_t source = offset;
    loff_t target = offset;
    return uninterrupted([&] { return ::copy_file_range(from, &source, to, &target, size, 0); });
}

int FileCalls::copyAttributes(int from, int to) {
    std::string names;
    if (!attributeNames(from, names)) return -1;
    std::string value;
    for (const std::string& name : attributeNamesIn(names)) {
        if (std::ranges::find(accessLists, name) != accessLists.end()) continue;
        if (!readAttribute(from, name.c_str(), value)) {
            if (errno == ENODATA || mayBeLeftOut(name)) continue;
            return -1;
        }
        if (::fsetxattr(to, name.c_str(), value.data(), value.size(), 0) != 0 &&
            !mayBeLeftOut(name)) {
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
        if (!name.starts_with("user.")) continue;  // may differ from place to place
        if (!readAttribute(from, name.c_str(), value)) {
            if (errno == ENODATA) continue;
            return -1;
        }
        if (!readAttribute(to, name.c_str(), kept)) {
            if (errno == ENODATA || errno == EOPNOTSUPP) return 0;
            return -1;
        }
        if (kept != value) return 0;
    }
    return 1;
}

int FileCalls::copyAccess(int from, int to) {
    std::string list;
    for (const char* name : accessLists) {
        if (readAttribute(from, name, list)) {
            if (::fsetxattr(to, name, list.data(), list.size(), 0) != 0 && !mayBeLeftOut(name)) {
                return -1;
            }
            continue;
        }
        if (errno != ENODATA && errno != EOPNOTSUPP) return -1;
        // The folder that the copy was made in may have given it a list of its own.
        if (::fremovexattr(to, name) != 0 && errno != ENODATA && errno != EOPNOTSUPP) return -1;
    }
    return 0;
}

// Its file systems keep one, but there is no call to set it.
int FileCalls::copyBirthTime(int, int) { return 0; }

bool FileCalls::knowsHoles() { return true; }

int FileCalls::dropCache(int file) {
    const int reason = ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    if (reason != 0) errno = reason;
    return reason == 0 ? 0 : -1;
}

}  // namespace velto
