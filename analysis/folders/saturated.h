#pragma once

#include <cstdint>
#include <limits>

namespace velto {

/// The sum of two sizes. A file system may claim more than all disks hold: a sum must not wrap.
inline std::int64_t saturatedSum(std::int64_t left, std::int64_t right) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(left, right, &sum)) return sum;
    return std::numeric_limits<std::int64_t>::max();
}

}  // namespace velto
