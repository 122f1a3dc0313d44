#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/ownership.h"
#include "platform/posix/readable_file.h"
#include "platform/posix/same_state.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr mode_t lockMode = 0600;
constexpr std::chrono::microseconds shortestPause{500};
constexpr std::chrono::microseconds longestPause{20'000};

class PosixLock final : public FileLock {
public:
    explicit PosixLock(Descriptor held) : descriptor_(std::move(held)) {}

private:
    Descriptor descriptor_;  // closing it releases the lock
};

class PosixVersion final : public FileVersion {
public:
    PosixVersion(FileCalls& calls, ReadableFile opened, std::string path, const ReadLimit& limit)
        : calls_(calls), file_(std::move(opened)), path_(std::move(path)), limit_(limit) {}

    std::string read() override { return readWhole(calls_, file_, path_, limit_); }

    bool isCurrent() override {
        struct stat now;
        return calls_.stat(AT_FDCWD, path_.c_str(), now) == 0 && isSameState(file_.status, now);
    }

private:
    FileCalls& calls_;
    ReadableFile file_;
    std::string path_;
    ReadLimit limit_;
};

bool hasNoLocks(int reason) {
    return reason == ENOLCK || reason == EOPNOTSUPP || reason == ENOTSUP || reason == ENOSYS;
}

/// False when somebody else holds it.
bool tryLock(FileCalls& calls, int file, const std::string& path) {
    if (calls.lock(file, LOCK_EX | LOCK_NB) == 0 || hasNoLocks(errno)) return true;
    if (errno == EWOULDBLOCK) return false;
    throw FileError("lock", path, errno);
}

}  // namespace

/// Asks again and again, at longer and longer intervals: the call that waits has no end of its own.
bool PosixFileManager::waitForLock(int file, const std::string& path) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + patience_.limit;
    for (auto pause = shortestPause; !tryLock(calls_, file, path);) {
        if (Clock::now() >= end) return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, longestPause);
    }
    return true;
}

std::unique_ptr<FileLock> PosixFileManager::lock(const std::string& path, bool wait) {
    // Not waited for either: a pipe that somebody has put in the file's place.
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    Descriptor file(calls_.open(AT_FDCWD, path.c_str(), flags, lockMode));
    struct stat status;
    if (!file.isOpen() || calls_.status(file.number(), status) != 0) {
        throw FileError("lock", path, errno);
    }
    // Nobody else decides how long this program has to wait.
    if (!isOwn(calls_, status, path)) throw FileError("lock", path, EPERM);
    if (!S_ISREG(status.st_mode)) throw FileError("lock", path, EINVAL);
    // Another user's holder could keep this one waiting. A failure leaves it as it was.
    if ((status.st_mode & 0777) != lockMode) calls_.changeMode(file.number(), lockMode);
    const bool isHeld =
        wait ? waitForLock(file.number(), path) : tryLock(calls_, file.number(), path);
    if (!isHeld && wait) throw FileError("lock", path, EWOULDBLOCK);
    if (!isHeld) return nullptr;
    return std::make_unique<PosixLock>(std::move(file));
}

std::unique_ptr<FileVersion> PosixFileManager::openVersion(const std::string& path,
                                                           const ReadLimit& limit) {
    try {
        return std::make_unique<PosixVersion>(calls_, openReadable(calls_, path, limit), path,
                                              limit);
    } catch (const RefusedFile&) {
        throw;
    } catch (const FileError& error) {
        if (error.code() == ENOENT || error.code() == ENOTDIR) return nullptr;
        throw;
    }
}

}  // namespace velto
