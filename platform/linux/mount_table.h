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

/// Whether one of the mounts stands at an absolute path or below it.
bool holdsMount(const std::vector<Mount>& mounts, std::string_view path);

}  // namespace velto
