#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "platform/linux/kernel_file.h"
#include "platform/posix/FileCalls.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// What proc(5) tells of one mount, as it spells it.
struct Mount {
    std::string device;  // "8:1"
    std::string root;    // the part of the volume that is mounted
    std::string type;
    std::string source;
};

std::optional<Mount> mountWith(std::uint64_t number) {
    const auto text = kernelText("/proc/self/mountinfo");
    if (!text) return std::nullopt;
    for (std::string_view rest = *text; !rest.empty();) {
        std::string_view line = nextLine(rest);
        const std::string_view id = nextWord(line);
        if (id.empty() || unsignedNumber(id) != number) continue;
        Mount mount;
        nextWord(line);  // the mount above
        mount.device = nextWord(line);
        mount.root = nextWord(line);
        // A hyphen by itself ends the fields whose number varies.
        while (!line.empty() && nextWord(line) != "-") {
        }
        mount.type = nextWord(line);
        mount.source = nextWord(line);
        return mount;
    }
    return std::nullopt;
}

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
    const auto mounted = mountWith(number);
    if (!mounted) {
        errno = ENOENT;
        return -1;
    }
    std::string identifier = storedIdentifier(storageOf(*mounted));
    if (identifier.empty()) identifier = identifierOfFileSystem(folder);
    if (identifier.empty())
        identifier = mounted->source;  // of a network volume, where it comes from
    identity = validUtf8(fmt::format("{} {} {}", mounted->type, identifier, mounted->root));
    return 0;
}

}  // namespace velto
