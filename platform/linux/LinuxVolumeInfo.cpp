#include "platform/linux/LinuxVolumeInfo.h"

#include <sys/statvfs.h>

#include "platform/posix/uninterrupted.h"

namespace velto {
namespace {

std::optional<struct statvfs> figuresOf(const std::string& path) {
    struct statvfs figures {};
    if (uninterrupted([&] { return statvfs(path.c_str(), &figures); }) != 0) return std::nullopt;
    if (figures.f_blocks == 0) return std::nullopt;  // a file system without blocks, like /proc
    return figures;
}

std::optional<std::int64_t> bytes(fsblkcnt_t blocks, unsigned long blockSize) {
    std::int64_t result = 0;
    if (__builtin_mul_overflow(blocks, blockSize, &result)) return std::nullopt;
    return result;
}

}  // namespace

std::optional<std::int64_t> LinuxVolumeInfo::totalCapacity(const std::string& path) const {
    const auto figures = figuresOf(path);
    return figures ? bytes(figures->f_blocks, figures->f_frsize) : std::nullopt;
}

std::optional<std::int64_t> LinuxVolumeInfo::availableCapacity(const std::string& path) const {
    const auto figures = figuresOf(path);
    return figures ? bytes(figures->f_bavail, figures->f_frsize) : std::nullopt;
}

}  // namespace velto
