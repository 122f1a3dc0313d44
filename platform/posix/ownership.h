#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "platform/posix/FileCalls.h"
#include "platform/values/text.h"

namespace velto {

/// True for what belongs to this user, or to the owner of the folder that holds it: that one
/// decides anyway what stands there, and a volume may show everything on it as somebody else's.
inline bool isOwn(const struct stat& item, const struct stat& folder) {
    return item.st_uid == ::geteuid() || item.st_uid == folder.st_uid;
}

/// The same for what stands at a path; false when its folder cannot be looked at.
inline bool isOwn(FileCalls& calls, const struct stat& item, const std::string& path) {
    if (item.st_uid == ::geteuid()) return true;
    struct stat folder;
    const std::string folderPath = parentFolder(path) + "/.";
    return calls.stat(AT_FDCWD, folderPath.c_str(), folder) == 0 && isOwn(item, folder);
}

}  // namespace velto
