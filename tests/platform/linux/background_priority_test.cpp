#include "platform/background_priority.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>

#include "platform/parallel.h"

namespace velto {
namespace {

constexpr int behindOthers = 5;

/// The calling thread's: 0 for the usual one, greater for what goes after it.
int ownPriority() { return getpriority(PRIO_PROCESS, 0); }

/// The tests themselves may have been started behind others.
int expected() { return std::max(ownPriority(), behindOthers); }

TEST(BackgroundPriority, WorkLetsOthersGoFirstAndItsCallerStaysAsItWas) {
    const int before = ownPriority();
    const int behind = expected();
    int inside = 0;
    runLettingOthersGoFirst([&] { inside = ownPriority(); });
    EXPECT_EQ(inside, behind);
    EXPECT_EQ(ownPriority(), before);
}

TEST(BackgroundPriority, ThreadsThatItStartsDoSoToo) {
    const int behind = expected();
    std::mutex lock;
    std::vector<int> priorities;
    runLettingOthersGoFirst([&] {
        forEachInParallel(64, 4, [&](std::size_t, std::size_t) {
            const std::lock_guard guard(lock);
            priorities.push_back(ownPriority());
        });
    });
    EXPECT_EQ(priorities.size(), 64u);
    EXPECT_THAT(priorities, testing::Each(behind));
}

TEST(BackgroundPriority, WhatItThrowsReachesTheCaller) {
    EXPECT_THROW(runLettingOthersGoFirst([] { throw std::runtime_error("no"); }),
                 std::runtime_error);
}

TEST(BackgroundPriority, WhatIsLowerStaysLower) {
    const int lowest = std::max(ownPriority(), 15);
    int inside = 0;
    runLettingOthersGoFirst([&] {
        setpriority(PRIO_PROCESS, 0, lowest);
        letOthersGoFirst();
        inside = ownPriority();
    });
    EXPECT_EQ(inside, lowest);
}

/// Of the calling thread.
bool isIdle() { return sched_getscheduler(0) == SCHED_IDLE; }
int diskClass() {
    constexpr int whoProcess = 1;
    constexpr int classShift = 13;
    return static_cast<int>(syscall(SYS_ioprio_get, whoProcess, 0)) >> classShift;
}

TEST(BackgroundPriority, WorkThatNobodyLooksAtLeavesTheMachineToOthers) {
    const auto unwatched = std::make_shared<std::atomic<bool>>(true);
    std::mutex lock;
    std::vector<bool> idle;
    runLettingOthersGoFirst(
        [&] {
            forEachInParallel(64, 4, [&](std::size_t, std::size_t) {
                const std::lock_guard guard(lock);
                idle.push_back(isIdle() && diskClass() == 3);
            });
        },
        unwatched);
    EXPECT_EQ(idle.size(), 64U);
    EXPECT_THAT(idle, testing::Each(true));
    EXPECT_FALSE(isIdle());
}

TEST(BackgroundPriority, ItDoesSoFromTheMomentInWhichNobodyLooksAnyMore) {
    const auto unwatched = std::make_shared<std::atomic<bool>>(false);
    runLettingOthersGoFirst(
        [&] {
            followPriority();
            EXPECT_FALSE(isIdle());
            *unwatched = true;
            followPriority();
            EXPECT_TRUE(isIdle());
            EXPECT_EQ(diskClass(), 3);
            *unwatched = false;
            followPriority();
            EXPECT_NE(diskClass(), 3) << "whoever looks again gets the disk at once";
        },
        unwatched);
}

}  // namespace
}  // namespace velto
