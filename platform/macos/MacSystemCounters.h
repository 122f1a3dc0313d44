#pragma once

#include "platform/SystemCounters.h"

namespace velto {

/// Counters from mach, sysctl, IOKit and the interface list.
class MacSystemCounters final : public SystemCounters {
public:
    std::optional<ProcessorTicks> processorTicks() override;
    int processorCount() override;
    double loadAverage() override;
    std::optional<MemoryCounters> memory() override;
    ThermalState thermalState() override;
    bool isLowPowerModeOn() override;
    std::optional<BatteryCounters> battery() override;
    std::optional<std::vector<InterfaceCounters>> interfaces() override;
};

}  // namespace velto
