#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velto {

/// Figures of the volume that holds a path. Blocking; safe from every thread.
class VolumeInfo {
public:
    virtual ~VolumeInfo() = default;

    /// Bytes; nothing when the system does not say.
    virtual std::optional<std::int64_t> totalCapacity(const std::string& path) const = 0;

    /// Bytes that an important use could have: on a Mac what the system would free for it, on
    /// Linux what an unprivileged user can write.
    virtual std::optional<std::int64_t> availableCapacity(const std::string& path) const = 0;
};

}  // namespace velto
