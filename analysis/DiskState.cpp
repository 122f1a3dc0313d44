#include "analysis/DiskState.h"

#include <algorithm>
#include <cmath>

namespace velto {

std::int64_t freeSpaceScore(double free, double total) {
    constexpr std::int64_t lowest = 5;
    constexpr std::int64_t highest = 99;
    if (!(total > 0)) return lowest;
    const double share = std::clamp(free / total, 0.0, 1.0);
    const double score = std::round(std::pow(share, 0.3) * 100);
    return std::clamp(static_cast<std::int64_t>(score), lowest, highest);
}

}  // namespace velto
