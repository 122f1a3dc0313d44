#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velto {

/// Another file system that is mounted somewhere below a folder.
struct MountedVolume {
    std::string path;                  // where, absolute
    std::optional<std::int64_t> used;  // bytes; nothing when asking could wait for a network

    bool operator==(const MountedVolume&) const = default;
};

/// Figures of the volume that holds a path. Blocking; safe from every thread.
class VolumeInfo {
public:
    virtual ~VolumeInfo() = default;

    /// Bytes; nothing when the system does not say.
    virtual std::optional<std::int64_t> totalCapacity(const std::string& path) const = 0;

    /// Bytes that an important use could have: on a Mac what the system would free for it, on
    /// Linux what an unprivileged user can write.
    virtual std::optional<std::int64_t> availableCapacity(const std::string& path) const = 0;

    /// Bytes that are free and that no ordinary user can write: they count as used in the figures
    /// above. Nothing when the system does not say, or keeps none.
    virtual std::optional<std::int64_t> reservedCapacity(const std::string& path) const = 0;

    /// Bytes of the available ones that are in use now, and that the system gives back by itself
    /// when they are needed. Nothing as above.
    virtual std::optional<std::int64_t> purgeableCapacity(const std::string& path) const = 0;

    /// The file systems that are mounted below a folder and whose space is not that of the folder's
    /// own volume, by path. Waits for no network. Those without blocks are left out.
    virtual std::vector<MountedVolume> volumesBelow(const std::string& folder) const = 0;
};

}  // namespace velto
