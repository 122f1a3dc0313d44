#include "monitor/sampling.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/values/units.h"

namespace velto::sampling {
namespace {

constexpr std::uint64_t wrapAround = std::uint64_t{1} << 32;

// Without a word from the kernel: the used share of swap, and of memory in percent, that worries.
constexpr double criticalSwapShare = 0.75;
constexpr double worryingSwapShare = 0.4;
constexpr double worryingPercent = 92;

constexpr std::array<std::string_view, 3> pressureNames{"normal", "warning", "critical"};
constexpr std::array<std::string_view, 4> thermalNames{"nominal", "fair", "serious", "critical"};

template <typename Names, typename State>
constexpr std::string_view nameOf(const Names& names, State state) {
    return names[static_cast<std::size_t>(state)];
}

struct UsedMemory {
    std::int64_t app;
    std::int64_t total;
};

UsedMemory usedMemory(const MemoryCounters& memory) {
    const std::int64_t app = std::max<std::int64_t>(memory.internal - memory.purgeable, 0);
    return {app, app + memory.wired + memory.compressed};
}

double share(double part, double whole) { return whole > 0 ? part / whole * 100 : 0; }

std::string_view batteryState(const BatteryCounters& battery) {
    if (battery.isCharged) return "charged";
    if (battery.isCharging) return "charging";
    if (battery.powerSource.find("AC") != std::string::npos) return "ac";
    return "discharging";
}

}  // namespace

std::uint32_t ticksBetween(std::uint32_t before, std::uint32_t now) { return now - before; }

std::uint64_t bytesBetween(std::uint64_t before, std::uint64_t now) {
    if (now >= before) return now - before;
    const std::uint64_t lost = before - now;
    return lost <= wrapAround ? wrapAround - lost : 0;
}

std::optional<double> processorShare(const ProcessorTicks& before, const ProcessorTicks& now) {
    const std::uint64_t busy = std::uint64_t{ticksBetween(before.user, now.user)} +
                               ticksBetween(before.system, now.system) +
                               ticksBetween(before.nice, now.nice);
    const std::uint64_t total = busy + ticksBetween(before.idle, now.idle);
    if (total == 0) return std::nullopt;
    return std::clamp(share(static_cast<double>(busy), static_cast<double>(total)), 0.0, 100.0);
}

std::string_view pressureName(const MemoryCounters& memory, double percent) {
    if (memory.pressure) return nameOf(pressureNames, *memory.pressure);
    const double swapShare = memory.swapTotal > 0 ? static_cast<double>(memory.swapUsed) /
                                                        static_cast<double>(memory.swapTotal)
                                                  : 0;
    if (swapShare > criticalSwapShare) return "critical";
    return swapShare > worryingSwapShare || percent > worryingPercent ? "warning" : "normal";
}

Dictionary memoryDictionary(const MemoryCounters& memory) {
    const UsedMemory used = usedMemory(memory);
    const double percent =
        share(static_cast<double>(used.total), static_cast<double>(memory.physical));
    return {{"total", gigabytes(memory.physical)},
            {"used", gigabytes(std::min(used.total, memory.physical))},
            {"pct", percent},
            {"app", gigabytes(used.app)},
            {"wired", gigabytes(memory.wired)},
            {"compressed", gigabytes(memory.compressed)},
            {"cached", gigabytes(memory.cached)},
            {"pressure", pressureName(memory, percent)},
            {"swapUsed", gigabytes(memory.swapUsed)},
            {"swapTotal", gigabytes(memory.swapTotal)}};
}

Dictionary diskDictionary(double total, double available) {
    return {{"total", total},
            {"free", available},
            {"pct", std::min(share(total - available, total), 100.0)}};
}

Dictionary thermalDictionary(ThermalState state, bool lowPower) {
    return {{"state", nameOf(thermalNames, state)}, {"lowPower", lowPower}};
}

Dictionary batteryDictionary(const std::optional<BatteryCounters>& battery) {
    if (!battery) return {{"avail", false}};
    Dictionary result{{"avail", true}};
    if (battery->maximum >= 1) {
        result["pct"] = std::llround(
            share(static_cast<double>(battery->current), static_cast<double>(battery->maximum)));
    }
    result["state"] = batteryState(*battery);
    const std::int64_t minutes =
        battery->isCharging ? battery->minutesToFull : battery->minutesToEmpty;
    result["minutes"] = std::max<std::int64_t>(minutes, 0);
    if (battery->cycles) result["cycles"] = *battery->cycles;
    return result;
}

NetworkSums sumOf(const std::vector<InterfaceCounters>& interfaces) {
    NetworkSums sums;
    std::uint64_t most = 0;
    for (const InterfaceCounters& one : interfaces) {
        sums.inBytes += one.received;
        sums.outBytes += one.sent;
        sums.names.push_back(one.name);
        if (one.isWide) sums.wide.push_back(one);
        const std::uint64_t traffic = one.received + one.sent;
        if (!sums.busiest.empty() && traffic <= most) continue;
        sums.busiest = one.name;
        most = traffic;
    }
    std::sort(sums.names.begin(), sums.names.end());
    std::ranges::sort(sums.wide, {}, &InterfaceCounters::name);
    return sums;
}

bool hasBegunAnew(const NetworkSums& before, const NetworkSums& now) {
    return std::ranges::any_of(now.wide, [&](const InterfaceCounters& one) {
        const auto old =
            std::ranges::lower_bound(before.wide, one.name, {}, &InterfaceCounters::name);
        return old != before.wide.end() && old->name == one.name &&
               (one.received < old->received || one.sent < old->sent);
    });
}

Dictionary networkDictionary(const NetworkSums& before, const NetworkSums& now, double elapsed) {
    if (now.names.empty()) return {{"avail", false}};
    const bool comparable = before.names == now.names;
    const auto rate = [&](std::uint64_t old, std::uint64_t current) {
        return comparable ? static_cast<double>(bytesBetween(old, current)) / elapsed : 0.0;
    };
    return {{"avail", true},
            {"iface", now.busiest},
            {"down", rate(before.inBytes, now.inBytes)},
            {"up", rate(before.outBytes, now.outBytes)}};
}

}  // namespace velto::sampling
