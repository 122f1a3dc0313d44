#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// What the kernel tells of one mount (proc_pid_mountinfo(5)).
struct Mount {
    std::uint64_t number = 0;
    std::string device;  // "8:1"
    std::string root;    // the part of the volume that is mounted, as the table spells it
    std::string place;   // where, absolute
    std::string type;    // "ext4"
    std::string source;  // as the table spells it: a device, or where a network volume comes from
};

/// The mounts of a table; nothing when a line of it cannot be read.
std::optional<std::vector<Mount>> mountsIn(std::string_view table);

/// All that this process sees; nothing when they cannot be told.
std::optional<std::vector<Mount>> systemMounts();

/// The mount on which an absolute path lies; null when the table has none.
const Mount* mountOf(const std::vector<Mount>& mounts, std::string_view path);

/// Whether one of the mounts stands at an absolute path or below it.
bool holdsMount(const std::vector<Mount>& mounts, std::string_view path);

/// What is mounted below a folder and stored elsewhere than the folder itself, by place; of several
/// at one place the last one, which hides the others. Parts of the folder's own volume (a bind
/// mount, a subvolume) are left out: their space is that volume's.
std::vector<Mount> otherVolumesBelow(const std::vector<Mount>& mounts, std::string_view folder);

/// Whether asking the volume for its figures could wait for another machine, or for a program.
bool mayWait(const Mount& mount);

/// The same of whatever lies at an absolute path: on the way to it another volume may wait.
bool mayWait(const std::vector<Mount>& mounts, std::string_view path);

}  // namespace velto
