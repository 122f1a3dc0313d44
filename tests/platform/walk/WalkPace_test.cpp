#include "platform/walk/WalkPace.h"

#include <vector>

#include <gtest/gtest.h>

namespace velto {
namespace {

constexpr double tick = 0.05;  // seconds

TEST(WalkPace, BusyProcessorsGetNoMoreThreads) {
    WalkPace pace(2, 16);
    EXPECT_EQ(pace.next(tick, 2 * tick), 2U);
    EXPECT_EQ(pace.next(tick, 1.2 * tick), 2U);
    EXPECT_EQ(pace.threads(), 2U);
}

TEST(WalkPace, ThreadsJoinWhileTheWalkWaitsUpToABound) {
    WalkPace pace(2, 12);
    std::vector<std::size_t> threads;
    for (int round = 0; round < 4; ++round)
        threads.push_back(pace.next(tick, 0.2 * tick));
    EXPECT_EQ(threads, (std::vector<std::size_t>{4, 8, 12, 12}));
}

TEST(WalkPace, TheyLeaveOneAfterAnotherWhenTheProcessorsAreBusy) {
    WalkPace pace(2, 16);
    for (int round = 0; round < 3; ++round)
        pace.next(tick, 0);
    EXPECT_EQ(pace.next(tick, 2 * tick), 12U);
    EXPECT_EQ(pace.next(tick, 1.4 * tick), 12U);  // neither waiting nor busy
    for (int round = 0; round < 10; ++round)
        pace.next(tick, 2 * tick);
    EXPECT_EQ(pace.threads(), 2U);
}

TEST(WalkPace, NoTimeSaysNothing) {
    WalkPace pace(1, 4);
    EXPECT_EQ(pace.next(0, 0), 1U);
    EXPECT_EQ(pace.next(-1, 5), 1U);
}

TEST(WalkPace, OneThreadAtLeastAndNoFewerThanAtFirst) {
    EXPECT_EQ(WalkPace(0, 0).threads(), 1U);
    WalkPace pace(4, 2);
    EXPECT_TRUE(pace.isFixed());
    EXPECT_EQ(pace.next(tick, 0), 4U);
}

}  // namespace
}  // namespace velto
