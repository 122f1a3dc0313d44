#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/names_in_folder.h"

namespace velto {
namespace {

/// Removes what a name in an open folder stands for. Works on handles all the way down: a folder
/// that is swapped for a link meanwhile is removed as the link that it has become, and nothing
/// behind it is touched. `path` is for the error alone.
void removeEntry(FileCalls& calls, int parent, const std::string& name, const std::string& path) {
    const auto fail = [&] { throw FileError("remove", path, errno); };
    struct stat status;
    if (calls.stat(parent, name.c_str(), status) != 0) {
        if (errno == ENOENT) return;  // somebody else was faster
        fail();
    }
    if (!S_ISDIR(status.st_mode)) {
        if (calls.remove(parent, name.c_str(), 0) != 0 && errno != ENOENT) fail();
        return;
    }
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    Descriptor folder(calls.open(parent, name.c_str(), flags, 0));
    if (!folder.isOpen()) fail();
    Descriptor listing(calls.open(folder.number(), ".", flags, 0));
    if (!listing.isOpen()) fail();
    const auto names = namesInFolder(std::move(listing));
    if (!names) fail();
    for (const std::string& child : *names) {
        removeEntry(calls, folder.number(), child, path + "/" + child);
    }
    if (calls.remove(parent, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT) fail();
}

}  // namespace

void PosixFileManager::removeAll(const std::string& path) {
    std::string whole = path;
    while (whole.size() > 1 && whole.back() == '/') whole.pop_back();
    const std::size_t slash = whole.rfind('/');
    const std::string name = slash == std::string::npos ? "" : whole.substr(slash + 1);
    if (name.empty() || name == "." || name == ".." || whole.find('\0') != std::string::npos) {
        throw FileError("remove", path, EINVAL);
    }
    const std::string parent = slash == 0 ? "/" : whole.substr(0, slash);
    const Descriptor folder(
        calls_.open(AT_FDCWD, parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder.isOpen()) {
        if (errno == ENOENT) return;
        throw FileError("remove", path, errno);
    }
    removeEntry(calls_, folder.number(), name, whole);
}

}  // namespace velto
