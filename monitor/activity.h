#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "monitor/process_groups.h"
#include "monitor/sampling.h"
#include "platform/SystemCounters.h"

/// What goes beyond a sample: disks, degrees, graphics, and what can be done about a group. Pure
/// but for the record.
namespace velto {

/// An application of the user's own that can be asked to quit, by the processes that nobody of it
/// has started.
struct QuittableApplication {
    std::int32_t pid = 0;  // of its group
    std::string name;
    std::vector<ProcessBeginning> processes;
};

/// What a monitor tells beside each sample.
struct Activity {
    sampling::Dictionary record;   // as the page is given it
    sampling::Dictionary details;  // the same: the groups by name, and what cannot be seen
    std::vector<QuittableApplication> quittable;
};

namespace sampling {

/// Bytes per second between memory and all disks together; nothing when a counter has begun anew.
/// What a disk that has just come has moved before is not counted. `elapsed` is above 0.
struct DiskRates {
    double read = 0;
    double written = 0;
};
std::optional<DiskRates> diskRates(const std::vector<DiskCounters>& before,
                                   const std::vector<DiskCounters>& now, double elapsed);

/// Percent of the busiest engine of the busiest graphics processor, as far as it is told; nothing
/// when it is not. Users that have just come, or whose counters go back, have used nothing.
std::optional<double> graphicsLoad(const GraphicsCounters& before, const GraphicsCounters& now,
                                   double elapsed);

Dictionary temperatureDictionary(const Temperature& temperature);

}  // namespace sampling
}  // namespace velto
