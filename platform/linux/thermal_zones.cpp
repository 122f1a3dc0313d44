#include <algorithm>
#include <optional>

#include "platform/linux/kernel_file.h"
#include "platform/linux/power_supply.h"

namespace velto {
namespace {

// In thousandths of a degree Celsius, as the kernel counts.
constexpr std::int64_t degree = 1000;
constexpr std::int64_t nearSlowing = 10 * degree;
constexpr std::int64_t nearCritical = 5 * degree;
// Where no limit is set at which the machine is slowed down, so far below the critical one.
constexpr std::int64_t slowingBelowCritical = 15 * degree;

struct Limits {
    std::optional<std::int64_t> slowing;   // from here on the kernel slows the machine down
    std::optional<std::int64_t> critical;  // here it turns the machine off
};

void lower(std::optional<std::int64_t>& limit, std::int64_t value) {
    limit = std::min(limit.value_or(value), value);
}

Limits limitsOf(const std::string& zone) {
    Limits limits;
    for (int trip = 0;; ++trip) {
        const std::string start = zone + "/trip_point_" + std::to_string(trip);
        const auto type = kernelLine(start + "_type");
        if (!type) return limits;
        const auto temperature = kernelNumber(start + "_temp");
        if (!temperature || *temperature <= 0) continue;  // a limit that is not set
        if (*type == "passive" || *type == "hot") lower(limits.slowing, *temperature);
        if (*type == "critical") lower(limits.critical, *temperature);
    }
}

ThermalState stateOf(const std::string& zone) {
    const auto temperature = kernelNumber(zone + "/temp");
    if (!temperature || kernelLine(zone + "/mode") == "disabled") return ThermalState::nominal;
    Limits limits = limitsOf(zone);
    if (limits.critical) {
        if (*temperature >= *limits.critical - nearCritical) return ThermalState::critical;
        if (!limits.slowing) limits.slowing = *limits.critical - slowingBelowCritical;
    }
    if (!limits.slowing) return ThermalState::nominal;  // a bare sensor says nothing of its limits
    if (*temperature >= *limits.slowing) return ThermalState::serious;
    return *temperature >= *limits.slowing - nearSlowing ? ThermalState::fair
                                                         : ThermalState::nominal;
}

}  // namespace

ThermalState thermalStateIn(const std::string& sys) {
    const std::string zones = sys + "/class/thermal/";
    ThermalState worst = ThermalState::nominal;
    for (const std::string& name : kernelNames(zones)) {
        if (!name.starts_with("thermal_zone")) continue;
        worst = std::max(worst, stateOf(zones + name));
    }
    return worst;
}

}  // namespace velto
