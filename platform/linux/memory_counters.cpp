#include "platform/linux/memory_counters.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr std::int64_t bytesPerKilobyte = 1024;  // proc_meminfo(5) says kB and means KiB
// More than any machine has, and little enough for some of them to be added up.
constexpr std::uint64_t mostKilobytes = std::uint64_t{1} << 50;

// Percent of the last ten seconds. Above the first, some work waited for memory: the machine is
// slower than it could be. Above the second nothing at all went on meanwhile.
constexpr double worryingStall = 10;
constexpr double criticalStall = 10;

class Fields {
public:
    explicit Fields(std::string_view meminfo) {
        while (!meminfo.empty()) {
            std::string_view line = nextLine(meminfo);
            std::string_view name = nextWord(line);
            if (!name.ends_with(':')) continue;
            name.remove_suffix(1);
            const std::uint64_t count = std::min(unsignedNumber(nextWord(line)), mostKilobytes);
            bytes_[name] = static_cast<std::int64_t>(count) * bytesPerKilobyte;
        }
    }

    bool has(std::string_view name) const { return bytes_.contains(name); }
    std::int64_t operator[](std::string_view name) const {
        const auto found = bytes_.find(name);
        return found == bytes_.end() ? 0 : found->second;
    }

private:
    std::unordered_map<std::string_view, std::int64_t> bytes_;
};

/// Files in memory and what the kernel remembers of them, which it gives back when asked. `Cached`
/// holds shared memory too, which it cannot.
std::int64_t reclaimableIn(const Fields& fields) {
    return fields["Buffers"] + std::max<std::int64_t>(fields["Cached"] - fields["Shmem"], 0) +
           fields["SReclaimable"];
}

/// The ten-second average of the line that begins with `kind`.
std::optional<double> stall(std::string_view pressure, std::string_view kind) {
    constexpr std::string_view label = "avg10=";
    while (!pressure.empty()) {
        std::string_view line = nextLine(pressure);
        if (nextWord(line) != kind) continue;
        std::string_view value = nextWord(line);
        if (!value.starts_with(label)) return std::nullopt;
        value.remove_prefix(label.size());
        double percent = 0;
        const auto [end, error] =
            std::from_chars(value.data(), value.data() + value.size(), percent);
        return error == std::errc() ? std::optional(percent) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

std::optional<MemoryCounters> memoryFrom(std::string_view meminfo, std::int64_t zram) {
    const Fields fields(meminfo);
    const std::int64_t total = fields["MemTotal"];
    if (total <= 0) return std::nullopt;
    const std::int64_t free = std::clamp<std::int64_t>(fields["MemFree"], 0, total);

    MemoryCounters memory{.physical = total};
    memory.cached = std::clamp<std::int64_t>(reclaimableIn(fields), 0, total - free);
    const std::int64_t used = total - free - memory.cached;
    memory.compressed = std::clamp<std::int64_t>(fields["Zswap"] + zram, 0, used);
    memory.internal = std::clamp<std::int64_t>(fields["AnonPages"] + fields["Shmem"], 0,
                                               used - memory.compressed);
    // No list of the kernel's own fields is complete: what drivers hold has none.
    memory.wired = used - memory.compressed - memory.internal;
    memory.swapTotal = fields["SwapTotal"];
    memory.swapUsed = std::max<std::int64_t>(memory.swapTotal - fields["SwapFree"], 0);
    return memory;
}

std::optional<MemoryPressure> pressureFrom(std::string_view pressure) {
    const auto some = stall(pressure, "some");
    if (!some) return std::nullopt;
    if (stall(pressure, "full").value_or(0) >= criticalStall) return MemoryPressure::critical;
    return *some >= worryingStall ? MemoryPressure::warning : MemoryPressure::normal;
}

}  // namespace velto
