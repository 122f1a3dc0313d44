#include <algorithm>
#include <array>

#include "platform/linux/ThermalSensors.h"
#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

/// A driver, and which of its limits mean what (Documentation/hwmon of the kernel, and that of the
/// driver of AMD's graphics processors). `max` of a processor is where its fan should run, long
/// before it slows itself down at `crit`; of a disk it is where the disk may begin to.
struct Driver {
    std::string_view name;
    Temperature::Part part;
    std::array<std::string_view, 2> slowing;  // the first that is given
    std::string_view critical;                // empty: none
    bool isOfDevice = false;
};

using enum Temperature::Part;

constexpr std::array<Driver, 5> drivers{{
    {"coretemp", processor, {"crit", "max"}, "", false},
    {"k10temp", processor, {"crit", "max"}, "", false},
    {"zenpower", processor, {"crit", "max"}, "", false},
    {"amdgpu", graphics, {"crit", "max"}, "emergency", false},
    {"nvme", disk, {"max", ""}, "crit", true},
}};

// Disks that know no limit give 65261.8 °C or -273.1 °C.
constexpr std::int64_t lowestLimit = 40'000;
constexpr std::int64_t highestLimit = 150'000;

std::optional<std::int64_t> limitIn(const std::string& sensor, std::string_view kind) {
    if (kind.empty()) return std::nullopt;
    const auto limit = kernelNumber(sensor + "_" + std::string(kind));
    return limit && *limit >= lowestLimit && *limit <= highestLimit ? limit : std::nullopt;
}

ThermalLimits limitsOf(const std::string& sensor, const Driver& driver) {
    ThermalLimits limits{.slowing = limitIn(sensor, driver.slowing[0]),
                         .critical = limitIn(sensor, driver.critical)};
    if (!limits.slowing) limits.slowing = limitIn(sensor, driver.slowing[1]);
    return limits;
}

/// The first sensor is that of the whole: "Package id 0", "Tctl", "edge", "Composite".
void addSensor(const std::string& folder, const Driver& driver, std::vector<ThermalSensor>& found) {
    const std::string sensor = folder + "/temp1";
    const std::string input = sensor + "_input";
    if (!kernelLine(sensor + "_label") && !kernelLine(input)) return;
    found.push_back({.input = input,
                     .part = driver.part,
                     .limits = limitsOf(sensor, driver),
                     .sleepsBy = driver.part == processor ? std::string()
                                                          : folder + "/device/power/runtime_status",
                     .isOfDevice = driver.isOfDevice});
}

}  // namespace

std::vector<ThermalSensor> hardwareSensorsIn(const std::string& sys) {
    std::vector<ThermalSensor> found;
    const std::string folders = sys + "/class/hwmon/";
    for (const std::string& entry : kernelNames(folders)) {
        const std::string folder = folders + entry;
        const auto name = kernelLine(folder + "/name");
        if (!name) continue;
        const auto* const driver = std::ranges::find(drivers, *name, &Driver::name);
        if (driver != drivers.end()) addSensor(folder, *driver, found);
    }
    return found;
}

}  // namespace velto
