#include "monitor/process_groups.h"

#include <fmt/format.h>

#include "MonitorFixture.h"

namespace velto {
namespace {

using ProcessGroups = MonitorFixture;
using sampling::Dictionary;

Dictionary groupNamed(const Dictionary& sample, const std::string& name) {
    for (const Dictionary& group : sample["procs"]) {
        if (group["name"] == name) return group;
    }
    return nullptr;
}

std::vector<std::string> names(const Dictionary& sample) {
    std::vector<std::string> result;
    for (const Dictionary& group : sample["procs"])
        result.push_back(group["name"]);
    return result;
}

TEST_F(ProcessGroups, TheFirstSampleHasMemoryAndNoProcessorShareYet) {
    table.add(100, 1, "worker", 64).usage.time = 5'000'000'000;
    const Dictionary group = groupNamed(monitor->sample(), "worker");
    EXPECT_EQ(group.dump(), R"({"name":"worker","pid":100,"kind":"other","procs":1,"cpu":0.0,)"
                            R"("mem":64.0,"icon":""})");
}

TEST_F(ProcessGroups, TheShareIsTheTimeSinceTheLastSample) {
    auto& worker = table.add(100, 1, "worker");
    worker.usage.time = 5'000'000'000;
    monitor->sample();
    worker.usage.time += 3'000'000'000;  // a processor and a half, for two seconds
    EXPECT_DOUBLE_EQ(groupNamed(nextSample(2), "worker")["cpu"], 150);
}

TEST_F(ProcessGroups, AnotherProcessUnderTheSameNumberDoesNotShowANegativeShare) {
    auto& worker = table.add(100, 1, "worker");
    worker.usage.time = 5'000'000'000;
    monitor->sample();
    worker.usage.time = 1'000'000;
    EXPECT_EQ(groupNamed(nextSample(), "worker")["cpu"], 0.0);
}

TEST_F(ProcessGroups, AnApplicationAndItsHelpersAreOneGroup) {
    table.apps[500] = {"Browser", "com.example.browser", "/Applications/Browser.app"};
    table.add(500, 1, "browser", 300);
    table.add(501, 500, "helper", 200);
    table.add(502, 501, "helper of the helper", 100);
    monitor->sample();
    for (auto& [process, entry] : table.processes)
        entry.usage.time = 200'000'000;
    const Dictionary sample = nextSample(2);
    ASSERT_EQ(sample["procs"].size(), 1u);
    const Dictionary group = sample["procs"][0];
    EXPECT_EQ(group["name"], "Browser");
    EXPECT_EQ(group["kind"], "app");
    EXPECT_EQ(group["pid"], 500);
    EXPECT_EQ(group["procs"], 3);
    EXPECT_DOUBLE_EQ(group["cpu"], 30);
    EXPECT_DOUBLE_EQ(group["mem"], 600);
    EXPECT_EQ(group["icon"], "icon:28");
}

TEST_F(ProcessGroups, TwoRunsOfOneApplicationAreOneGroupWhenItHasAnIdentifier) {
    table.apps[500] =
        table.apps[600] = {"Editor", "com.example.editor", "/Applications/Editor.app"};
    table.add(500, 1, "editor");
    table.add(600, 1, "editor");
    EXPECT_EQ(groupNamed(monitor->sample(), "Editor")["procs"], 2);
}

TEST_F(ProcessGroups, ApplicationsWithoutAnIdentifierStayApart) {
    table.apps[500] = table.apps[600] = {"Editor", "", "/Applications/Editor.app"};
    table.add(500, 1, "editor");
    table.add(600, 1, "editor");
    EXPECT_EQ(monitor->sample()["procs"].size(), 2u);
}

TEST_F(ProcessGroups, TheNearestApplicationAboveAProcessOwnsIt) {
    table.apps[500] = {"Terminal", "com.example.terminal", ""};
    table.apps[502] = {"Editor", "com.example.editor", ""};
    table.add(500, 1, "terminal");
    table.add(501, 500, "shell");
    table.add(502, 501, "editor");
    table.add(503, 502, "language server");
    const Dictionary sample = monitor->sample();
    // An application that another one started belongs to that one; what it starts, to itself.
    EXPECT_EQ(groupNamed(sample, "Terminal")["procs"], 3);
    EXPECT_EQ(groupNamed(sample, "Editor")["procs"], 1);
}

/// The application is the process 10, and 11, 12 ... are each the child of the one before.
ProcessMap chain(std::int32_t last) {
    ProcessMap map{{10, {1, "app"}}};
    for (std::int32_t process = 11; process <= last; ++process)
        map[process] = {process - 1, "step"};
    return map;
}

TEST(OwnerOf, EightStepsUpAreLookedAtAndNotNine) {
    const RunningApps apps{{10, {"App", "com.example.app", ""}}};
    EXPECT_EQ(ownerOf(18, chain(19), apps), 10);
    EXPECT_EQ(ownerOf(19, chain(19), apps), std::nullopt);
}

TEST_F(ProcessGroups, AProcessTooFarFromItsApplicationStandsForItself) {
    table.apps[10] = {"App", "com.example.app", ""};
    for (const auto& [process, info] : chain(19))
        table.add(process, info.ppid, info.name);
    const Dictionary group = groupNamed(monitor->sample(), "step");
    EXPECT_EQ(group["kind"], "other");
    EXPECT_EQ(group["pid"], 19);
    EXPECT_EQ(group["procs"], 1);
    EXPECT_EQ(groupOf(19, {18, "step"}, std::nullopt, {}).first, "pid:19");
}

TEST(OwnerOf, TheWalkEndsAtTheFirstProcessAndAtOneThatIsNotInTheMap) {
    const RunningApps apps{{1, {"Init", "init", ""}}, {300, {"Gone", "gone", ""}}};
    EXPECT_EQ(ownerOf(100, {{100, {1, "daemon"}}}, apps), std::nullopt);
    EXPECT_EQ(ownerOf(100, {{100, {200, "orphan"}}}, apps), std::nullopt);
    // The parent itself is asked for before the map is: it may have started since the last list.
    EXPECT_EQ(ownerOf(100, {{100, {300, "child"}}}, apps), 300);
}

TEST(OwnerOf, AnApplicationWithoutOneAboveItOwnsItself) {
    const RunningApps apps{{100, {"App", "", ""}}};
    EXPECT_EQ(ownerOf(100, {{100, {1, "app"}}}, apps), 100);
    EXPECT_EQ(groupOf(100, {1, "app"}, 100, apps).first, "app:100");
    EXPECT_EQ(groupOf(100, {1, "app"}, 100, {{100, {"App", "com.example", ""}}}).first,
              "svc:com.example#App");
}

TEST_F(ProcessGroups, WhatIsBeingTakenAwayOrCannotBeAskedNeverAppears) {
    table.add(100, 1, "deleted", 900);
    table.add(101, 1, "", 900);
    table.add(102, 1, "foreign", 900).canBeAsked = false;
    table.add(103, 1, "deleted too", 1);
    EXPECT_EQ(names(monitor->sample()), std::vector<std::string>{"deleted too"});
}

TEST_F(ProcessGroups, AProcessThatHasEndedIsLeftOutBeforeTheNextList) {
    table.add(100, 1, "short-lived");
    table.add(101, 1, "lasting");
    monitor->sample();
    table.processes.erase(100);
    EXPECT_EQ(names(nextSample()), std::vector<std::string>{"lasting"});
    EXPECT_EQ(monitor->prevProcCPU.count(100), 0u);
}

TEST_F(ProcessGroups, AGroupInBothListsComesOnceAtItsPlaceByProcessor) {
    for (std::int32_t process = 101; process <= 120; ++process) {
        table.add(process, 1, fmt::format("p{}", process), 1);
    }
    monitor->sample();
    for (std::int32_t place = 0; place < 8; ++place) {
        table.processes[101 + place].usage.time =
            static_cast<std::uint64_t>(80 - place) * 1'000'000;
        table.processes[113 + place].usage.footprint = static_cast<std::uint64_t>(100 - place)
                                                       << 20;
    }
    table.processes[103].usage.footprint = std::uint64_t{500} << 20;  // third by processor
    EXPECT_EQ(
        names(nextSample()),
        (std::vector<std::string>{"p101", "p102", "p103", "p104", "p105", "p106", "p107", "p108",
                                  "p113", "p114", "p115", "p116", "p117", "p118", "p119"}));
}

TEST_F(ProcessGroups, AtMostSixteenAreListed) {
    for (std::int32_t process = 101; process <= 140; ++process) {
        table.add(process, 1, fmt::format("p{}", process), static_cast<std::uint64_t>(process));
    }
    monitor->sample();
    for (std::int32_t process = 101; process <= 108; ++process) {
        table.processes[process].usage.time = 1'000'000;
    }
    EXPECT_EQ(nextSample()["procs"].size(), 16u);
}

TEST_F(ProcessGroups, FewerThanEightAreAllListedOnce) {
    for (std::int32_t process = 101; process <= 105; ++process) {
        table.add(process, 1, fmt::format("p{}", process));
    }
    auto listed = names(monitor->sample());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(listed, (std::vector<std::string>{"p101", "p102", "p103", "p104", "p105"}));
}

TEST_F(ProcessGroups, AHelperInsideABundleHasTheIconOfTheOutermostOne) {
    table.add(100, 1, "helper").executable =
        "/Applications/Outer.app/Contents/Helpers/Inner.app/Contents/MacOS/helper";
    table.add(101, 1, "daemon").executable = "/usr/libexec/daemon";
    const Dictionary sample = monitor->sample();
    EXPECT_EQ(drawn, std::vector<std::string>{"/Applications/Outer.app"});
    EXPECT_EQ(groupNamed(sample, "helper")["icon"], "icon:28");
    EXPECT_EQ(groupNamed(sample, "daemon")["icon"], "");
    EXPECT_EQ(bundleOf("/opt/x.app"), "");
}

TEST_F(ProcessGroups, AnIconIsDrawnOnceEvenWhenThereIsNone) {
    table.apps[100] = {"App", "a", "/Applications/App.app"};
    table.apps[101] = {"Faceless", "f", "/Applications/faceless.app"};
    table.add(100, 1, "app");
    table.add(101, 1, "faceless");
    for (int i = 0; i < 5; ++i)
        nextSample();
    EXPECT_EQ(drawn.size(), 2u);
    EXPECT_EQ(groupNamed(nextSample(), "Faceless")["icon"], "");
    EXPECT_EQ(monitor->iconFor(""), "");
    EXPECT_EQ(monitor->iconCache.count(""), 0u);
}

}  // namespace
}  // namespace velto
