#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/SystemCounters.h"

namespace velto {

/// In thousandths of a degree Celsius, as the kernel counts.
struct ThermalLimits {
    std::optional<std::int64_t> slowing;   // from here on something is slowed down
    std::optional<std::int64_t> critical;  // here it is turned off

    bool areKnown() const { return slowing || critical; }
};

/// Something that measures, and where.
struct ThermalSensor {
    std::string input;  // the file that holds its temperature
    Temperature::Part part = Temperature::Part::machine;
    ThermalLimits limits;
    std::string sleepsBy;  // the device's file that says "suspended"; empty for one that never is
    bool isOfDevice = false;  // the device itself has to be asked, which costs it time
};

/// The enabled zones below `sys`/class/thermal, with those of their trip points that can be true.
std::vector<ThermalSensor> thermalZonesIn(const std::string& sys);

/// The sensors of processors, graphics processors and NVMe disks below `sys`/class/hwmon, as far as
/// their drivers' documentation says what their limits mean. Disks that turn are not asked: that
/// may keep them from sleeping.
std::vector<ThermalSensor> hardwareSensorsIn(const std::string& sys);

/// How hot the machine is, by its own limits: the thermal zones say, and where none of them has a
/// limit, the sensors of the hardware. Sensors are looked for now and then, as they hardly change.
class ThermalSensors {
public:
    /// `sys` is where sysfs is mounted.
    explicit ThermalSensors(std::string sys) : sys_(std::move(sys)) {}

    /// Of the hottest by its limits; nominal where nothing has any.
    ThermalState state() { return read().state; }

    /// Of what is hot; of the processor while nothing is, and of the hottest that can be read where
    /// there is no sensor of the processor.
    std::optional<Temperature> temperature() { return read().temperature; }

    static constexpr int readingsBetweenSearches = 60;
    static constexpr int readingsBetweenQuestions = 10;  // of those that ask a device

private:
    struct Known {
        ThermalSensor sensor;
        bool isZone = false;
        std::optional<std::int64_t> last;
        ThermalState state = ThermalState::nominal;
    };
    struct Heat {
        ThermalState state = ThermalState::nominal;
        std::optional<Temperature> temperature;
    };

    Heat read();
    void search();
    const Known* told(ThermalState worst) const;

    std::string sys_;
    std::vector<Known> sensors_;
    int readings_ = 0;
};

}  // namespace velto
