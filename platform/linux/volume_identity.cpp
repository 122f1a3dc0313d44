#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "platform/linux/kernel_file.h"
#include "platform/linux/mount_table.h"
#include "platform/posix/FileCalls.h"

namespace velto {
namespace {

/// The device that the volume is stored on: of file systems with parts, which number each one as a
/// device of its own, by its file.
dev_t storageOf(const Mount& mount) {
    const std::size_t colon = mount.device.find(':');
    if (colon == std::string::npos) return 0;
    const auto major = unsignedNumber(mount.device);
    const auto minor = unsignedNumber(std::string_view(mount.device).substr(colon + 1));
    if (major != 0) return makedev(static_cast<unsigned>(major), static_cast<unsigned>(minor));
    struct stat status;
    const bool isDevice = ::stat(mount.source.c_str(), &status) == 0 && S_ISBLK(status.st_mode);
    return isDevice ? status.st_rdev : 0;
}

/// The identifier that the volume itself holds, under which the system's links name its device.
std::string storedIdentifier(dev_t storage) {
    if (storage == 0) return {};
    const std::string links = "/dev/disk/by-uuid";
    for (const std::string& name : kernelNames(links)) {
        struct stat status;
        if (::stat(fmt::format("{}/{}", links, name).c_str(), &status) != 0) continue;
        if (S_ISBLK(status.st_mode) && status.st_rdev == storage) return name;
    }
    return {};
}

/// Made by most file systems of the identifier that they hold, by some of the device's number.
std::string identifierOfFileSystem(int folder) {
    struct statfs figures;
    if (::fstatfs(folder, &figures) != 0) return {};
    std::array<std::uint32_t, 2> number{};
    static_assert(sizeof figures.f_fsid == sizeof number);
    std::memcpy(number.data(), &figures.f_fsid, sizeof number);
    if (number[0] == 0 && number[1] == 0) return {};
    return fmt::format("{:08x}{:08x}", number[0], number[1]);
}

}  // namespace

int FileCalls::volume(int folder, std::string& identity) {
    std::uint64_t number = 0;
    if (mount(folder, "", number) != 0) return -1;
    const auto mounts = systemMounts().value_or(std::vector<Mount>());
    const auto mounted = std::ranges::find(mounts, number, &Mount::number);
    if (mounted == mounts.end()) {
        errno = ENOENT;
        return -1;
    }
    std::string identifier = storedIdentifier(storageOf(*mounted));
    if (identifier.empty()) identifier = identifierOfFileSystem(folder);
    // Of a network volume, where it comes from.
    if (identifier.empty()) identifier = mounted->source;
    identity = fmt::format("{} {} {}", mounted->type, identifier, mounted->root);
    return 0;
}

}  // namespace velto
