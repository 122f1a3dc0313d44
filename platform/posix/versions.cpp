#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr mode_t lockMode = 0600;

class PosixLock final : public FileLock {
public:
    explicit PosixLock(Descriptor held) : descriptor_(std::move(held)) {}

private:
    Descriptor descriptor_;  // closing it releases the lock
};

class PosixVersion final : public FileVersion {
public:
    PosixVersion(FileCalls& calls, Descriptor opened, const struct stat& status, std::string path)
        : calls_(calls), descriptor_(std::move(opened)), status_(status), path_(std::move(path)) {}

    std::string read() override {
        std::string content(static_cast<std::size_t>(status_.st_size), '\0');
        std::size_t filled = 0;
        while (true) {
            // One byte more than there should be tells that the file has grown.
            if (filled == content.size()) content.resize(content.size() + 1);
            const ssize_t length =
                calls_.readAt(descriptor_.number(), content.data() + filled,
                              content.size() - filled, static_cast<off_t>(filled));
            if (length < 0) throw FileError("read", path_, errno);
            if (length == 0) break;
            filled += static_cast<std::size_t>(length);
        }
        content.resize(filled);
        return content;
    }

    bool isCurrent() override {
        struct stat now;
        return calls_.stat(AT_FDCWD, path_.c_str(), now) == 0 && isSameState(status_, now);
    }

private:
    FileCalls& calls_;
    Descriptor descriptor_;
    struct stat status_;
    std::string path_;
};

bool hasNoLocks(int reason) {
    return reason == ENOLCK || reason == EOPNOTSUPP || reason == ENOTSUP || reason == ENOSYS;
}

}  // namespace

std::unique_ptr<FileLock> PosixFileManager::lock(const std::string& path, bool wait) {
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC;
    Descriptor file(calls_.open(AT_FDCWD, path.c_str(), flags, lockMode));
    if (!file.isOpen()) throw FileError("lock", path, errno);
    if (calls_.lock(file.number(), LOCK_EX | (wait ? 0 : LOCK_NB)) != 0) {
        if (!wait && errno == EWOULDBLOCK) return nullptr;
        if (!hasNoLocks(errno)) throw FileError("lock", path, errno);
    }
    return std::make_unique<PosixLock>(std::move(file));
}

std::unique_ptr<FileVersion> PosixFileManager::openVersion(const std::string& path) {
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
    Descriptor file(calls_.open(AT_FDCWD, path.c_str(), flags, 0));
    if (!file.isOpen() && (errno == ENOENT || errno == ENOTDIR)) return nullptr;
    struct stat status;
    if (!file.isOpen() || calls_.status(file.number(), status) != 0) {
        throw FileError("read", path, errno);
    }
    return std::make_unique<PosixVersion>(calls_, std::move(file), status, path);
}

}  // namespace velto
