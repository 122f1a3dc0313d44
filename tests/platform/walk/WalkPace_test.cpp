#include "platform/walk/WalkPace.h"

#include <vector>

#include <gtest/gtest.h>

namespace velto {
namespace {

constexpr double tick = 0.05;  // seconds

/// What threads that share `used` processors have spent in a tick while others were in the way.
ProcessorUse spent(double used, double delayed = 0) { return {used * tick, delayed * tick}; }

TEST(WalkPace, BusyProcessorsGetNoMoreThreads) {
    WalkPace pace(2, 16);
    EXPECT_EQ(pace.next(tick, spent(2)), 2U);
    EXPECT_EQ(pace.next(tick, spent(1.75)), 2U);
    EXPECT_EQ(pace.threads(), 2U);
}

TEST(WalkPace, ThreadsJoinWhileTheWalkWaitsUpToABound) {
    WalkPace pace(2, 12);
    std::vector<std::size_t> threads;
    for (int round = 0; round < 4; ++round)
        threads.push_back(pace.next(tick, spent(0.2)));
    EXPECT_EQ(threads, (std::vector<std::size_t>{4, 8, 12, 12}));
}

TEST(WalkPace, TheyLeaveOneAfterAnotherWhenNothingHasToBeWaitedFor) {
    WalkPace pace(2, 16);
    for (int round = 0; round < 3; ++round)
        pace.next(tick, {});
    EXPECT_EQ(pace.next(tick, spent(2, 13)), 12U);
    EXPECT_EQ(pace.next(tick, spent(2, 8.2)), 12U);    // both processors are used as it is
    EXPECT_EQ(pace.next(tick, spent(1.5, 8.8)), 12U);  // neither waiting nor served
    for (int round = 0; round < 10; ++round)
        pace.next(tick, spent(2, 14));
    EXPECT_EQ(pace.threads(), 2U);
}

// Other programs take half of each processor, and the walk's threads stand in line: it is not the
// disk that they wait for.
TEST(WalkPace, WhoStandsInLineBehindOthersTakesNoMoreFromThem) {
    WalkPace pace(2, 16);
    for (int round = 0; round < 4; ++round)
        EXPECT_EQ(pace.next(tick, spent(0.9, 1.05)), 2U);
    for (int round = 0; round < 3; ++round)
        pace.next(tick, {});
    EXPECT_EQ(pace.threads(), 16U);
    EXPECT_EQ(pace.next(tick, spent(1, 14.5)), 12U);
}

// A thread has ended and taken what it had waited along.
TEST(WalkPace, FewerDelaysThanBeforeAreNone) {
    WalkPace pace(2, 16);
    EXPECT_EQ(pace.next(tick, spent(1.9, -100)), 2U);
}

TEST(WalkPace, NoTimeSaysNothing) {
    WalkPace pace(1, 4);
    EXPECT_EQ(pace.next(0, {}), 1U);
    EXPECT_EQ(pace.next(-1, {.used = 5}), 1U);
}

TEST(WalkPace, OneThreadAtLeastAndNoFewerThanAtFirst) {
    EXPECT_EQ(WalkPace(0, 0).threads(), 1U);
    WalkPace pace(4, 2);
    EXPECT_TRUE(pace.isFixed());
    EXPECT_EQ(pace.next(tick, {}), 4U);
}

}  // namespace
}  // namespace velto
