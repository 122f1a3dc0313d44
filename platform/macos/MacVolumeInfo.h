#pragma once

#include "platform/VolumeInfo.h"

namespace velto {

class MacVolumeInfo final : public VolumeInfo {
public:
    std::optional<std::int64_t> totalCapacity(const std::string& path) const override;
    std::optional<std::int64_t> availableCapacity(const std::string& path) const override;
    std::optional<std::int64_t> reservedCapacity(const std::string& path) const override;
    std::optional<std::int64_t> purgeableCapacity(const std::string& path) const override;
    std::vector<MountedVolume> volumesBelow(const std::string& folder) const override;
};

}  // namespace velto
