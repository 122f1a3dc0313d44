#include "platform/linux/power_supply.h"

#include <algorithm>
#include <cmath>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr double minutesPerHour = 60;
constexpr std::int64_t secondsPerMinute = 60;
constexpr double microPerUnit = 1e6;

bool isAttached(const std::string& folder) { return kernelLine(folder + "/scope") == "Device"; }

bool isMachinesBattery(const std::string& folder) {
    return kernelLine(folder + "/type") == "Battery" && !isAttached(folder) &&
           kernelNumber(folder + "/present").value_or(1) != 0;
}

/// What can feed the machine from outside: "USB", "USB_PD" and their like among it.
bool isAdapter(const std::string& folder) {
    const std::string type = kernelLine(folder + "/type").value_or("");
    return (type == "Mains" || type == "Wireless" || type == "BrickID" ||
            type.starts_with("USB")) &&
           !isAttached(folder);  // a port that feeds what is plugged in
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
    bool isEnergy = false;
};

std::optional<Charge> chargeOf(const std::string& folder) {
    for (const auto& [kind, flow] :
         {std::pair("/energy", "/power_now"), {"/charge", "/current_now"}}) {
        const auto now = amountIn(folder + kind + "_now");
        const auto full = amountIn(folder + kind + "_full");
        if (!now || !full || *full <= 0) continue;
        // Some drivers count what leaves the battery as negative.
        return Charge{.now = *now,
                      .full = *full,
                      .flow = std::abs(amountIn(folder + flow).value_or(0)),
                      .isEnergy = kind == std::string_view("/energy")};
    }
    return std::nullopt;
}

struct Battery {
    std::string folder;
    std::string status;
    std::optional<std::int64_t> percent;  // as the firmware counts
    std::optional<Charge> charge;
};

Battery readBattery(const std::string& folder) {
    return {.folder = folder,
            .status = kernelLine(folder + "/status").value_or(""),
            .percent = amountIn(folder + "/capacity"),
            .charge = chargeOf(folder)};
}

using Batteries = std::vector<Battery>;

bool anyIs(const Batteries& all, std::string_view status) {
    return std::ranges::any_of(all, [&](const Battery& one) { return one.status == status; });
}

bool allAre(const Batteries& all, std::string_view status) {
    return std::ranges::all_of(all, [&](const Battery& one) { return one.status == status; });
}

/// The charge as energy, by the battery's voltage; nothing where that is not told.
std::optional<Charge> energyOf(const Battery& battery) {
    if (!battery.charge || battery.charge->isEnergy) return battery.charge;
    auto microvolts = amountIn(battery.folder + "/voltage_min_design");
    if (!microvolts) microvolts = amountIn(battery.folder + "/voltage_now");
    if (!microvolts || *microvolts <= 0) return std::nullopt;
    const auto times = [&](std::int64_t amount) {
        const double energy =
            static_cast<double>(amount) * static_cast<double>(*microvolts) / microPerUnit;
        return static_cast<std::int64_t>(std::clamp(energy, -1e15, 1e15));
    };
    return Charge{times(battery.charge->now), times(battery.charge->full),
                  times(battery.charge->flow), true};
}

