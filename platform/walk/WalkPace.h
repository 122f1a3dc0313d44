#pragma once

#include <cstddef>

#include "platform/processor_use.h"

namespace velto {

/// How many threads a walk takes. A walk of what lies in memory keeps a processor busy with each
/// thread, and more would get in each other's way; one of a disk that has to be asked waits nearly
/// all the time, and the disk answers many at once as quickly as one. Where others keep the
/// processors busy a walk waits as well, but takes nothing more from them.
class WalkPace {
public:
    /// It begins with `least` threads, one for each processor that the walk may keep busy, and goes
    /// up to `most`.
    WalkPace(std::size_t least, std::size_t most);

    /// The threads from now on, after `elapsed` seconds of which the process has used `spent.used`
    /// of all its processors, and its threads have stood in line for one for `spent.delayed`.
    std::size_t next(double elapsed, ProcessorUse spent);

    std::size_t threads() const { return threads_; }

    /// True when there is nothing to choose.
    bool isFixed() const { return least_ == most_; }

private:
    const std::size_t least_;
    const std::size_t most_;
    std::size_t threads_;
};

}  // namespace velto
