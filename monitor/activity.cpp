#include "monitor/activity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

namespace velto::sampling {
namespace {

constexpr double nanosecondsPerSecond = 1e9;

constexpr std::array<std::string_view, 4> partNames{"processor", "graphics", "disk", "machine"};

std::tuple<const std::string&, const std::string&, std::uint64_t> keyOf(const EngineTime& one) {
    return std::tie(one.device, one.engine, one.client);
}

}  // namespace

std::optional<DiskRates> diskRates(const std::vector<DiskCounters>& before,
                                   const std::vector<DiskCounters>& now, double elapsed) {
    DiskRates rates;
    for (const DiskCounters& disk : now) {
        const auto old = std::ranges::find(before, disk.name, &DiskCounters::name);
        if (old == before.end()) continue;
        if (disk.read < old->read || disk.written < old->written) return std::nullopt;
        rates.read += static_cast<double>(disk.read - old->read) / elapsed;
        rates.written += static_cast<double>(disk.written - old->written) / elapsed;
    }
    return rates;
}

std::optional<double> graphicsLoad(const GraphicsCounters& before, const GraphicsCounters& now,
                                   double elapsed) {
    std::map<std::tuple<std::string, std::string, std::uint64_t>, std::uint64_t> known;
    for (const EngineTime& one : before.engines)
        known.emplace(keyOf(one), one.nanoseconds);
    std::map<std::pair<std::string, std::string>, double> shares;
    for (const EngineTime& one : now.engines) {
        const auto old = known.find(keyOf(one));
        if (old == known.end()) continue;
        double& share = shares[{one.device, one.engine}];
        if (one.nanoseconds <= old->second) continue;
        share += static_cast<double>(one.nanoseconds - old->second) / nanosecondsPerSecond /
                 elapsed / std::max(one.units, 1) * 100;
    }
    std::optional<double> load = now.busy;
    for (const auto& [engine, share] : shares)
        load = std::max(load.value_or(0), share);
    return load ? std::optional(std::clamp(*load, 0.0, 100.0)) : std::nullopt;
}

Dictionary temperatureDictionary(const Temperature& temperature) {
    return {{"celsius", std::llround(temperature.celsius)},
            {"part", partNames[static_cast<std::size_t>(temperature.part)]}};
}

}  // namespace velto::sampling
