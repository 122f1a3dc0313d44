#pragma once

#include <optional>
#include <string>

#include "platform/SystemCounters.h"

namespace velto {

/// The machine's own batteries below /sys/class/power_supply as one: the level is that of what they
/// hold together, and when one of them is being emptied, so is the whole. Not those of a mouse or a
/// keyboard. `sys` is where sysfs is mounted.
std::optional<BatteryCounters> batteryIn(const std::string& sys);

/// The profile that saves power has been chosen, on the machine's firmware or its processor.
bool isPowerSaved(const std::string& sys);

}  // namespace velto
