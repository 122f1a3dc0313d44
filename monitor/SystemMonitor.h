#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "monitor/activity.h"
#include "monitor/process_groups.h"
#include "monitor/sampling.h"
#include "platform/ApplicationActivity.h"
#include "platform/Clock.h"
#include "platform/ProcessTable.h"
#include "platform/SerialQueue.h"
#include "platform/SystemCounters.h"
#include "platform/VolumeInfo.h"

namespace velto {

/// A picture of the item at a path as a PNG data URL, at a size in points; nothing when there is
/// none. Called on the monitor's queue.
using IconRoutine = std::function<std::optional<std::string>(const std::string& path, int points)>;

/// What a monitor looks at. Everything outlives it.
struct MonitorContext {
    SystemCounters& counters;
    ProcessTable& processes;
    const VolumeInfo& volumes;
    const Clock& clock;
    ApplicationActivity& activity;
    std::string startupVolume;  // a path on it
    IconRoutine icon;
    // Held while a sample is taken, by monitors that look at the same machine: one that is going
    // away may still be at its last. None where there is no other.
    std::mutex* turn = nullptr;
    std::string ownIdentifier;  // of this program
};

/// A live picture of the machine: one sample every two seconds while the page wants it and the
/// application is active.
///
/// Made and watched on the main thread, and let go of there before it is destroyed elsewhere.
/// Everything else happens on its own serial queue, to which all fields from `timer` on belong;
/// they are readable there, and by tests that run the queue themselves.
class SystemMonitor {
public:
    static constexpr const char* queueLabel = "dev.velto.system-monitor";
    static constexpr double firstDeadline = 0.35;  // seconds
    static constexpr double period = 2.0;
    static constexpr double processMapAge = 10.0;  // after which it is made anew
    static constexpr int iconPoints = 28;
    static constexpr std::size_t mostMembers = 40;  // of a group that are told one by one
    /// The users of a graphics processor are found bit by bit: only then is its load called unseen.
    static constexpr int samplesToFindGraphics = 5;

    /// `queue` is the monitor's own, made under `queueLabel`.
    SystemMonitor(MonitorContext context, std::unique_ptr<SerialQueue> queue);

    /// On the main thread: the monitor follows the application's activity no longer. It then may be
    /// destroyed on any thread, and should be where waiting harms nobody.
    void letGo() { observers.clear(); }

    /// Waits for a sample that is being taken, which hangs when the machine does. The callback may
    /// run until then.
    ~SystemMonitor();
    SystemMonitor(const SystemMonitor&) = delete;
    SystemMonitor& operator=(const SystemMonitor&) = delete;

    /// Receives each sample, on the queue. Set once, before the first `watch`.
    std::function<void(const sampling::Dictionary&)> onSample;

    /// Receives what there is to tell beside a sample, right before it, on the queue. May be empty.
    std::function<void(const Activity&)> onActivity;

    /// The page wants live samples, or no longer. Safe from every thread.
    void watch(bool on);

    /// One sample now. On the queue.
    sampling::Dictionary sample();

    /// What there is to tell beside the last sample. On the queue.
    const Activity& activity() const { return activity_; }

    /// The heaviest groups of the processes in the map, and their times for the next call.
    /// `elapsedSeconds` is 0 when there is nothing to compare with. On the queue.
    std::vector<sampling::Dictionary> groups(const ProcessMap& processes,
                                             const ProcessTimes& previousTimes,
                                             double elapsedSeconds);

    /// Makes `processMap` anew when it is at least ten seconds old. On the queue.
    void refreshProcessMap();

    /// Read afresh on every call. On the queue.
    std::map<std::int32_t, RunningApp> runningApps();

    /// The icon of the bundle at a path, empty when there is none or no path. On the queue.
    const std::string& iconFor(const std::string& path);

private:
    MonitorContext context_;
    std::unique_ptr<SerialQueue> ownedQueue_;
    SerialQueue& queue_;  // work that runs while the owner lets go still finds it

public:
    // State, changed by the monitor alone.
    std::unique_ptr<SerialQueue::Timer> timer;
    bool wantsLive = false;
    bool appActive = false;
    std::vector<ApplicationActivity::Token> observers;  // main thread
    std::optional<ProcessorTicks> prevCPUTicks;
    std::optional<sampling::NetworkSums> prevNet;
    ProcessTimes prevProcCPU;
    std::optional<std::vector<DiskCounters>> prevDisks;
    GraphicsCounters prevGraphics;
    ProcessTraffics prevTraffic;
    std::optional<double> prevStamp;  // seconds of the monotonic clock
    ProcessMap processMap;
    std::optional<double> processMapStamp;
    std::unordered_map<std::string, std::string> iconCache;  // never emptied: one entry a bundle

private:
    sampling::Dictionary sampleInTurn();
    void setAppActive(bool active);
    void startOrStop();
    void addProcessor(sampling::Dictionary& sample);
    void addMemory(sampling::Dictionary& sample);
    void addDisk(sampling::Dictionary& sample);
    void addNetwork(sampling::Dictionary& sample, double elapsed);
    void addDisks(double elapsed);
    void addGraphics(double elapsed);
    Groups gather(const ProcessMap& processes, const ProcessTimes& previousTimes,
                  double elapsedSeconds);
    void tellGroup(const Group& group, double elapsed);
    void tellNamed(const Groups& named, const ProcessMap& processes,
                   const std::set<std::int32_t>& drawn, double elapsed);
    void tellUnseen();
    void allowQuitting(const Group& group);

    Activity activity_;
    bool seesOthers_ = false;       // a process of another user has told what it uses
    bool hasSeenGraphics_ = false;  // their load, at least once
    int samples_ = 0;
};

}  // namespace velto
