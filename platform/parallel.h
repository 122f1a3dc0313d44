#pragma once

#include <cstddef>
#include <functional>

namespace velto {

/// Calls `work(index, thread)` once for each index below `count`, on up to `threads` threads at
/// once (0: one per processor), in the order of the indices as far as threads have an order.
/// `thread` counts from 0 and tells apart what runs at once. Returns when all calls have ended. The
/// first exception ends the rest early and is rethrown. With one thread, or one index, everything
/// runs on the caller's.
void forEachInParallel(std::size_t count, std::size_t threads,
                       const std::function<void(std::size_t index, std::size_t thread)>& work);

/// One per processor, at least one.
std::size_t processorCount();

}  // namespace velto
