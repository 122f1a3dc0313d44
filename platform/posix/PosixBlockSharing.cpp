#include "platform/posix/PosixBlockSharing.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr const char* blockSharing = "share";

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

FileStamp stampFrom(const struct stat& status) {
    return {.identity = {.device = static_cast<std::uint64_t>(status.st_dev),
                         .number = static_cast<std::uint64_t>(status.st_ino)},
            .length = static_cast<std::int64_t>(status.st_size),
            .modified = nanoseconds(modifiedTime(status)),
            .changed = nanoseconds(changedTime(status))};
}

PosixSharedFile::PosixSharedFile(FileCalls& calls, const FolderHandle& folder,
                                 const std::string& name)
    : calls_(calls), folder_(folder), name_(name) {
    const Entry entry(folder, name);
    // Opening waits for nothing and takes no terminal over. To read is enough: the system asks
    // whose file it is.
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    descriptor_ = Descriptor(calls.open(entry.folder(), entry.c_str(), flags, 0));
    if (!descriptor_.isOpen()) throw FileError(blockSharing, entry.path(), errno);
    if (!S_ISREG(status().st_mode)) throw FileError(blockSharing, entry.path(), EINVAL);
}

struct stat PosixSharedFile::status() const {
    struct stat status;
    if (calls_.status(number(), status) != 0) throw FileError(blockSharing, path(), errno);
    return status;
}

OwnSpace PosixSharedFile::ownSpace() {
    OwnSpace space;
    if (calls_.ownSpace(number(), space) != 0) throw FileError(blockSharing, path(), errno);
    return space;
}

std::unique_ptr<SharedFile> PosixBlockSharing::open(const FolderHandle& folder,
                                                    const std::string& name) {
    return std::make_unique<PosixSharedFile>(calls_, folder, name);
}

void PosixBlockSharing::requireSharable(SharedFile& kept, SharedFile& copy) {
    if (calls_.mayShare(own(kept).number(), own(copy).number()) != 0) {
        throw FileError(blockSharing, own(copy).path(), errno);
    }
}

bool PosixBlockSharing::isOneWith(SharedFile& kept, SharedFile& copy) {
    const int result = calls_.isOneWith(own(kept).number(), own(copy).number());
    if (result < 0) throw FileError(blockSharing, own(copy).path(), errno);
    return result == 1;
}

BlockSharing::End RangeSharing::share(SharedFile& kept, SharedFile& copy,
                                      const std::string& /*scratch*/, const Progress& progress) {
    const PosixSharedFile& from = own(kept);
    const PosixSharedFile& to = own(copy);
    const std::int64_t length = kept.stamp().length;
    if (copy.stamp().length != length) return End::differs;
    for (std::int64_t done = 0; done < length;) {
        const auto step = static_cast<std::size_t>(std::min(stepLength, length - done));
        const ssize_t count =
            calls_.shareRange(from.number(), to.number(), static_cast<off_t>(done), step);
        if (count < 0) throw FileError(blockSharing, to.path(), errno);
        if (count == 0) return End::differs;
        done += static_cast<std::int64_t>(count);
        if (progress && !progress(done) && done < length) return End::stopped;
    }
    return End::shared;
}

}  // namespace velto
