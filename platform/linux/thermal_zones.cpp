#include <algorithm>

#include "platform/linux/ThermalSensors.h"
#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

// Firmware of some boards leaves made-up trip points behind (20.8 °C as the critical one is a
// common one), and drivers fill unset ones with figures below zero. Nothing is turned off below
// the first of these, and nothing that is worth a word slowed down below the second.
constexpr std::int64_t lowestCritical = 60'000;
constexpr std::int64_t lowestSlowing = 40'000;

void lower(std::optional<std::int64_t>& limit, std::int64_t value) {
    limit = std::min(limit.value_or(value), value);
}

ThermalLimits limitsOf(const std::string& zone) {
    ThermalLimits limits;
    for (int trip = 0;; ++trip) {
        const std::string start = zone + "/trip_point_" + std::to_string(trip);
        const auto type = kernelLine(start + "_type");
        if (!type) return limits;
        const auto temperature = kernelNumber(start + "_temp");
        if (!temperature) continue;
        if ((*type == "passive" || *type == "hot") && *temperature >= lowestSlowing) {
            lower(limits.slowing, *temperature);
        }
        if (*type == "critical" && *temperature >= lowestCritical) {
            lower(limits.critical, *temperature);
        }
    }
}

/// "x86_pkg_temp" on PCs, "cpu-thermal" or "cpu0-thermal" on most others.
Temperature::Part partOf(const std::string& type) {
    if (type == "x86_pkg_temp" || type.starts_with("cpu")) return Temperature::Part::processor;
    return type.starts_with("gpu") ? Temperature::Part::graphics : Temperature::Part::machine;
}

}  // namespace

std::vector<ThermalSensor> thermalZonesIn(const std::string& sys) {
    std::vector<ThermalSensor> found;
    const std::string zones = sys + "/class/thermal/";
    for (const std::string& name : kernelNames(zones)) {
        const std::string zone = zones + name;
        if (!name.starts_with("thermal_zone") || kernelLine(zone + "/mode") == "disabled") continue;
        found.push_back({.input = zone + "/temp",
                         .part = partOf(kernelLine(zone + "/type").value_or("")),
                         .limits = limitsOf(zone)});
    }
    return found;
}

}  // namespace velto
