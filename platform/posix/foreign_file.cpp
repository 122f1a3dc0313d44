#include "platform/posix/foreign_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "platform/posix/readable_file.h"
#include "platform/posix/uninterrupted.h"

namespace velto {

std::optional<Descriptor> openForeignFile(const std::string& path) {
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    if (path.find('\0') != std::string::npos) {
        errno = EINVAL;
        return std::nullopt;
    }
    Descriptor file(uninterrupted([&] { return ::open(path.c_str(), flags); }));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) return std::nullopt;
    if (S_ISREG(status.st_mode)) return file;
    errno = EINVAL;
    return std::nullopt;
}

std::optional<std::string> readForeignFile(const std::string& path, std::size_t mostBytes) {
    if (path.find('\0') != std::string::npos) return std::nullopt;
    const ReadLimit limit = anyFile(static_cast<std::int64_t>(mostBytes));
    try {
        return readWhole(systemFileCalls(), openReadable(systemFileCalls(), path, limit), path,
                         limit);
    } catch (const FileError&) {
        return std::nullopt;
    }
}

}  // namespace velto
