#include "monitor/SystemMonitor.h"

#include <algorithm>
#include <utility>

#include "platform/values/units.h"

namespace velto {
namespace {

/// Bytes per second, where they are known.
void addRates(sampling::Dictionary& told, const std::optional<ProcessTraffic>& traffic,
              double elapsed) {
    if (!traffic || !(elapsed > 0)) return;
    told["read"] = static_cast<double>(traffic->read) / elapsed;
    told["written"] = static_cast<double>(traffic->written) / elapsed;
}

}  // namespace

SystemMonitor::SystemMonitor(MonitorContext context, std::unique_ptr<SerialQueue> queue)
    : context_(std::move(context)), ownedQueue_(std::move(queue)), queue_(*ownedQueue_) {
    observers.push_back(context_.activity.observe([this](bool active) { setAppActive(active); }));
}

SystemMonitor::~SystemMonitor() {
    observers.clear();
    ownedQueue_.reset();  // first, while everything that its work uses is still there
}

void SystemMonitor::watch(bool on) {
    queue_.async([this, on] {
        wantsLive = on;
        startOrStop();
    });
}

void SystemMonitor::setAppActive(bool active) {
    queue_.async([this, active] {
        appActive = active;
        startOrStop();
    });
}

void SystemMonitor::startOrStop() {
    const bool shouldRun = wantsLive && appActive;
    if (shouldRun == (timer != nullptr)) return;
    if (!shouldRun) {
        timer.reset();
        return;
    }
    timer = queue_.repeat(firstDeadline, period, [this] {
        const sampling::Dictionary taken = sampleInTurn();
        if (onActivity) onActivity(activity_);
        if (onSample) onSample(taken);
    });
}

sampling::Dictionary SystemMonitor::sampleInTurn() {
    if (context_.turn == nullptr) return sample();
    const std::lock_guard guard(*context_.turn);
    return sample();
}

sampling::Dictionary SystemMonitor::sample() {
    const double now = context_.clock.monotonic();
    const double elapsed = prevStamp ? now - *prevStamp : 0;
    sampling::Dictionary taken = sampling::Dictionary::object();
    activity_ = {.record = sampling::Dictionary::object(),
                 .details = sampling::Dictionary::object(),
                 .quittable = {}};
    addProcessor(taken);
    addMemory(taken);
    addDisk(taken);
    taken["thermal"] = sampling::thermalDictionary(context_.counters.thermalState(),
                                                   context_.counters.isLowPowerModeOn());
    taken["battery"] = sampling::batteryDictionary(context_.counters.battery());
    addNetwork(taken, elapsed);
    if (const auto heat = context_.counters.temperature()) {
        activity_.record["temperature"] = sampling::temperatureDictionary(*heat);
    }
    addDisks(elapsed);
    addGraphics(elapsed);
    refreshProcessMap();
    taken["procs"] = groups(processMap, prevProcCPU, elapsed);
    ++samples_;
    tellUnseen();
    prevStamp = now;
    return taken;
}

void SystemMonitor::addProcessor(sampling::Dictionary& sample) {
    const std::optional<ProcessorTicks> ticks = context_.counters.processorTicks();
    const auto share =
        ticks && prevCPUTicks ? sampling::processorShare(*prevCPUTicks, *ticks) : std::nullopt;
    prevCPUTicks = ticks;
    if (!share) return;
    sample["cpu"] = {{"pct", *share},
                     {"cores", context_.counters.processorCount()},
                     {"load", context_.counters.loadAverage()}};
}

void SystemMonitor::addMemory(sampling::Dictionary& sample) {
    if (const auto memory = context_.counters.memory()) {
        sample["mem"] = sampling::memoryDictionary(*memory);
    }
}

void SystemMonitor::addDisk(sampling::Dictionary& sample) {
    const auto total = context_.volumes.totalCapacity(context_.startupVolume);
    const auto available = context_.volumes.availableCapacity(context_.startupVolume);
    if (!total || !available) return;
    sample["disk"] = sampling::diskDictionary(gigabytes(*total), gigabytes(*available));
}

void SystemMonitor::addNetwork(sampling::Dictionary& sample, double elapsed) {
    const auto interfaces = context_.counters.interfaces();
    auto sums = interfaces ? std::optional(sampling::sumOf(*interfaces)) : std::nullopt;
    if (sums && prevNet && elapsed > 0 && !sampling::hasBegunAnew(*prevNet, *sums)) {
        sample["net"] = sampling::networkDictionary(*prevNet, *sums, elapsed);
    }
    prevNet = std::move(sums);
}

void SystemMonitor::addDisks(double elapsed) {
    auto disks = context_.counters.disks();
    if (disks && !disks->empty() && prevDisks && elapsed > 0) {
        if (const auto rates = sampling::diskRates(*prevDisks, *disks, elapsed)) {
            activity_.record["disk"] = {{"read", rates->read}, {"written", rates->written}};
        }
    }
    prevDisks = std::move(disks);
}

void SystemMonitor::addGraphics(double elapsed) {
    GraphicsCounters graphics = context_.counters.graphics();
    if (elapsed > 0) {
        if (const auto load = sampling::graphicsLoad(prevGraphics, graphics, elapsed)) {
            activity_.record["gpu"] = {{"pct", *load}};
            hasSeenGraphics_ = true;
        }
    }
    prevGraphics = std::move(graphics);
}

void SystemMonitor::refreshProcessMap() {
    const double now = context_.clock.monotonic();
    if (processMapStamp && now - *processMapStamp < processMapAge) return;
    processMap = context_.processes.list();
    processMapStamp = now;
}

RunningApps SystemMonitor::runningApps() { return context_.processes.runningApps(); }

Groups SystemMonitor::gather(const ProcessMap& processes, const ProcessTimes& previousTimes,
                             double elapsedSeconds) {
    constexpr double mebibytesPerByte = 9.5367431640625e-7;
    const RunningApps apps = runningApps();
    const OwnProgram own{context_.processes.ownProcess(), context_.ownIdentifier};
    ProcessTimes times;
    times.reserve(processes.size());
    ProcessTraffics traffics;
    Groups gathered;
    seesOthers_ = false;
    for (const auto& [process, info] : processes) {
        const std::optional<ProcessUsage> usage = context_.processes.usage(process);
        if (!usage) continue;
        if (!info.isOwn) seesOthers_ = true;
        times.emplace(process, usage->time);
        if (usage->traffic) traffics.emplace(process, *usage->traffic);
        // What the system calls a process that is being taken away.
        if (info.name.empty() || info.name == "deleted") continue;

        const auto before = previousTimes.find(process);
        const auto previous =
            before == previousTimes.end() ? std::nullopt : std::optional(before->second);
        const auto owner = ownerOf(process, processes, apps);
        auto [key, fresh] = groupOf(process, info, owner, apps);
        const auto [found, isNew] = gathered.try_emplace(std::move(key), std::move(fresh));
        Group& group = found->second;
        if (!isNew) ++group.procs;
        Member member{.process = process,
                      .cpu = processorPercent(usage->time, previous, elapsedSeconds),
                      .mem = static_cast<double>(usage->footprint) * mebibytesPerByte,
                      .traffic = {}};
        group.cpu += member.cpu;
        group.mem += member.mem;
        if (group.path.empty()) group.path = bundleOf(context_.processes.executablePath(process));
        if (owner == process) addRoot(group, {process, info.start}, processes, apps, own);
        if (const auto moved = prevTraffic.find(process); moved != prevTraffic.end()) {
            member.traffic = trafficSince(moved->second, usage->traffic);
            addTraffic(group.traffic, member.traffic);
        }
        group.members.push_back(member);
    }
    prevProcCPU = std::move(times);
    prevTraffic = std::move(traffics);
    return gathered;
}

void SystemMonitor::allowQuitting(const Group& group) {
    auto& quittable = activity_.quittable;
    if (std::ranges::find(quittable, group.pid, &QuittableApplication::pid) != quittable.end())
        return;
    quittable.push_back({group.pid, group.name, group.roots});
}

void SystemMonitor::tellGroup(const Group& group, double elapsed) {
    sampling::Dictionary told{{"pid", group.pid}};
    addRates(told, group.traffic, elapsed);
    if (group.canQuit && !group.roots.empty()) {
        told["canQuit"] = true;
        allowQuitting(group);
    }
    activity_.record["procs"].push_back(std::move(told));
}

/// `drawn` are the processes of the groups whose icons the sample itself has.
void SystemMonitor::tellNamed(const Groups& named, const ProcessMap& processes,
                              const std::set<std::int32_t>& drawn, double elapsed) {
    sampling::Dictionary& groups = activity_.details["groups"] = sampling::Dictionary::array();
    for (const Group* group : heaviest(named)) {
        sampling::Dictionary told{{"name", group->name}, {"pid", group->pid},
                                  {"kind", group->kind}, {"procs", group->procs},
                                  {"cpu", group->cpu},   {"mem", group->mem}};
        addRates(told, group->traffic, elapsed);
        if (!drawn.contains(group->pid)) told["icon"] = iconFor(group->path);
        if (group->canQuit && !group->roots.empty()) {
            told["canQuit"] = true;
            allowQuitting(*group);
        }
        if (group->members.size() > 1) {
            sampling::Dictionary& members = told["members"] = sampling::Dictionary::array();
            for (const Member* member : heaviestMembers(*group, mostMembers)) {
                sampling::Dictionary one{{"pid", member->process},
                                         {"name", processes.at(member->process).name},
                                         {"cpu", member->cpu},
                                         {"mem", member->mem}};
                addRates(one, member->traffic, elapsed);
                members.push_back(std::move(one));
            }
        }
        groups.push_back(std::move(told));
    }
}

/// What there may be, and this program is not told of.
void SystemMonitor::tellUnseen() {
    sampling::Dictionary& unseen = activity_.details["unseen"] = sampling::Dictionary::array();
    if (!seesOthers_) unseen.push_back("processes");
    if (!activity_.record.contains("temperature")) unseen.push_back("temperature");
    if (!hasSeenGraphics_ && samples_ > samplesToFindGraphics) unseen.push_back("graphics");
}

std::vector<sampling::Dictionary> SystemMonitor::groups(const ProcessMap& processes,
                                                        const ProcessTimes& previousTimes,
                                                        double elapsedSeconds) {
    Groups gathered = gather(processes, previousTimes, elapsedSeconds);
    activity_.record["procs"] = sampling::Dictionary::array();
    activity_.quittable.clear();
    std::vector<sampling::Dictionary> result;
    std::set<std::int32_t> drawn;
    for (const Group* group : heaviest(gathered)) {
        tellGroup(*group, elapsedSeconds);
        drawn.insert(group->pid);
        result.push_back({{"name", group->name},
                          {"pid", group->pid},
                          {"kind", group->kind},
                          {"procs", group->procs},
                          {"cpu", group->cpu},
                          {"mem", group->mem},
                          {"icon", iconFor(group->path)}});
    }
    tellNamed(byName(std::move(gathered)), processes, drawn, elapsedSeconds);
    return result;
}

const std::string& SystemMonitor::iconFor(const std::string& path) {
    static const std::string none;
    if (path.empty()) return none;
    const auto known = iconCache.find(path);
    if (known != iconCache.end()) return known->second;
    std::optional<std::string> icon =
        context_.icon ? context_.icon(path, iconPoints) : std::nullopt;
    return iconCache.emplace(path, std::move(icon).value_or(std::string())).first->second;
}

}  // namespace velto
