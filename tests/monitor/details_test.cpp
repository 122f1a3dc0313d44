#include "MonitorFixture.h"

namespace velto {
namespace {

using sampling::Dictionary;

/// What a monitor tells of the groups by name, and of what it cannot see.
struct DetailsTest : MonitorFixture {
    Dictionary details(double seconds = 2) {
        nextSample(seconds);
        return monitor->activity().details;
    }
    Dictionary group(const std::string& name) {
        for (const Dictionary& one : monitor->activity().details["groups"]) {
            if (one["name"] == name) return one;
        }
        return nullptr;
    }
    void work(std::int32_t process, std::uint64_t seconds) {
        table.processes[process].usage.time += seconds * 1'000'000'000;
    }
};

TEST_F(DetailsTest, ProcessesOfOneNameAreOneGroupWithTheirSums) {
    table.add(300, 1, "worker", 30).usage.traffic = ProcessTraffic{};
    table.add(90, 1, "worker", 12);
    table.add(400, 1, "other", 5);
    monitor->sample();
    work(300, 1);
    table.processes[300].usage.traffic = ProcessTraffic{.read = 4'000, .written = 20};
    details();
    EXPECT_EQ(group("worker").dump(),
              R"({"name":"worker","pid":90,"kind":"other","procs":2,"cpu":50.0,"mem":42.0,)"
              R"("read":2000.0,"written":10.0,"members":[)"
              R"({"pid":300,"name":"worker","cpu":50.0,"mem":30.0,"read":2000.0,"written":10.0},)"
              R"({"pid":90,"name":"worker","cpu":0.0,"mem":12.0}]})");
    EXPECT_EQ(group("other").dump(),
              R"({"name":"other","pid":400,"kind":"other","procs":1,"cpu":0.0,"mem":5.0})");
}

TEST_F(DetailsTest, ManySmallOnesWeighTogetherWhatNoneDoesAlone) {
    for (int number = 0; number < 30; ++number) {
        table.add(300 + number, 1, "small", 10);
        table.add(100 + number, 1, "large " + std::to_string(number), 50);
    }
    const Dictionary sample = nextSample();
    for (const Dictionary& one : sample["procs"])
        EXPECT_NE(one["name"], "small");
    EXPECT_EQ(group("small")["mem"], 300.0);
    EXPECT_EQ(group("small")["procs"], 30);
}

TEST_F(DetailsTest, AnApplicationTellsItsProcessesAndStaysApartFromAnotherOfItsName) {
    table.apps[500] = {"Browser", "com.example.browser", "/Applications/Browser.app"};
    table.apps[600] = {"Browser", "com.example.browser.beta", "/Applications/Beta.app"};
    table.add(500, 1, "browser", 100);
    table.add(501, 500, "tab", 300);
    table.add(600, 1, "browser", 70);
    details();
    const Dictionary& groups = monitor->activity().details["groups"];
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0]["mem"], 400.0);
    ASSERT_EQ(groups[0]["members"].size(), 2u);
    EXPECT_EQ(groups[0]["members"][0]["name"], "tab");
    EXPECT_FALSE(groups[1].contains("members"));
    EXPECT_FALSE(groups[0].contains("icon")) << "the sample itself has it";
}

TEST_F(DetailsTest, OfManyProcessesTheHeaviestAreToldAndTheSumIsOfAll) {
    for (int number = 0; number < 60; ++number)
        table.add(100 + number, 1, "sleep", static_cast<std::uint64_t>(number));
    details();
    EXPECT_EQ(group("sleep")["procs"], 60);
    EXPECT_EQ(group("sleep")["mem"], 59.0 * 60 / 2);
    ASSERT_EQ(group("sleep")["members"].size(), SystemMonitor::mostMembers);
    EXPECT_EQ(group("sleep")["members"][0]["mem"], 59.0);
}

TEST_F(DetailsTest, AnApplicationThatOnlyThisListHasCanBeQuitToo) {
    for (int number = 0; number < 8; ++number)
        table.add(100 + number, 1, "twin", 50);
    table.apps[500] = {"Editor", "editor", "/Applications/Editor.app", true};
    table.add(500, 1, "editor", 40).info.isOwn = true;
    details();
    EXPECT_TRUE(group("Editor")["canQuit"].is_boolean());
    EXPECT_EQ(group("Editor")["icon"], "icon:28");
    ASSERT_EQ(monitor->activity().quittable.size(), 1u);
    EXPECT_EQ(monitor->activity().quittable[0].pid, 500);
}

TEST_F(DetailsTest, WhatTheSystemKeepsToItselfIsCalledUnseen) {
    counters.heat = Temperature{.celsius = 40, .part = Temperature::Part::processor};
    counters.graphicsCounters.busy = 12;
    table.add(100, 1, "of the system");
    table.add(101, 1, "own").info.isOwn = true;
    EXPECT_EQ(details()["unseen"].dump(), "[]");
    table.processes[100].canBeAsked = false;
    counters.heat.reset();
    EXPECT_EQ(details()["unseen"].dump(), R"(["processes","temperature"])");
}

TEST_F(DetailsTest, TheGraphicsAreUnseenWhenNobodyIsFoundToTellOfThem) {
    counters.heat = Temperature{.celsius = 40, .part = Temperature::Part::processor};
    table.add(100, 1, "of the system");
    for (int number = 0; number < SystemMonitor::samplesToFindGraphics; ++number)
        EXPECT_EQ(details()["unseen"].dump(), "[]");
    EXPECT_EQ(details()["unseen"].dump(), R"(["graphics"])");
    counters.graphicsCounters.busy = 12;
    EXPECT_EQ(details()["unseen"].dump(), "[]");
    counters.graphicsCounters.busy.reset();
    EXPECT_EQ(details()["unseen"].dump(), "[]") << "nobody uses them just now";
}

}  // namespace
}  // namespace velto