/// What all of them hold together, in one unit, and the flow of those that are `moving`; nothing
/// when one of them cannot be weighed beside the others.
std::optional<Charge> sumOf(const Batteries& all, std::string_view moving) {
    const bool sameUnit = std::ranges::all_of(all, [&](const Battery& one) {
        return one.charge && one.charge->isEnergy == all.front().charge->isEnergy;
    });
    Charge sum;
    for (const Battery& one : all) {
        const auto charge = sameUnit ? one.charge : energyOf(one);
        if (!charge) return std::nullopt;
        sum.now += charge->now;
        sum.full += charge->full;
        if (one.status == moving) sum.flow += charge->flow;
    }
    return sum;
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

void readOne(const Battery& only, BatteryCounters& battery) {
    if (only.percent) {
        battery.current = *only.percent;
        battery.maximum = 100;
    } else if (only.charge) {
        battery.current = only.charge->now;
        battery.maximum = only.charge->full;
    }
    const Charge known = only.charge.value_or(Charge{});
    battery.minutesToFull =
        estimate(only.folder + "/time_to_full_now", minutesFor(known.full - known.now, known.flow));
    battery.minutesToEmpty =
        estimate(only.folder + "/time_to_empty_now", minutesFor(known.now, known.flow));
}

/// A large battery weighs more than a small one. What they say themselves of their time is about
/// each alone, and one is used after the other.
void readSeveral(const Batteries& all, BatteryCounters& battery) {
    if (const auto sum = sumOf(all, battery.isCharging ? "Charging" : "Discharging")) {
        battery.current = sum->now;
        battery.maximum = sum->full;
        battery.minutesToFull = minutesFor(sum->full - sum->now, sum->flow);
        battery.minutesToEmpty = minutesFor(sum->now, sum->flow);
        return;
    }
    for (const Battery& one : all) {
        if (!one.percent) continue;
        battery.current += *one.percent;
        battery.maximum += 100;
    }
}

/// A battery that is not charged is on an adapter only when one is there. Where no adapter is
/// listed that could say so, one that is held at its level can be on nothing else.
bool isOnAdapter(const Batteries& batteries, const std::vector<std::string>& adapters) {
    if (anyIs(batteries, "Discharging")) return false;
    if (adapters.empty()) return anyIs(batteries, "Not charging");
    // 1 for a fixed voltage, 2 for one that is negotiated.
    return std::ranges::any_of(adapters, [](const std::string& folder) {
        return kernelNumber(folder + "/online").value_or(0) > 0;
    });
}

}  // namespace

std::optional<BatteryCounters> batteryIn(const std::string& sys) {
    const std::string supplies = sys + "/class/power_supply/";
    Batteries batteries;
    std::vector<std::string> adapters;
    for (const std::string& name : kernelNames(supplies)) {
        const std::string folder = supplies + name;
        if (isMachinesBattery(folder)) batteries.push_back(readBattery(folder));
        if (isAdapter(folder)) adapters.push_back(folder);
    }
    if (batteries.empty()) return std::nullopt;

    const bool draws = anyIs(batteries, "Discharging");
    BatteryCounters battery{.isCharged = allAre(batteries, "Full"),
                            .isCharging = !draws && anyIs(batteries, "Charging")};
    battery.powerSource = isOnAdapter(batteries, adapters) ? "AC Power" : "Battery Power";
    if (batteries.size() == 1) {
        readOne(batteries.front(), battery);
    } else {
        readSeveral(batteries, battery);
    }
    // On an adapter, at a standstill, the battery does not run empty.
    if (!draws && !battery.isCharging) battery.minutesToEmpty = -1;
    for (const Battery& one : batteries) {
        const auto cycles = kernelNumber(one.folder + "/cycle_count");
        if (!cycles || *cycles <= 0) continue;  // drivers that do not know say 0
        battery.cycles = std::max(battery.cycles.value_or(0), *cycles);
    }
    return battery;
}

bool isPowerSaved(const std::string& sys) {
    const std::string file = sys + "/firmware/acpi/platform_profile";
    if (const auto profile = kernelLine(file)) {
        if (*profile == "low-power") return true;
        if (*profile != "cool" && *profile != "quiet") return false;
        // The names of the same wish where the maker has no other.
        const std::string choices = kernelLine(file + "_choices").value_or("");
        std::string_view rest = choices;
        for (std::string_view word = nextWord(rest); !word.empty(); word = nextWord(rest)) {
            if (word == "low-power") return false;
        }
        return true;
    }
    return kernelLine(sys + "/devices/system/cpu/cpu0/cpufreq/energy_performance_preference") ==
           "power";
}

}  // namespace velto
