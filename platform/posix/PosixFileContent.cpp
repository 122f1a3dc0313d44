#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

#include "platform/FileContent.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixBlockSharing.h"
#include "platform/posix/reading_advice.h"

namespace velto {
namespace {

class PosixFileContent final : public FileContent {
public:
    explicit PosixFileContent(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

    std::int64_t size() const override {
        struct stat status {};
        if (::fstat(descriptor_.number(), &status) != 0) return -1;
        return static_cast<std::int64_t>(status.st_size);
    }

    std::optional<FileStamp> stamp() const override {
        struct stat status {};
        if (::fstat(descriptor_.number(), &status) != 0) return std::nullopt;
        return stampFrom(status);
    }

    std::ptrdiff_t read(std::int64_t offset, std::span<std::byte> buffer) override {
        return ::pread(descriptor_.number(), buffer.data(), buffer.size(),
                       static_cast<off_t>(offset));
    }

    void readAsTold() override { velto::readAsTold(descriptor_.number()); }
    std::vector<ByteRange> notCached(ByteRange range) override {
        return velto::notCached(descriptor_.number(), range);
    }
    void readAhead(ByteRange range) override { velto::readAhead(descriptor_.number(), range); }
    void forget(ByteRange range) override { velto::forget(descriptor_.number(), range); }

private:
    Descriptor descriptor_;
};

Descriptor openForReading(const std::string& path) {
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
#ifdef O_NOATIME
    // Comparing a file must not count as using it: the page shows when a file was last used.
    // Refused (EPERM) for files of other users; those are read the ordinary way.
    Descriptor quiet(::open(path.c_str(), flags | O_NOATIME));
    if (quiet.isOpen() || errno != EPERM) return quiet;
#endif
    return Descriptor(::open(path.c_str(), flags));
}

bool isRegularFile(const Descriptor& descriptor) {
    struct stat status {};
    if (::fstat(descriptor.number(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) errno = EINVAL;
    return S_ISREG(status.st_mode);
}

class PosixFileContentReader final : public FileContentReader {
public:
    std::unique_ptr<FileContent> open(const std::string& path) override {
        Descriptor descriptor = openForReading(path);
        while (!descriptor.isOpen() && errno == EINTR)
            descriptor = openForReading(path);
        if (descriptor.isOpen() && isRegularFile(descriptor)) {
            return std::make_unique<PosixFileContent>(std::move(descriptor));
        }
        const int reason = errno;
        descriptor = Descriptor();
        errno = reason;
        return nullptr;
    }

    std::optional<FileStamp> stamp(const std::string& path) override {
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
        return stampFrom(status);
    }

    std::optional<FilePlace> place(const std::string& path) override {
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
        FilePlace place{.volume = static_cast<std::uint64_t>(status.st_dev),
                        .diskRotates = rotates(status, path)};
        if (!place.diskRotates) return place;
        const Descriptor file = openForReading(path);
        // Files of one folder are numbered, and on most file systems stored, one after another.
        place.position =
            firstBlock(file.number()).value_or(static_cast<std::uint64_t>(status.st_ino));
        return place;
    }

private:
    /// Asked once of each volume.
    bool rotates(const struct stat& status, const std::string& path) {
        const std::lock_guard guard(lock_);
        const auto [found, isNew] = rotates_.try_emplace(status.st_dev);
        if (isNew) found->second = liesOnRotatingDisk(status, path);
        return found->second;
    }

    std::mutex lock_;
    std::map<dev_t, bool> rotates_;
};

}  // namespace

std::unique_ptr<FileContentReader> makeFileContentReader() {
    return std::make_unique<PosixFileContentReader>();
}

}  // namespace velto
