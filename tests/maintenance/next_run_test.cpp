#include "maintenance/next_run.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

#include "made_times.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

constexpr const char* agentFile = "Library/LaunchAgents/app.velto.maintenance.plist";
constexpr double day = 86400;

void installed(TestPlatform& machine, double when) {
    const auto seconds = static_cast<std::int64_t>(when);
    machine.home.text(agentFile, "x").dated(seconds, seconds);
}

TEST(NextMaintenance, WithoutAScheduleThereIsNone) {
    TestPlatform machine;
    EXPECT_FALSE(nextMaintenance(machine.platform, "daily", 5.0));
}

TEST(NextMaintenance, AnAgentCountsFromTheRunBeforeOrFromItsInstallation) {
    TestPlatform machine;
    const double now = machine.clock.time;
    installed(machine, now - 1000);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", std::nullopt), now - 1000 + day);
    EXPECT_EQ(nextMaintenance(machine.platform, "weekends", std::nullopt), now - 1000 + 7 * day);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", now - 400), now - 400 + day);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", now - 4 * day), now - 1000 + day)
        << "installed anew since";
}

TEST(NextMaintenance, AMissedRunComesAtOnce) {
    TestPlatform machine;
    const double now = machine.clock.time;
    installed(machine, now - 9 * day);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", std::nullopt), now);
}

TEST(NextMaintenance, AClockThatWasSetBackDoesNotPutItOff) {
    TestPlatform machine;
    const double now = machine.clock.time;
    installed(machine, now + 400 * day);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", std::nullopt), now + day);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", now + 300 * day), now + day);
    EXPECT_FALSE(isMaintenanceOverdue(machine.platform, "daily"));
}

TEST(NextMaintenance, AfterAResetItCountsFromTheNewInstallation) {
    TestPlatform machine;
    const double now = machine.clock.time;
    installed(machine, now - 3 * day);
    std::filesystem::remove(machine.home.path(agentFile));
    EXPECT_FALSE(nextMaintenance(machine.platform, "daily", std::nullopt));
    installed(machine, now - 10);
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", std::nullopt), now - 10 + day);
}

struct NextTimerRun : testing::Test {
    NextTimerRun() {
        machine.platform.layout.kind = HomeLayout::Kind::freedesktop;
        machine.platform.layout.agentFile = machine.home.path(agentFile);
        machine.clock.time = localTime(2026, 11, 20, 9);
    }
    TestPlatform machine;
};

TEST_F(NextTimerRun, GoesByTheCalendar) {
    installed(machine, localTime(2026, 11, 19, 20));
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", localTime(2026, 11, 20, 0) + 600),
              localTime(2026, 11, 21, 0));
}

TEST_F(NextTimerRun, AMissedRunIsMadeUpForNow) {
    installed(machine, localTime(2026, 11, 10, 20));
    EXPECT_EQ(nextMaintenance(machine.platform, "daily", localTime(2026, 11, 18, 0)),
              machine.clock.time);
    EXPECT_TRUE(isMaintenanceOverdue(machine.platform, "daily"));
}

TEST_F(NextTimerRun, AClockThatWasSetBackDoesNotPutItOff) {
    installed(machine, localTime(2028, 1, 1, 0));
    EXPECT_EQ(nextMaintenance(machine.platform, "monthly", std::nullopt),
              localTime(2026, 12, 1, 0));
}

TEST(NextCalendarRun, IsTheNextMidnightSaturdayOrFirstOfAMonth) {
    // The 21st of November 2026 is a Saturday.
    EXPECT_EQ(nextCalendarRun(localTime(2026, 11, 20, 9), "daily"), localTime(2026, 11, 21, 0));
    EXPECT_EQ(nextCalendarRun(localTime(2026, 11, 20, 9), "weekends"), localTime(2026, 11, 21, 0));
    EXPECT_EQ(nextCalendarRun(localTime(2026, 11, 21, 9), "weekends"), localTime(2026, 11, 28, 0));
    EXPECT_EQ(nextCalendarRun(localTime(2026, 11, 22, 9), "weekends"), localTime(2026, 11, 28, 0));
    EXPECT_EQ(nextCalendarRun(localTime(2026, 12, 31, 23), "daily"), localTime(2027, 1, 1, 0));
    EXPECT_EQ(nextCalendarRun(localTime(2026, 12, 5, 9), "monthly"), localTime(2027, 1, 1, 0));
}

}  // namespace
}  // namespace velto
