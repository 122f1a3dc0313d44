#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velto {

/// Cumulative ticks of all processors together since the machine started, in the system's own unit.
/// They wrap around at 32 bits.
struct ProcessorTicks {
    std::uint32_t user = 0;
    std::uint32_t system = 0;
    std::uint32_t idle = 0;
    std::uint32_t nice = 0;
};

/// What the kernel itself says of the pressure on memory.
enum class MemoryPressure { normal, warning, critical };

/// Physical memory and what it is used for, in bytes.
struct MemoryCounters {
    std::int64_t physical = 0;
    std::int64_t internal = 0;    // memory of processes, not backed by files
    std::int64_t purgeable = 0;   // the part of it that may be dropped at any time
    std::int64_t wired = 0;       // of the kernel, never given back
    std::int64_t compressed = 0;  // held by the compressor
    std::int64_t cached = 0;      // content of files that can be given back at once
    std::int64_t swapUsed = 0;    // 0 where swap is unknown
    std::int64_t swapTotal = 0;
    std::optional<MemoryPressure> pressure;  // nothing when the system does not say
};

enum class ThermalState { nominal, fair, serious, critical };

/// A battery as the system describes it.
struct BatteryCounters {
    std::int64_t current = 0;  // charge, in the same unit as `maximum`
    std::int64_t maximum = 0;  // 0 when unknown
    bool isCharged = false;
    bool isCharging = false;
    std::string powerSource;  // what feeds the machine; holds "AC" when a power adapter does
    // Minutes; negative when the system is still estimating.
    std::int64_t minutesToFull = -1;
    std::int64_t minutesToEmpty = -1;
    std::optional<std::int64_t> cycles;  // how often it has been charged
};

/// Cumulative bytes of one network interface.
struct InterfaceCounters {
    std::string name;
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    // 64 bits, which never wrap around: a smaller one has begun anew. A Mac's wrap at 32 bits.
    bool isWide = false;
};

/// Cumulative bytes that have passed between memory and one disk that is a piece of hardware.
struct DiskCounters {
    std::string name;
    std::uint64_t read = 0;
    std::uint64_t written = 0;
};

/// How hot something in the machine is.
struct Temperature {
    enum class Part { processor, graphics, disk, machine };

    double celsius = 0;
    Part part = Part::machine;
};

/// What one user of a graphics processor has had of one of its engines so far.
struct EngineTime {
    std::string device;  // which graphics processor
    std::string engine;
    std::uint64_t client = 0;       // tells the device's users apart
    std::uint64_t nanoseconds = 0;  // all units of the engine together
    int units = 1;                  // of this engine that the device has
};

/// How busy the graphics processors are.
struct GraphicsCounters {
    std::optional<double> busy;       // percent of the busiest one, where its driver says so
    std::vector<EngineTime> engines;  // where it does not: of those users that may be asked
};

/// Raw counters of the machine. Nothing is computed from them here. Blocking for milliseconds at
/// most; one thread at a time; never throws: what cannot be read is nothing, empty or 0.
class SystemCounters {
public:
    virtual ~SystemCounters() = default;

    virtual std::optional<ProcessorTicks> processorTicks() = 0;
    virtual int processorCount() = 0;  // at least 1
    virtual double loadAverage() = 0;  // over one minute

    virtual std::optional<MemoryCounters> memory() = 0;

    /// Nominal where nothing measures it, as a Mac without such a sensor answers.
    virtual ThermalState thermalState() = 0;
    virtual bool isLowPowerModeOn() = 0;

    /// Of what the thermal state is about; the processor's while nothing is hot. Nothing where no
    /// sensor can be read.
    virtual std::optional<Temperature> temperature() = 0;

    /// Nothing on a machine without a battery.
    virtual std::optional<BatteryCounters> battery() = 0;

    /// The interfaces through which the machine talks to others. What passes through several of
    /// them is counted at one. Nothing when the counters cannot be read.
    virtual std::optional<std::vector<InterfaceCounters>> interfaces() = 0;

    /// The disks themselves, not their partitions nor what is made of several. Nothing when the
    /// counters cannot be read, empty where there is no disk.
    virtual std::optional<std::vector<DiskCounters>> disks() = 0;

    /// Both parts empty where nothing tells.
    virtual GraphicsCounters graphics() = 0;
};

}  // namespace velto
