#pragma once

#include <fcntl.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/FileMover.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileCalls.h"

namespace velto {

// A folder on the way needs no permission to be read, only to be passed through.
#ifdef O_PATH
inline constexpr int passThrough = O_PATH;
#elif defined(O_SEARCH)
inline constexpr int passThrough = O_SEARCH;
#else
inline constexpr int passThrough = O_RDONLY;
#endif

inline constexpr int folderFlags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct PosixFolder final : FolderHandle {
    PosixFolder(FileCalls& openedBy, Descriptor opened, std::string openedPath)
        : calls(openedBy), descriptor(std::move(opened)), path(std::move(openedPath)) {}

    FileCalls& calls;  // which the descriptor belongs to
    Descriptor descriptor;
    std::string path;  // for messages alone
};

inline const PosixFolder& posix(const FolderHandle& folder) {
    return static_cast<const PosixFolder&>(folder);  // this manager hands out no other kind
}

inline int number(const FolderHandle& folder) { return posix(folder).descriptor.number(); }

/// One name in an open folder; both outlive it. Throws FileError with EINVAL for anything but a
/// single path component.
struct Entry {
    Entry(const FolderHandle& folder, const std::string& name);

    int folder() const { return parent.descriptor.number(); }
    const char* c_str() const { return name.c_str(); }
    std::string path() const { return parent.path + "/" + name; }

    const PosixFolder& parent;
    const std::string& name;
};

/// Reads the attributes of a name. False with `errno` set when it cannot; that is ENOENT when
/// nothing stands there.
bool isThere(FileCalls& calls, int folder, const char* name, struct stat& status);

/// The same of an entry; false when nothing stands there. Throws when it cannot be told.
bool isThere(FileCalls& calls, const Entry& entry, struct stat& status, const char* attempt);

/// Makes the names in an open folder reach the disk, where it may be read; the system writes
/// out the rest in its own time. -1 and `errno`.
int syncNames(FileCalls& calls, int folder);

/// Opens a folder's names for reading and lists them. Throws.
std::vector<std::string> namesIn(FileCalls& calls, int folder, const std::string& path,
                                 const char* attempt);

}  // namespace velto
