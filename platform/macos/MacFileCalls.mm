#include <copyfile.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/FileCalls.h"
#include "platform/posix/same_state.h"

namespace velto {

// A Mac mounts whole volumes only.
int FileCalls::mount(int folder, const char* name, std::uint64_t& mount) {
    struct stat status;
    const int result = *name == '\0' ? ::fstat(folder, &status)
                                     : ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW);
    if (result == 0) mount = static_cast<std::uint64_t>(status.st_dev);
    return result;
}

int FileCalls::rename(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameatx_np(fromFolder, from, toFolder, to, RENAME_EXCL);
}

ssize_t FileCalls::copyRange(int, int, off_t, std::size_t) {
    errno = ENOTSUP;  // the system copies whole files only
    return -1;
}

// Not COPYFILE_STAT: it would lock the copy of a locked file before the rest of it is done.
int FileCalls::copyAttributes(int from, int to) {
    return ::fcopyfile(from, to, nullptr, COPYFILE_XATTR);
}

int FileCalls::copyAccess(int from, int to) {
    struct stat status;
    if (::fcopyfile(from, to, nullptr, COPYFILE_ACL) != 0 || ::fstat(from, &status) != 0) return -1;
    const unsigned flags = flagsOf(status) & keptFlags;
    // A volume without flags keeps the file whole all the same.
    if (flags == 0 || ::fchflags(to, flags) == 0 || errno == ENOTSUP) return 0;
    return -1;
}

}  // namespace velto
