#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/FileContent.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PosixBlockSharing.h"

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
};

}  // namespace

std::unique_ptr<FileContentReader> makeFileContentReader() {
    return std::make_unique<PosixFileContentReader>();
}

}  // namespace velto
