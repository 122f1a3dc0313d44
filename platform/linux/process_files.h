#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/ProcessTable.h"

namespace velto {

/// What /proc/<pid>/stat tells of a process (proc_pid_stat(5)).
struct ProcessStatus {
    std::string_view command;  // at most 15 bytes; points into the text
    char state = '?';
    std::int32_t parent = 0;
    std::uint64_t faults = 0;    // pages that came into memory or were made, so far
    std::uint64_t ticks = 0;     // of processors, user and system, so far
    std::uint64_t start = 0;     // ticks after the machine's start
    std::uint64_t resident = 0;  // pages

    bool hasEnded() const { return state == 'Z' || state == 'X'; }
};

/// Nothing when the text is not such a line.
std::optional<ProcessStatus> processStatusIn(std::string_view text);

/// Bytes that would be free without the process, from /proc/<pid>/status: its own memory, in place
/// and swapped out, without files and without what it shares. 0 for a thread of the kernel.
std::uint64_t footprintIn(std::string_view status);

/// What a process had the disks read and write, from /proc/<pid>/io (proc_pid_io(5)); nothing when
/// the text has no such lines.
std::optional<ProcessTraffic> processTrafficIn(std::string_view io);

}  // namespace velto
