#include <sys/attr.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include <fmt/format.h>

#include "platform/posix/FileCalls.h"

namespace velto {

// A volume without an identifier of its own (a network volume, mostly) is known by where it comes
// from.
int FileCalls::volume(int folder, std::string& identity) {
    struct statfs figures;
    if (::fstatfs(folder, &figures) != 0) return -1;
    struct {
        std::uint32_t length;
        std::array<unsigned char, 16> identifier;
    } __attribute__((aligned(4), packed)) found{};
    struct attrlist wanted {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.volattr = ATTR_VOL_INFO | ATTR_VOL_UUID;
    if (::fgetattrlist(folder, &wanted, &found, sizeof found, 0) != 0 ||
        found.length < sizeof found) {
        identity = fmt::format("{} {}", figures.f_fstypename, figures.f_mntfromname);
        return 0;
    }
    identity = figures.f_fstypename;
    identity += ' ';
    for (const unsigned char byte : found.identifier) identity += fmt::format("{:02x}", byte);
    return 0;
}

}  // namespace velto
