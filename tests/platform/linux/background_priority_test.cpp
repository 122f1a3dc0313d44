#include "platform/background_priority.h"

#include <sys/resource.h>

#include <algorithm>
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

}  // namespace
}  // namespace velto
