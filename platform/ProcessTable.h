#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velto {

/// Where a process hangs in the tree of processes, and what it is called.
struct ProcInfo {
    std::int32_t ppid = 0;
    std::string name;
    bool isOwn = false;       // it runs as this user
    std::uint64_t start = 0;  // when it began, in the system's unit; with its number, it for good
};

/// Bytes that have passed between a process and the disks so far.
struct ProcessTraffic {
    std::uint64_t read = 0;
    std::uint64_t written = 0;

    bool operator==(const ProcessTraffic&) const = default;
};

/// What a process has used so far.
struct ProcessUsage {
    std::uint64_t time = 0;       // of processors, in nanoseconds, user and system together
    std::uint64_t footprint = 0;  // bytes of memory that would be free without it
    // Nothing where the system does not tell this user. On Linux as of the last time that the
    // process did anything.
    std::optional<ProcessTraffic> traffic;
};

/// A running application as the desktop knows it.
struct RunningApp {
    std::string name;
    std::string bundle;  // its identifier; empty when it has none
    std::string path;    // of its bundle, on Linux of its desktop entry; empty when it has none
    // One that people start and quit themselves, and not a part of the desktop.
    bool isForPeople = false;
};

/// The processes of the machine. One thread at a time; never throws: a process that ends while it
/// is looked at is left out.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// All processes that can be looked at but this one, by their id.
    virtual std::map<std::int32_t, ProcInfo> list() = 0;

    /// What a process of the last list has used; nothing when it is gone or none of ours to ask.
    virtual std::optional<ProcessUsage> usage(std::int32_t process) = 0;

    /// The absolute path of what a process of the last list runs; empty when it is not to be had.
    virtual std::string executablePath(std::int32_t process) = 0;

    /// By the id of each application's process. Linux counts every process that is known by itself
    /// to belong to an application; a Mac the one process of each.
    virtual std::map<std::int32_t, RunningApp> runningApps() = 0;

    /// The number of this process, which no list has.
    virtual std::int32_t ownProcess() const = 0;

    /// When the process that has this number now began, as `ProcInfo` has it; nothing when there is
    /// none. Safe from every thread.
    virtual std::optional<std::uint64_t> startOf(std::int32_t process) const = 0;
};

}  // namespace velto
