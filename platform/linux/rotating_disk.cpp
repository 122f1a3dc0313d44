#include "platform/linux/rotating_disk.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr int deepest = 16;  // devices made of devices; the kernel refuses circles

/// virtio_blk has no word for it and leaves the kernel's default, which is "rotating", whatever the
/// host stores the disk on (virtio 1.2, 5.2.4: block device configuration).
bool canTell(const std::string& disk) {
    std::error_code error;
    const auto driver = std::filesystem::read_symlink(disk + "/device/driver", error);
    return error || driver.filename() != "virtio_blk";
}

/// `device`: its folder below /sys, by any name.
bool rotatesAt(const std::string& device, int depth) {
    if (depth > deepest) return false;
    const auto below = kernelNames(device + "/slaves");
    if (!below.empty()) {
        return std::ranges::any_of(below, [&](const std::string& name) {
            return rotatesAt(fmt::format("{}/slaves/{}", device, name), depth + 1);
        });
    }
    const bool isPartition = ::access((device + "/partition").c_str(), F_OK) == 0;
    // The kernel follows the link before it goes up: a partition's folder lies in its disk's.
    const std::string disk = isPartition ? device + "/.." : device;
    return canTell(disk) && kernelNumber(disk + "/queue/rotational").value_or(0) == 1;
}

}  // namespace

bool diskRotates(const std::string& sys, unsigned major, unsigned minor) {
    return rotatesAt(fmt::format("{}/dev/block/{}:{}", sys, major, minor), 0);
}

}  // namespace velto
