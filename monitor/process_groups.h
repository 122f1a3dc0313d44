#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/ProcessTable.h"

namespace velto {

using ProcessMap = std::map<std::int32_t, ProcInfo>;
using RunningApps = std::map<std::int32_t, RunningApp>;

/// Cumulative processor time in nanoseconds by process.
using ProcessTimes = std::unordered_map<std::int32_t, std::uint64_t>;

using ProcessTraffics = std::unordered_map<std::int32_t, ProcessTraffic>;

/// A process, and when it began: another one that has its number later began later.
struct ProcessBeginning {
    std::int32_t process = 0;
    std::uint64_t start = 0;

    bool operator==(const ProcessBeginning&) const = default;
};

/// One process of a group.
struct Member {
    std::int32_t process = 0;
    double cpu = 0;                         // percent of one processor
    double mem = 0;                         // mebibytes
    std::optional<ProcessTraffic> traffic;  // as of its group
};

/// Processes that belong together.
struct Group {
    std::string name;
    int procs = 0;
    double cpu = 0;    // percent of one processor
    double mem = 0;    // mebibytes
    std::string kind;  // "app" or "other"
    std::int32_t pid = 0;
    std::string path;  // of the bundle whose icon stands for it; may be empty

    std::optional<ProcessTraffic> traffic;  // bytes since the last look, as far as they are told
    std::vector<ProcessBeginning> roots;    // its applications' first processes
    bool canQuit = true;                    // each of these may be asked to, if there is one
    std::vector<Member> members;            // in no order
};
using Groups = std::map<std::string, Group>;

/// This program.
struct OwnProgram {
    std::int32_t process = 0;
    std::string identifier;
};

/// The process of the application to which a process belongs: the nearest of its eight nearest
/// ancestors that is an application, else the process itself; nothing when neither is one.
std::optional<std::int32_t> ownerOf(std::int32_t process, const ProcessMap& processes,
                                    const RunningApps& apps);

/// The percentage of one processor that a process has used in `elapsed` seconds; 0 when nothing is
/// known of it from before. Times in nanoseconds.
double processorPercent(std::uint64_t time, std::optional<std::uint64_t> previous, double elapsed);

/// A group's key and a group with this one process in it, without `cpu` and `mem`.
std::pair<std::string, Group> groupOf(std::int32_t process, const ProcInfo& info,
                                      std::optional<std::int32_t> owner, const RunningApps& apps);

/// What has passed since the last look; nothing when nothing is known from before. A smaller
/// counter has moved nothing.
std::optional<ProcessTraffic> trafficSince(const std::optional<ProcessTraffic>& previous,
                                           const std::optional<ProcessTraffic>& now);

/// Counts the process in among the group's first processes when it is one: an application's, and no
/// application has started it. Only the user's own applications may be asked to quit, and never
/// this program, whose process and identifier are given, nor what belongs to it.
void addRoot(Group& group, ProcessBeginning process, const ProcessMap& processes,
             const RunningApps& apps, const OwnProgram& own);

/// The outermost bundle that holds an executable; empty when none does.
std::string bundleOf(const std::string& executable);

/// The applications as they are, and everything else that has one name as one group: its figures
/// are the sums, its process the one with the lowest number.
Groups byName(Groups&& groups);

/// The members that weigh most, by processor time and then memory, at most so many. Valid as long
/// as the group is.
std::vector<const Member*> heaviestMembers(const Group& group, std::size_t most);

/// Adds what has passed to a sum of it; what is not known adds nothing.
void addTraffic(std::optional<ProcessTraffic>& sum, const std::optional<ProcessTraffic>& more);

/// The eight that use most processor time, then those of the eight largest in memory that are not
/// among them, each by size. Valid as long as `groups` is.
std::vector<const Group*> heaviest(const Groups& groups);

}  // namespace velto
