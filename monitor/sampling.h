#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/SystemCounters.h"

/// What the figures of a sample are made of. Pure: counters in, the sample's dictionaries out.
namespace velto::sampling {

/// Keeps its keys in the order in which they are given.
using Dictionary = nlohmann::ordered_json;

/// How far a counter of 32 bits has come, past its end if need be.
std::uint32_t ticksBetween(std::uint32_t before, std::uint32_t now);

/// How far a sum of counters has come. A smaller one is taken as one 32-bit wrap-around of one of
/// them, or as a fresh start when that would not explain it.
std::uint64_t bytesBetween(std::uint64_t before, std::uint64_t now);

/// The busy share of all processors between two readings, 0 to 100; nothing when no tick passed.
std::optional<double> processorShare(const ProcessorTicks& before, const ProcessorTicks& now);

/// "normal", "warning" or "critical": what the kernel says, else what swap and use let guess.
/// `percent` is the used share of physical memory, 0 to 100.
std::string_view pressureName(const MemoryCounters& memory, double percent);

/// Sizes in decimal gigabytes, shares from 0 to 100.
Dictionary memoryDictionary(const MemoryCounters& memory);
Dictionary diskDictionary(double total, double available);  // both in gigabytes
Dictionary thermalDictionary(ThermalState state, bool lowPower);
Dictionary batteryDictionary(const std::optional<BatteryCounters>& battery);

/// Counters of all interfaces together, and of what they are made up.
struct NetworkSums {
    std::uint64_t inBytes = 0;
    std::uint64_t outBytes = 0;
    std::string busiest;                  // the interface with the largest traffic so far
    std::vector<std::string> names;       // of all of them, in order
    std::vector<InterfaceCounters> wide;  // those whose counters never wrap around, by name
};
NetworkSums sumOf(const std::vector<InterfaceCounters>& interfaces);

/// Rates in bytes per second; `elapsed` is above 0. Sums over different interfaces say nothing
/// about traffic: when one came or went, this once nothing has passed.
///
/// A wide counter that has gone back has begun anew; then nothing is known of the traffic, which
/// `hasBegunAnew` tells.
Dictionary networkDictionary(const NetworkSums& before, const NetworkSums& now, double elapsed);
bool hasBegunAnew(const NetworkSums& before, const NetworkSums& now);

}  // namespace velto::sampling
