#pragma once

#include <optional>
#include <string>

#include "platform/SystemCounters.h"

namespace velto {

/// The machine's own battery below /sys/class/power_supply, the first by name; not those of a mouse
/// or a keyboard. `sys` is where sysfs is mounted.
std::optional<BatteryCounters> batteryIn(const std::string& sys);

/// The profile that saves power has been chosen, on the machine's firmware or its processor.
bool isPowerSaved(const std::string& sys);

/// How hot the hottest part is, by its own limits.
ThermalState thermalStateIn(const std::string& sys);

}  // namespace velto
