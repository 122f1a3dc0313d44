#pragma once

#include <map>
#include <string>

#include "platform/ProcessTable.h"
#include "platform/SystemCounters.h"

namespace velto {

/// Counters that the test sets: a machine with one busy interface, without a battery.
class FakeSystemCounters final : public SystemCounters {
public:
    std::optional<ProcessorTicks> processorTicks() override { return ticks; }
    int processorCount() override { return cores; }
    double loadAverage() override { return load; }
    std::optional<MemoryCounters> memory() override { return memoryCounters; }
    ThermalState thermalState() override { return thermal; }
    bool isLowPowerModeOn() override { return lowPower; }
    std::optional<BatteryCounters> battery() override { return batteryCounters; }
    std::optional<std::vector<InterfaceCounters>> interfaces() override { return links; }
    std::optional<Temperature> temperature() override { return heat; }
    std::optional<std::vector<DiskCounters>> disks() override { return drives; }
    GraphicsCounters graphics() override { return graphicsCounters; }

    std::optional<ProcessorTicks> ticks = ProcessorTicks{100, 50, 800, 50};
    int cores = 4;
    double load = 1.5;
    std::optional<MemoryCounters> memoryCounters = MemoryCounters{.physical = 16'000'000'000,
                                                                  .internal = 6'000'000'000,
                                                                  .purgeable = 1'000'000'000,
                                                                  .wired = 2'000'000'000,
                                                                  .compressed = 1'000'000'000,
                                                                  .cached = 3'000'000'000};
    ThermalState thermal = ThermalState::nominal;
    bool lowPower = false;
    std::optional<BatteryCounters> batteryCounters;
    std::optional<std::vector<InterfaceCounters>> links =
        std::vector<InterfaceCounters>{{"en0", 1'000, 500}};
    std::optional<Temperature> heat;
    std::optional<std::vector<DiskCounters>> drives;
    GraphicsCounters graphicsCounters;
};

/// A made table of processes.
class FakeProcessTable final : public ProcessTable {
public:
    struct Process {
        ProcInfo info;
        ProcessUsage usage;
        std::string executable;
        bool canBeAsked = true;
    };

    std::map<std::int32_t, ProcInfo> list() override {
        ++lists;
        std::map<std::int32_t, ProcInfo> all;
        for (const auto& [process, entry] : processes)
            all.emplace(process, entry.info);
        return all;
    }
    std::optional<ProcessUsage> usage(std::int32_t process) override {
        const auto found = processes.find(process);
        if (found == processes.end() || !found->second.canBeAsked) return std::nullopt;
        return found->second.usage;
    }
    std::string executablePath(std::int32_t process) override {
        const auto found = processes.find(process);
        return found == processes.end() ? std::string() : found->second.executable;
    }
    std::map<std::int32_t, RunningApp> runningApps() override { return apps; }
    std::int32_t ownProcess() const override { return 77; }
    std::optional<std::uint64_t> startOf(std::int32_t process) const override {
        const auto found = processes.find(process);
        if (found == processes.end()) return std::nullopt;
        return found->second.info.start;
    }

    /// A process with so many mebibytes.
    Process& add(std::int32_t process, std::int32_t parent, const std::string& name,
                 std::uint64_t mebibytes = 1) {
        return processes[process] = {.info = {.ppid = parent, .name = name},
                                     .usage = {.time = 0, .footprint = mebibytes << 20},
                                     .executable = ""};
    }

    std::map<std::int32_t, Process> processes;
    std::map<std::int32_t, RunningApp> apps;
    int lists = 0;
};

}  // namespace velto
