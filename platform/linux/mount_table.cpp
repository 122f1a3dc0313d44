#include "platform/linux/mount_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>

#include "platform/linux/kernel_file.h"
#include "platform/posix/foreign_file.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t longestTable = 16 << 20;  // in bytes; a machine has tens of mounts

bool isOctal(char digit) { return digit >= '0' && digit <= '7'; }

/// Blanks, line ends and backslashes stand in the table as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
    std::string text;
    while (!field.empty()) {
        if (field.size() >= 4 && field[0] == '\\' && isOctal(field[1]) && isOctal(field[2]) &&
            isOctal(field[3])) {
            text +=
                static_cast<char>((field[1] - '0') * 64 + (field[2] - '0') * 8 + (field[3] - '0'));
            field.remove_prefix(4);
        } else {
            text += field.front();
            field.remove_prefix(1);
        }
    }
    return text;
}

Mount mountIn(std::string_view line) {
    Mount mount;
    mount.number = unsignedNumber(nextWord(line));
    nextWord(line);  // the mount above
    mount.device = nextWord(line);
    mount.root = nextWord(line);
    mount.place = unescaped(nextWord(line));
    // A hyphen by itself ends the fields whose number varies.
    while (!line.empty() && nextWord(line) != "-") {
    }
    mount.type = nextWord(line);
    mount.source = nextWord(line);
    return mount;
}

}  // namespace

std::optional<std::vector<Mount>> mountsIn(std::string_view table) {
    std::vector<Mount> mounts;
    while (!table.empty()) {
        mounts.push_back(mountIn(nextLine(table)));
        if (!mounts.back().place.starts_with('/')) return std::nullopt;
    }
    return mounts;
}

std::optional<std::vector<Mount>> systemMounts() {
    const auto table = readForeignFile("/proc/self/mountinfo", longestTable);
    return table ? mountsIn(*table) : std::nullopt;
}

/// The longest place above it, the last one there.
const Mount* mountOf(const std::vector<Mount>& mounts, std::string_view path) {
    const Mount* found = nullptr;
    for (const Mount& mount : mounts) {
        if (!isAtOrBelow(path, mount.place)) continue;
        if (found == nullptr || mount.place.size() >= found->place.size()) found = &mount;
    }
    return found;
}

bool holdsMount(const std::vector<Mount>& mounts, std::string_view path) {
    return std::ranges::any_of(mounts,
                               [&](const Mount& mount) { return isAtOrBelow(mount.place, path); });
}

std::vector<Mount> otherVolumesBelow(const std::vector<Mount>& mounts, std::string_view folder) {
    std::map<std::string, const Mount*> atPlace;
    for (const Mount& mount : mounts) {
        if (mount.place != folder && isAtOrBelow(mount.place, folder))
            atPlace[mount.place] = &mount;
    }
    const Mount* const under = mountOf(mounts, folder);
    const std::string_view own = under == nullptr ? std::string_view() : under->device;
    std::vector<Mount> others;
    for (const auto& [place, mount] : atPlace) {
        if (mount->device != own) others.push_back(*mount);
    }
    return others;
}

bool mayWait(const Mount& mount) {
    constexpr auto networks = std::to_array<std::string_view>(
        {"nfs", "nfs4", "cifs", "smb3", "smbfs", "9p", "afs", "ceph", "coda", "autofs", "fuse"});
    // A program behind a FUSE volume may be gone, or ask another machine; "fuseblk" is a disk.
    return std::ranges::find(networks, mount.type) != networks.end() ||
           mount.type.starts_with("fuse.");
}

bool mayWait(const std::vector<Mount>& mounts, std::string_view path) {
    return std::ranges::any_of(mounts, [path](const Mount& mount) {
        return isAtOrBelow(path, mount.place) && mayWait(mount);
    });
}

}  // namespace velto
