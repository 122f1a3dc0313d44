#include "platform/linux/LinuxSystemCounters.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/linux/kernel_file.h"
#include "platform/linux/memory_counters.h"
#include "platform/linux/power_supply.h"

namespace velto {
namespace {

std::uint32_t wrapped(std::uint64_t ticks) { return static_cast<std::uint32_t>(ticks); }

/// The lines "cpu0", "cpu1" ...: the processors that are switched on.
int processorsIn(std::string_view stat) {
    int count = 0;
    while (!stat.empty()) {
        const std::string_view line = nextLine(stat);
        if (line.starts_with("cpu") && !line.starts_with("cpu ")) ++count;
    }
    return std::max(count, 1);
}

/// The memory that compressed swap takes: the third number of each mm_stat
/// (Documentation/admin-guide/blockdev/zram.rst of the kernel).
std::int64_t zramIn(const std::string& sys) {
    constexpr std::uint64_t mostBytes = std::uint64_t{1} << 50;  // of a device: no machine has more
    std::int64_t bytes = 0;
    const std::string devices = sys + "/block/";
    for (const std::string& name : kernelNames(devices)) {
        if (!name.starts_with("zram")) continue;
        const auto text = kernelLine(std::string(devices).append(name).append("/mm_stat"));
        if (!text) continue;
        std::string_view rest = *text;
        nextWord(rest);
        nextWord(rest);
        bytes += static_cast<std::int64_t>(std::min(unsignedNumber(nextWord(rest)), mostBytes));
    }
    return bytes;
}

/// A counter that the kernel may correct downwards by some ticks (of a hundredth of a second)
/// stands still until it is caught up with. One that is far behind has begun anew.
std::uint64_t steady(std::uint64_t before, std::uint64_t now) {
    constexpr std::uint64_t largestCorrection = 1'000;
    return now < before && before - now <= largestCorrection ? before : now;
}

}  // namespace

std::optional<ProcessorTicks> LinuxSystemCounters::processorTicks() {
    const auto text = kernelText(proc_ + "/stat");
    if (!text) return std::nullopt;
    std::string_view rest = *text;
    std::string_view line = nextLine(rest);
    if (nextWord(line) != "cpu") return std::nullopt;
    const auto next = [&line] { return unsignedNumber(nextWord(line)); };
    // proc_stat(5). Guests are part of user and nice already. What the host took away was not
    // there to be used: it counts as busy.
    const std::uint64_t user = next(), nice = next(), system = next(), idle = next(),
                        waiting = next(), interrupts = next(), softInterrupts = next(),
                        stolen = next();
    idle_ = steady(idle_, idle);
    waiting_ = steady(waiting_, waiting);
    processors_ = processorsIn(rest);
    return ProcessorTicks{.user = wrapped(user),
                          .system = wrapped(system + interrupts + softInterrupts + stolen),
                          .idle = wrapped(idle_ + waiting_),
                          .nice = wrapped(nice)};
}

int LinuxSystemCounters::processorCount() { return processors_; }

double LinuxSystemCounters::loadAverage() {
    const auto line = kernelLine(proc_ + "/loadavg");
    double load = 0;
    if (line) std::from_chars(line->data(), line->data() + line->size(), load);  // else 0
    return std::isfinite(load) ? load : 0;
}

std::optional<MemoryCounters> LinuxSystemCounters::memory() {
    const auto text = kernelText(proc_ + "/meminfo");
    auto memory = text ? memoryFrom(*text, zramIn(sys_)) : std::nullopt;
    if (!memory) return std::nullopt;
    if (const auto pressure = kernelText(proc_ + "/pressure/memory")) {
        memory->pressure = pressureFrom(*pressure);
    }
    return memory;
}

ThermalState LinuxSystemCounters::thermalState() { return sensors_.state(); }

std::optional<Temperature> LinuxSystemCounters::temperature() { return sensors_.temperature(); }

bool LinuxSystemCounters::isLowPowerModeOn() { return isPowerSaved(sys_); }

std::optional<BatteryCounters> LinuxSystemCounters::battery() { return batteryIn(sys_); }

std::optional<std::vector<InterfaceCounters>> LinuxSystemCounters::interfaces() {
    const auto text = kernelText(proc_ + "/net/dev");
    if (!text) return std::nullopt;
    return choice_.of(interfacesIn(*text));
}

std::optional<std::vector<DiskCounters>> LinuxSystemCounters::disks() {
    const auto text = kernelText(proc_ + "/diskstats");
    if (!text) return std::nullopt;
    return disks_.of(disksIn(*text));
}

GraphicsCounters LinuxSystemCounters::graphics() { return graphics_.read(); }

}  // namespace velto
