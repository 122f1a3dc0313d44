#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velto {

/// A stored snapshot as its name and its length tell of it.
struct StoredSnapshot {
    std::int64_t moment = 0;  // seconds since 1970
    std::int64_t bytes = 0;
};

/// All snapshots together take no more than this.
inline constexpr std::int64_t mostGrowthBytes = 32 << 20;
inline constexpr std::size_t mostSnapshots = 50;

/// The moments that are kept no longer. Before the newest one: three days whole (twelve at most),
/// then one of each day up to two weeks, of each week up to three months, of each 30 days up to a
/// year, always the first of its time, so that what is left stays the same from day to day. When
/// the rest is too much, the oldest go too. The newest two stay whatever their age: without an
/// earlier one there is nothing to tell.
std::vector<std::int64_t> superfluousSnapshots(std::vector<StoredSnapshot> stored);

}  // namespace velto
