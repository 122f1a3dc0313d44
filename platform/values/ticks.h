#pragma once

#include <cstdint>

namespace velto {

/// How long a tick of the processor's clock is: numerator / denominator nanoseconds. One on an
/// Intel Mac, 125 / 3 on Apple silicon.
struct TickLength {
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 1;
};

/// Rounded down, and exact for as many ticks as a machine can count in centuries.
constexpr std::uint64_t nanosecondsOf(std::uint64_t ticks, TickLength length) {
    if (length.denominator == 0) return ticks;  // the system could not tell
    const std::uint64_t whole = ticks / length.denominator;
    const std::uint64_t rest = ticks % length.denominator;
    return whole * length.numerator + rest * length.numerator / length.denominator;
}

}  // namespace velto
