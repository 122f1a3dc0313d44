#include "platform/linux/ThermalSensors.h"

#include <algorithm>
#include <utility>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr std::int64_t degree = 1000;
constexpr std::int64_t nearSlowing = 10 * degree;
constexpr std::int64_t nearCritical = 5 * degree;
// Where no limit is set at which something is slowed down, so far below the critical one.
constexpr std::int64_t slowingBelowCritical = 15 * degree;
// What no part of a running computer has is what a broken sensor says, or one that sleeps (0).
constexpr std::int64_t coldest = 1 * degree;
constexpr std::int64_t hottest = 150 * degree;

ThermalState stateAt(std::int64_t temperature, const ThermalLimits& limits) {
    if (!limits.areKnown()) return ThermalState::nominal;
    const std::int64_t slowing =
        limits.slowing ? *limits.slowing : *limits.critical - slowingBelowCritical;
    // Never before it is slowed down, however near the two limits lie.
    if (limits.critical && temperature >= std::max(*limits.critical - nearCritical, slowing)) {
        return ThermalState::critical;
    }
    if (temperature >= slowing) return ThermalState::serious;
    return temperature >= slowing - nearSlowing ? ThermalState::fair : ThermalState::nominal;
}

std::optional<std::int64_t> readingOf(const ThermalSensor& sensor) {
    // Asking a device that sleeps would wake it up.
    if (!sensor.sleepsBy.empty() && kernelLine(sensor.sleepsBy) == "suspended") return std::nullopt;
    const auto temperature = kernelNumber(sensor.input);
    return temperature && *temperature >= coldest && *temperature <= hottest ? temperature
                                                                             : std::nullopt;
}

}  // namespace

void ThermalSensors::search() {
    sensors_.clear();
    for (ThermalSensor& zone : thermalZonesIn(sys_))
        sensors_.push_back({.sensor = std::move(zone), .isZone = true});
    for (ThermalSensor& sensor : hardwareSensorsIn(sys_))
        sensors_.push_back({.sensor = std::move(sensor)});
}

ThermalSensors::Heat ThermalSensors::read() {
    if (readings_ % readingsBetweenSearches == 0) search();
    const bool asksDevices = readings_ % readingsBetweenQuestions == 0;
    ++readings_;
    bool zonesTell = false;
    for (Known& one : sensors_) {
        if (!one.sensor.isOfDevice || asksDevices) one.last = readingOf(one.sensor);
        one.state = one.last ? stateAt(*one.last, one.sensor.limits) : ThermalState::nominal;
        if (one.isZone && one.last && one.sensor.limits.areKnown()) zonesTell = true;
    }
    Heat heat;
    for (Known& one : sensors_) {
        if (zonesTell && !one.isZone) one.state = ThermalState::nominal;
        heat.state = std::max(heat.state, one.state);
    }
    if (const Known* const one = told(heat.state)) {
        heat.temperature = Temperature{.celsius = static_cast<double>(*one->last) / degree,
                                       .part = one->sensor.part};
    }
    return heat;
}

/// The hottest of those that matter.
const ThermalSensors::Known* ThermalSensors::told(ThermalState worst) const {
    const auto weight = [&](const Known& one) {
        const bool isProcessor = one.sensor.part == Temperature::Part::processor;
        const int matters = worst > ThermalState::nominal ? (one.state == worst) : isProcessor;
        return std::pair(matters, *one.last);
    };
    const Known* found = nullptr;
    for (const Known& one : sensors_) {
        if (one.last && (found == nullptr || weight(one) > weight(*found))) found = &one;
    }
    return found;
}

}  // namespace velto
