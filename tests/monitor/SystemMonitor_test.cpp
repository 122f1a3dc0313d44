#include "MonitorFixture.h"

namespace velto {
namespace {

using sampling::Dictionary;
using SystemMonitorTest = MonitorFixture;

std::vector<std::string> keysOf(const Dictionary& dictionary) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : dictionary.items())
        keys.push_back(key);
    return keys;
}

TEST_F(SystemMonitorTest, TheFirstSampleHasNoRatesAndTheSecondHasThem) {
    EXPECT_EQ(keysOf(monitor->sample()),
              (std::vector<std::string>{"mem", "disk", "thermal", "battery", "procs"}));
    counters.ticks = ProcessorTicks{120, 60, 860, 60};
    counters.links = {{"en0", 5'000, 1'500}};
    const Dictionary second = nextSample(2);
    EXPECT_EQ(keysOf(second), (std::vector<std::string>{"cpu", "mem", "disk", "thermal", "battery",
                                                        "net", "procs"}));
    EXPECT_EQ(second["cpu"].dump(), R"({"pct":40.0,"cores":4,"load":1.5})");
    EXPECT_EQ(second["net"].dump(), R"({"avail":true,"iface":"en0","down":2000.0,"up":500.0})");
    EXPECT_EQ(second["disk"].dump(), R"({"total":500.0,"free":125.0,"pct":75.0})");
    EXPECT_EQ(second["thermal"].dump(), R"({"state":"nominal","lowPower":false})");
    EXPECT_EQ(second["battery"].dump(), R"({"avail":false})");
}

TEST_F(SystemMonitorTest, SourcesThatCannotBeReadAreLeftOutAndComeBack) {
    nextSample();
    counters.ticks = std::nullopt;
    counters.memoryCounters = std::nullopt;
    counters.links = std::nullopt;
    volumes.total = std::nullopt;
    EXPECT_EQ(keysOf(nextSample()), (std::vector<std::string>{"thermal", "battery", "procs"}));
    counters.ticks = ProcessorTicks{1, 2, 3, 4};
    counters.links = {{"en0", 5'000, 1'500}};
    EXPECT_EQ(keysOf(nextSample()), (std::vector<std::string>{"thermal", "battery", "procs"}));
    counters.ticks = ProcessorTicks{2, 2, 4, 4};
    EXPECT_TRUE(nextSample().contains("cpu"));
}

TEST_F(SystemMonitorTest, AClockThatStandsStillGivesNoRates) {
    nextSample();
    EXPECT_FALSE(nextSample(0).contains("net"));
}

TEST_F(SystemMonitorTest, TheProcessMapIsReadAnewAfterTenSecondsAndNotBefore) {
    table.add(100, 1, "first");
    monitor->sample();
    table.add(101, 1, "second");
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(nextSample(2)["procs"].size(), 1u);
    EXPECT_EQ(nextSample(1.99)["procs"].size(), 1u);
    EXPECT_EQ(table.lists, 1);
    EXPECT_EQ(nextSample(0.01)["procs"].size(), 2u);
    EXPECT_EQ(table.lists, 2);
}

TEST_F(SystemMonitorTest, NothingOfEndedProcessesIsKept) {
    for (std::int32_t process = 0; process < 1000; ++process) {
        table.processes.clear();
        table.add(100 + process, 1, "generation");
        nextSample(10);
        EXPECT_EQ(monitor->processMap.size(), 1u);
        EXPECT_EQ(monitor->prevProcCPU.size(), 1u);
    }
    EXPECT_TRUE(monitor->iconCache.empty());
}

TEST_F(SystemMonitorTest, SamplesComeWhileThePageWantsThemAndTheApplicationIsActive) {
    activity.set(true);
    monitor->watch(true);
    pass(0.34);
    EXPECT_EQ(samples.size(), 0u);
    pass(0.01);
    EXPECT_EQ(samples.size(), 1u);
    pass(1.99);
    EXPECT_EQ(samples.size(), 1u);
    pass(0.01);
    EXPECT_EQ(samples.size(), 2u);
    pass(20);
    EXPECT_EQ(samples.size(), 12u);
}

TEST_F(SystemMonitorTest, NothingIsSampledForAPageThatDoesNotAskOrAnApplicationInTheBackground) {
    activity.set(true);
    pass(60);
    EXPECT_EQ(table.lists, 0);
    activity.set(false);
    monitor->watch(true);
    pass(60);
    EXPECT_EQ(table.lists, 0);
    EXPECT_EQ(monitor->timer, nullptr);
}

TEST_F(SystemMonitorTest, SamplingStopsAtOnceWhenThePageOrTheUserTurnsAway) {
    activity.set(true);
    monitor->watch(true);
    pass(2.35);
    ASSERT_EQ(samples.size(), 2u);
    monitor->watch(false);
    pass(60);
    EXPECT_EQ(samples.size(), 2u);
    EXPECT_EQ(monitor->timer, nullptr);
    EXPECT_TRUE(queue->timers.empty());

    monitor->watch(true);
    pass(0.35);
    EXPECT_EQ(samples.size(), 3u);
    activity.set(false);
    pass(60);
    EXPECT_EQ(samples.size(), 3u);
    EXPECT_TRUE(queue->timers.empty());

    activity.set(true);
    pass(0.35);
    EXPECT_EQ(samples.size(), 4u);
}

TEST_F(SystemMonitorTest, AskingTwiceKeepsOneTimerAndItsPace) {
    activity.set(true);
    monitor->watch(true);
    pass(1);
    monitor->watch(true);
    pass(1);
    EXPECT_EQ(queue->timers.size(), 1u);
    EXPECT_EQ(samples.size(), 1u);
    pass(0.35);
    EXPECT_EQ(samples.size(), 2u);
}

TEST_F(SystemMonitorTest, AfterAPauseTheRatesCountFromTheLastSample) {
    auto& worker = table.add(100, 1, "worker");
    activity.set(true);
    monitor->watch(true);
    pass(0.35);
    monitor->watch(false);
    pass(9.65);
    counters.links = {{"en0", 101'000, 500}};
    worker.usage.time = 1'000'000'000;
    monitor->watch(true);
    pass(0.35);
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_NEAR(samples[1]["net"]["down"], 10'000, 1e-6);
    EXPECT_NEAR(samples[1]["procs"][0]["cpu"], 10, 1e-6);
}

TEST_F(SystemMonitorTest, AMonitorThatIsGoneHearsNoMoreOfTheApplication) {
    monitor->watch(true);
    monitor.reset();
    activity.set(true);
    EXPECT_TRUE(queue->waiting.empty());
    EXPECT_TRUE(queue->timers.empty());
}

}  // namespace
}  // namespace velto
