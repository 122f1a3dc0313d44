#include "monitor/activity.h"

#include "MonitorFixture.h"

namespace velto {
namespace {

using namespace sampling;

TEST(DiskRates, AreThoseOfAllDisksTogether) {
    const auto rates = diskRates({{"sda", 1'000, 50}, {"sdb", 0, 0}},
                                 {{"sda", 3'000, 50}, {"sdb", 1'000, 400}}, 2);
    ASSERT_TRUE(rates);
    EXPECT_EQ(rates->read, 1'500);
    EXPECT_EQ(rates->written, 200);
}

TEST(DiskRates, ADiskThatComesOrGoesShowsNoPeak) {
    EXPECT_EQ(diskRates({{"sda", 10, 10}}, {{"sda", 10, 30}, {"sdb", 1'000'000, 9}}, 1)->written,
              20);
    EXPECT_EQ(diskRates({{"sda", 10, 10}, {"sdb", 9, 9}}, {{"sda", 10, 30}}, 1)->written, 20);
}

TEST(DiskRates, ACounterThatBeginsAnewIsAGap) {
    EXPECT_FALSE(diskRates({{"sda", 5'000, 10}}, {{"sda", 10, 10}}, 1));
    EXPECT_FALSE(diskRates({{"sda", 10, 5'000}}, {{"sda", 10, 10}}, 1));
}

GraphicsCounters engines(std::vector<EngineTime> all) {
    return {.busy = {}, .engines = std::move(all)};
}

TEST(GraphicsLoad, IsThatOfTheBusiestEngineWithAllItsUsers) {
    const auto before =
        engines({{"0", "render", 1, 0}, {"0", "render", 2, 0}, {"0", "video", 1, 0, 2}});
    const auto now = engines({{"0", "render", 1, 500'000'000},
                              {"0", "render", 2, 300'000'000},
                              {"0", "video", 1, 1'000'000'000, 2}});
    EXPECT_DOUBLE_EQ(*graphicsLoad(before, now, 2), 40);  // the video engine has two units
    EXPECT_DOUBLE_EQ(*graphicsLoad(before, now, 0.1), 100);
}

TEST(GraphicsLoad, UsersThatComeOrCountBackHaveUsedNothing) {
    const auto before = engines({{"0", "render", 1, 900}});
    EXPECT_EQ(
        *graphicsLoad(before, engines({{"0", "render", 1, 100}, {"0", "render", 7, 1'000'000}}), 1),
        0);
    EXPECT_FALSE(graphicsLoad(before, engines({{"0", "render", 2, 500}}), 1));
    EXPECT_FALSE(graphicsLoad({}, {}, 1));
}

TEST(GraphicsLoad, WhatADriverSaysItselfCountsAtOnce) {
    EXPECT_EQ(graphicsLoad({}, {.busy = 37, .engines = {}}, 2), 37);
}

using ActivityTest = MonitorFixture;

TEST_F(ActivityTest, OfTheFirstSampleHasNoRatesAndOfTheSecondHasThem) {
    counters.drives = {{"nvme0n1", 1'000, 0}};
    counters.heat = Temperature{.celsius = 53.6, .part = Temperature::Part::processor};
    counters.graphicsCounters.busy = 12.5;
    table.add(100, 1, "worker").usage.traffic = ProcessTraffic{.read = 0, .written = 500};
    monitor->sample();
    EXPECT_EQ(monitor->activity().record.dump(),
              R"({"temperature":{"celsius":54,"part":"processor"},"procs":[{"pid":100}]})");
    counters.drives = {{"nvme0n1", 5'000, 200}};
    table.processes[100].usage.traffic = ProcessTraffic{.read = 4'000, .written = 700};
    nextSample(2);
    EXPECT_EQ(monitor->activity().record.dump(),
              R"({"temperature":{"celsius":54,"part":"processor"},)"
              R"("disk":{"read":2000.0,"written":100.0},"gpu":{"pct":12.5},)"
              R"("procs":[{"pid":100,"read":2000.0,"written":100.0}]})");
}

TEST_F(ActivityTest, WhatIsNotKnownIsLeftOut) {
    counters.drives = std::vector<DiskCounters>{};  // no disk at all
    table.add(100, 1, "worker");
    monitor->sample();
    nextSample(2);
    EXPECT_EQ(monitor->activity().record.dump(), R"({"procs":[{"pid":100}]})");
}

TEST_F(ActivityTest, TrafficOfAnApplicationIsThatOfAllItsProcesses) {
    table.apps[500] = {"Browser", "com.example.browser", "/Applications/Browser.app"};
    table.add(500, 1, "browser").usage.traffic = ProcessTraffic{};
    table.add(501, 500, "helper").usage.traffic = ProcessTraffic{};
    table.add(502, 500, "of another user");
    monitor->sample();
    table.processes[500].usage.traffic = ProcessTraffic{.read = 100, .written = 0};
    table.processes[501].usage.traffic = ProcessTraffic{.read = 300, .written = 40};
    nextSample(2);
    const Dictionary group = monitor->activity().record["procs"][0];
    EXPECT_EQ(group["read"], 200.0);
    EXPECT_EQ(group["written"], 20.0);
}

TEST_F(ActivityTest, AGapOfTheNetworkIsNoPeak) {
    counters.links = {{"wlan0", 2'200'000'000, 50, true}};
    monitor->sample();
    counters.links = {{"wlan0", 1'000, 50, true}};
    EXPECT_FALSE(nextSample(2).contains("net"));
    counters.links = {{"wlan0", 3'000, 50, true}};
    EXPECT_EQ(nextSample(2)["net"]["down"], 1'000.0);
}

struct Quitting : MonitorFixture {
    /// An application of the user's own, and its first process.
    void application(std::int32_t process, const std::string& bundle, std::int32_t parent = 1) {
        table.apps[process] = {.name = bundle, .bundle = bundle, .path = "", .isForPeople = true};
        auto& entry = table.add(process, parent, bundle);
        entry.info.isOwn = true;
        entry.info.start = static_cast<std::uint64_t>(process) * 10;
    }
    std::vector<QuittableApplication> quittable() {
        monitor->sample();
        return monitor->activity().quittable;
    }
};

TEST_F(Quitting, AnApplicationOfTheUsersOwnCanBeQuitByItsFirstProcesses) {
    application(500, "editor");
    table.add(501, 500, "helper").info.isOwn = true;
    application(502, "editor", 500);  // started by the first one
    application(510, "editor");       // another instance
    const auto all = quittable();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].name, "editor");
    EXPECT_EQ(all[0].pid, 500);
    EXPECT_EQ(all[0].processes, (std::vector<ProcessBeginning>{{500, 5'000}, {510, 5'100}}));
    EXPECT_EQ(monitor->activity().record["procs"][0].dump(), R"({"pid":500,"canQuit":true})");
}

TEST_F(Quitting, WhatIsNoApplicationOfTheUsersCannot) {
    table.add(90, 1, "daemon").info.isOwn = true;
    application(500, "panel of the desktop");
    table.apps[500].isForPeople = false;
    application(510, "editor of another user");
    table.processes[510].info.isOwn = false;
    application(520, "shared");
    application(521, "shared");
    table.processes[521].info.isOwn = false;
    EXPECT_TRUE(quittable().empty());
    for (const Dictionary& group : monitor->activity().record["procs"])
        EXPECT_FALSE(group.contains("canQuit")) << group.dump();
}

TEST_F(Quitting, ThisProgramAndWhatBelongsToItCannot) {
    application(500, "app.velto");  // another window of it
    application(510, "its engine", table.ownProcess());
    application(520, "started by its engine", 519);
    table.add(519, table.ownProcess(), "engine");
    EXPECT_TRUE(quittable().empty());
}

}  // namespace
}  // namespace velto
