#include <copyfile.h>
#include <stdio.h>

#include <cerrno>

#include "platform/posix/FileCalls.h"

namespace velto {

int FileCalls::rename(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameatx_np(fromFolder, from, toFolder, to, RENAME_EXCL);
}

ssize_t FileCalls::copyRange(int, int, off_t, std::size_t) {
    errno = ENOTSUP;  // the system copies whole files only
    return -1;
}

int FileCalls::copyAttributes(int from, int to) {
    return ::fcopyfile(from, to, nullptr, COPYFILE_XATTR | COPYFILE_ACL | COPYFILE_STAT);
}

}  // namespace velto
