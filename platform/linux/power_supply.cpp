#include "platform/linux/power_supply.h"

#include <algorithm>
#include <cmath>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr double minutesPerHour = 60;
constexpr std::int64_t secondsPerMinute = 60;

bool isMachinesBattery(const std::string& folder) {
    return kernelLine(folder + "/type") == "Battery" &&
           kernelLine(folder + "/scope") != "Device" &&  // of something attached
           kernelNumber(folder + "/present").value_or(1) != 0;
}

bool hasAdapter(const std::string& supplies) {
    for (const std::string& name : kernelNames(supplies)) {
        const std::string folder = supplies + name;
        const auto type = kernelLine(folder + "/type");
        if ((type == "Mains" || type == "USB") && kernelNumber(folder + "/online") == 1) {
            return true;
        }
    }
    return false;
}

/// Nothing for what no battery holds; no sum or difference of two amounts leaves its range.
std::optional<std::int64_t> amountIn(const std::string& file) {
    constexpr std::int64_t most = 1'000'000'000'000'000;
    const auto number = kernelNumber(file);
    return number && *number >= -most && *number <= most ? number : std::nullopt;
}

/// Charge and flow in one unit: energy (µWh, µW) or charge (µAh, µA).
struct Charge {
    std::int64_t now = 0;
    std::int64_t full = 0;
    std::int64_t flow = 0;  // per hour; 0 when unknown
};

std::optional<Charge> chargeOf(const std::string& folder) {
    for (const auto& [kind, flow] :
         {std::pair("/energy", "/power_now"), {"/charge", "/current_now"}}) {
        const auto now = amountIn(folder + kind + "_now");
        const auto full = amountIn(folder + kind + "_full");
        if (!now || !full || *full <= 0) continue;
        // Some drivers count what leaves the battery as negative.
        return Charge{*now, *full, std::abs(amountIn(folder + flow).value_or(0))};
    }
    return std::nullopt;
}

std::int64_t minutesFor(std::int64_t amount, std::int64_t flow) {
    if (flow <= 0) return -1;
    return std::llround(static_cast<double>(std::max<std::int64_t>(amount, 0)) /
                        static_cast<double>(flow) * minutesPerHour);
}

std::int64_t estimate(const std::string& file, std::int64_t computed) {
    const auto seconds = kernelNumber(file);
    return seconds && *seconds > 0 ? *seconds / secondsPerMinute : computed;
}

void readCharge(const std::string& folder, BatteryCounters& battery) {
    const auto charge = chargeOf(folder);
    if (const auto percent = amountIn(folder + "/capacity")) {
        battery.current = *percent;
        battery.maximum = 100;
    } else if (charge) {
        battery.current = charge->now;
        battery.maximum = charge->full;
    }
    const Charge known = charge.value_or(Charge{});
    battery.minutesToFull =
        estimate(folder + "/time_to_full_now", minutesFor(known.full - known.now, known.flow));
    battery.minutesToEmpty =
        estimate(folder + "/time_to_empty_now", minutesFor(known.now, known.flow));
}

}  // namespace

std::optional<BatteryCounters> batteryIn(const std::string& sys) {
    const std::string supplies = sys + "/class/power_supply/";
    for (const std::string& name : kernelNames(supplies)) {
        const std::string folder = supplies + name;
        if (!isMachinesBattery(folder)) continue;
        const std::string status = kernelLine(folder + "/status").value_or("");
        BatteryCounters battery{.isCharged = status == "Full", .isCharging = status == "Charging"};
        const bool draws = status == "Discharging";
        battery.powerSource = !draws && (status == "Not charging" || hasAdapter(supplies))
                                  ? "AC Power"
                                  : "Battery Power";
        readCharge(folder, battery);
        // On an adapter, at a standstill, the battery does not run empty.
        if (!draws && !battery.isCharging) battery.minutesToEmpty = -1;
        const auto cycles = kernelNumber(folder + "/cycle_count");
        if (cycles && *cycles > 0) battery.cycles = *cycles;  // drivers that do not know say 0
        return battery;
    }
    return std::nullopt;
}

bool isPowerSaved(const std::string& sys) {
    const auto profile = kernelLine(sys + "/firmware/acpi/platform_profile");
    if (profile) return *profile == "low-power";
    return kernelLine(sys + "/devices/system/cpu/cpu0/cpufreq/energy_performance_preference") ==
           "power";
}

}  // namespace velto
