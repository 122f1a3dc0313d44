#include "platform/parallel.h"

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace velto {
namespace {

TEST(ForEachInParallel, EveryIndexIsDoneOnce) {
    std::vector<std::atomic<int>> done(1'000);
    forEachInParallel(done.size(), 4, [&](std::size_t index, std::size_t) { ++done[index]; });
    for (const auto& count : done)
        EXPECT_EQ(count, 1);
}

TEST(ForEachInParallel, ThreadsThatRunAtOnceHaveDifferentNumbers) {
    // Each thread holds its first index until all three are at work.
    std::atomic<int> started = 0;
    std::vector<std::atomic<int>> seen(3);
    forEachInParallel(3, 3, [&](std::size_t, std::size_t thread) {
        ++seen.at(thread);
        ++started;
        started.notify_all();
        for (int now = started; now < 3; now = started)
            started.wait(now);
    });
    for (const auto& count : seen)
        EXPECT_EQ(count, 1);
}

TEST(ForEachInParallel, OneThreadIsTheCallersOwn) {
    std::thread::id used;
    forEachInParallel(1, 1, [&](std::size_t, std::size_t) { used = std::this_thread::get_id(); });
    EXPECT_EQ(used, std::this_thread::get_id());
}

TEST(ForEachInParallel, AnExceptionEndsTheRestAndReachesTheCaller) {
    std::atomic<int> done = 0;
    EXPECT_THROW(forEachInParallel(100'000, 1,
                                   [&](std::size_t index, std::size_t) {
                                       ++done;
                                       if (index == 10) throw std::runtime_error("full");
                                   }),
                 std::runtime_error);
    EXPECT_EQ(done, 11);
}

TEST(ForEachInParallel, NothingToDoCallsNothing) {
    forEachInParallel(0, 4, [](std::size_t, std::size_t) { FAIL(); });
    EXPECT_GE(processorCount(), 1u);
}

}  // namespace
}  // namespace velto
