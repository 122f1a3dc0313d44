#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemCounters.h"

namespace velto {

/// Every line of /proc/diskstats, whatever it is (Documentation/admin-guide/iostats.rst of the
/// kernel).
std::vector<DiskCounters> disksIn(std::string_view diskstats);

/// Tells the disks that are pieces of hardware from what would count their bytes once more:
/// partitions, what is mapped or put together from several (dm, md), loops, memory as a disk.
class DiskChoice {
public:
    /// `sys` is where sysfs is mounted.
    explicit DiskChoice(std::string sys) : sys_(std::move(sys)) {}

    /// Those of `all` that count; nothing where sysfs does not say. Asks the system only when the
    /// names have changed.
    std::optional<std::vector<DiskCounters>> of(std::vector<DiskCounters> all);

private:
    bool isHardware(const std::string& name) const;

    std::string sys_;
    std::vector<std::string> known_;     // all names of the last call
    std::vector<std::string> counting_;  // of these
    bool canTell_ = false;
};

}  // namespace velto
