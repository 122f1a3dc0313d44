#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/SystemCounters.h"

namespace velto {

/// Memory as /proc/meminfo tells it; `zram` is what compressed swap in memory takes, in bytes.
/// docs/monitor.md has the reasoning. Nothing when the text has no total.
std::optional<MemoryCounters> memoryFrom(std::string_view meminfo, std::int64_t zram);

/// The level that the stalls of /proc/pressure/memory stand for; nothing when the text is none.
std::optional<MemoryPressure> pressureFrom(std::string_view pressure);

}  // namespace velto
