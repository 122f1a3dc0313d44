#include "monitor/process_groups.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

namespace velto {
namespace {

constexpr int ancestorsLookedAt = 8;
constexpr std::size_t groupsPerList = 8;
constexpr double nanosecondsPerSecond = 1e9;

using Measure = double Group::*;

std::vector<const Group*> largest(std::vector<const Group*> all, Measure measure) {
    // Stable: what weighs the same stays in the order of the keys, so that rows do not trade
    // places.
    std::stable_sort(all.begin(), all.end(), [measure](const Group* one, const Group* other) {
        return one->*measure > other->*measure;
    });
    if (all.size() > groupsPerList) all.resize(groupsPerList);
    return all;
}

/// In the tree of processes; `ancestor` itself need not be listed.
bool isBelow(std::int32_t process, std::int32_t ancestor, const ProcessMap& processes) {
    constexpr int longestChain = 64;  // a listing that contradicts itself may go round in circles
    for (int step = 0; step < longestChain; ++step) {
        const auto found = processes.find(process);
        if (found == processes.end()) return false;
        process = found->second.ppid;
        if (process == ancestor) return true;
    }
    return false;
}

void join(Group& group, Group&& other) {
    group.procs += other.procs;
    group.cpu += other.cpu;
    group.mem += other.mem;
    group.pid = std::min(group.pid, other.pid);
    addTraffic(group.traffic, other.traffic);
    group.members.insert(group.members.end(), other.members.begin(), other.members.end());
}

}  // namespace

std::optional<std::int32_t> ownerOf(std::int32_t process, const ProcessMap& processes,
                                    const RunningApps& apps) {
    std::int32_t current = process;
    for (int step = 0; step < ancestorsLookedAt; ++step) {
        const auto found = processes.find(current);
        if (found == processes.end() || found->second.ppid < 2) break;
        current = found->second.ppid;
        if (apps.contains(current)) return current;
    }
    return apps.contains(process) ? std::optional(process) : std::nullopt;
}

double processorPercent(std::uint64_t time, std::optional<std::uint64_t> previous, double elapsed) {
    if (!previous || !(elapsed > 0) || time < *previous) return 0;
    return static_cast<double>(time - *previous) / nanosecondsPerSecond / elapsed * 100;
}

std::pair<std::string, Group> groupOf(std::int32_t process, const ProcInfo& info,
                                      std::optional<std::int32_t> owner, const RunningApps& apps) {
    if (!owner) {
        return {"pid:" + std::to_string(process),
                {.name = info.name, .procs = 1, .kind = "other", .pid = process}};
    }
    const RunningApp& app = apps.at(*owner);
    const std::string key =
        app.bundle.empty() ? "app:" + std::to_string(*owner) : "svc:" + app.bundle + "#" + app.name;
    return {key, {.name = app.name, .procs = 1, .kind = "app", .pid = *owner, .path = app.path}};
}

std::optional<ProcessTraffic> trafficSince(const std::optional<ProcessTraffic>& previous,
                                           const std::optional<ProcessTraffic>& now) {
    if (!previous || !now) return std::nullopt;
    const auto since = [](std::uint64_t old, std::uint64_t current) {
        return current > old ? current - old : 0;
    };
    return ProcessTraffic{.read = since(previous->read, now->read),
                          .written = since(previous->written, now->written)};
}

void addRoot(Group& group, ProcessBeginning process, const ProcessMap& processes,
             const RunningApps& apps, const OwnProgram& own) {
    const auto app = apps.find(process.process);
    if (app == apps.end()) return;
    group.roots.push_back(process);
    const auto info = processes.find(process.process);
    const bool isOwnPart =
        app->second.bundle == own.identifier || isBelow(process.process, own.process, processes);
    if (info == processes.end() || !info->second.isOwn || !app->second.isForPeople || isOwnPart) {
        group.canQuit = false;
    }
}

std::string bundleOf(const std::string& executable) {
    const std::size_t end = executable.find(".app/");
    return end == std::string::npos ? std::string() : executable.substr(0, end) + ".app";
}

void addTraffic(std::optional<ProcessTraffic>& sum, const std::optional<ProcessTraffic>& more) {
    if (!more) return;
    if (!sum) sum.emplace();
    sum->read += more->read;
    sum->written += more->written;
}

Groups byName(Groups&& groups) {
    Groups named;
    for (auto& [key, group] : groups) {
        const bool isApplication = group.kind == "app";
        const std::string name = isApplication ? key : "name:" + group.name;
        // Where the name is taken, the group is not moved from.
        const auto [found, isNew] = named.try_emplace(name, std::move(group));
        if (!isNew) join(found->second, std::move(group));
    }
    return named;
}

std::vector<const Member*> heaviestMembers(const Group& group, std::size_t most) {
    std::vector<const Member*> members;
    members.reserve(group.members.size());
    for (const Member& member : group.members)
        members.push_back(&member);
    const auto weight = [](const Member* one) {
        return std::tuple(-one->cpu, -one->mem, one->process);
    };
    std::ranges::sort(members, std::less{}, weight);
    if (members.size() > most) members.resize(most);
    return members;
}

std::vector<const Group*> heaviest(const Groups& groups) {
    std::vector<const Group*> all;
    all.reserve(groups.size());
    for (const auto& [key, group] : groups)
        all.push_back(&group);
    std::vector<const Group*> chosen = largest(all, &Group::cpu);
    for (const Group* group : largest(std::move(all), &Group::mem)) {
        if (std::find(chosen.begin(), chosen.end(), group) == chosen.end()) {
            chosen.push_back(group);
        }
    }
    return chosen;
}

}  // namespace velto
