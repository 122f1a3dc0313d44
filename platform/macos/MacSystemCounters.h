#pragma once

#include "platform/SystemCounters.h"

namespace velto {

/// Counters from mach, sysctl, IOKit and the interface list. A Mac has no public interface for
/// degrees and for the load of its graphics processor; there is nothing of these.
class MacSystemCounters final : public SystemCounters {
public:
    std::optional<ProcessorTicks> processorTicks() override;
    int processorCount() override;
    double loadAverage() override;
    std::optional<MemoryCounters> memory() override;
    ThermalState thermalState() override;
    bool isLowPowerModeOn() override;
    std::optional<Temperature> temperature() override;
    std::optional<BatteryCounters> battery() override;
    std::optional<std::vector<InterfaceCounters>> interfaces() override;
    std::optional<std::vector<DiskCounters>> disks() override;
    GraphicsCounters graphics() override;
};

}  // namespace velto
