#pragma once

#include <cstdint>
#include <string>

#include "platform/SystemCounters.h"
#include "platform/linux/GraphicsClients.h"
#include "platform/linux/ThermalSensors.h"
#include "platform/linux/disk_statistics.h"
#include "platform/linux/network_interfaces.h"

namespace velto {

/// Counters from procfs and sysfs, wherever these are mounted.
class LinuxSystemCounters final : public SystemCounters {
public:
    explicit LinuxSystemCounters(std::string proc = "/proc", const std::string& sys = "/sys")
        : proc_(std::move(proc)),
          sys_(sys),
          choice_(sys),
          sensors_(sys),
          disks_(sys),
          graphics_(proc_, sys) {}

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

private:
    std::string proc_;
    std::string sys_;
    InterfaceChoice choice_;
    ThermalSensors sensors_;
    DiskChoice disks_;
    GraphicsClients graphics_;
    // The kernel may count these two back by a little; here they never shrink.
    std::uint64_t idle_ = 0;
    std::uint64_t waiting_ = 0;
    int processors_ = 1;
};

}  // namespace velto
