#include <atomic>
#include <future>
#include <thread>
#include <utility>

#include "MonitorFixture.h"

namespace velto {
namespace {

/// A monitor on a queue of this machine, so that a thread sanitizer sees who touches what.
struct MonitorThreads : testing::Test {
    FakeSystemCounters counters;
    FakeProcessTable table;
    FakeVolumeInfo volumes;
    SystemClock clock;
    ApplicationActivity activity;

    std::unique_ptr<SystemMonitor> makeMonitor(
        std::unique_ptr<SerialQueue> queue = makeSerialQueue(SystemMonitor::queueLabel)) {
        return std::make_unique<SystemMonitor>(MonitorContext{.counters = counters,
                                                              .processes = table,
                                                              .volumes = volumes,
                                                              .clock = clock,
                                                              .activity = activity,
                                                              .startupVolume = "/",
                                                              .icon = {}},
                                               std::move(queue));
    }
};

TEST_F(MonitorThreads, SamplesComeFromAnotherThreadAndNoneAfterTheEnd) {
    table.add(100, 1, "worker");
    std::promise<std::thread::id> sampled;
    std::atomic<bool> isGone = false;
    std::atomic<int> late = 0;
    auto monitor = makeMonitor();
    monitor->onSample = [&, first = true](const sampling::Dictionary& sample) mutable {
        EXPECT_EQ(sample["procs"].size(), 1u);
        if (isGone) ++late;
        if (std::exchange(first, false)) sampled.set_value(std::this_thread::get_id());
    };
    activity.set(true);
    monitor->watch(true);
    EXPECT_NE(sampled.get_future().get(), std::this_thread::get_id());
    monitor.reset();
    isGone = true;
    EXPECT_EQ(late, 0);
}

TEST_F(MonitorThreads, TurningToAndFroFromTheMainThreadIsSafeWhileSamplesAreTaken) {
    for (std::int32_t process = 100; process < 400; ++process)
        table.add(process, 1, "worker");
    std::promise<void> sampled;
    auto monitor = makeMonitor();
    monitor->onSample = [&, first = true](const sampling::Dictionary&) mutable {
        if (std::exchange(first, false)) sampled.set_value();
    };
    for (int i = 0; i < 200; ++i) {
        monitor->watch(i % 3 != 0);
        activity.set(i % 2 == 0);
    }
    activity.set(true);
    monitor->watch(true);
    sampled.get_future().wait();
    for (int i = 0; i < 200; ++i)
        monitor->watch(i % 2 == 0);
}

/// Does at its end what a real queue may be doing at that moment.
class QueueAtWork final : public SerialQueue {
public:
    explicit QueueAtWork(int& repeats) : repeats_(repeats) {}
    ~QueueAtWork() override {
        for (const Work& begun : work_)
            begun();
    }
    void async(Work work) override { work_.push_back(std::move(work)); }
    std::unique_ptr<Timer> repeat(double, double, Work) override {
        ++repeats_;
        return std::make_unique<Timer>();
    }

private:
    int& repeats_;
    std::vector<Work> work_;
};

TEST_F(MonitorThreads, WorkThatRunsAtTheEndStillFindsItsQueue) {
    int repeats = 0;
    auto monitor = makeMonitor(std::make_unique<QueueAtWork>(repeats));
    activity.set(true);
    monitor->watch(true);
    monitor.reset();
    EXPECT_EQ(repeats, 1);
}

}  // namespace
}  // namespace velto
