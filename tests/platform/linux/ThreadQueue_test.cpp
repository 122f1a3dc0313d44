#include "platform/linux/ThreadQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <vector>

namespace velto {
namespace {

TEST(ThreadQueue, WorkRunsInOrderOnOneThreadThatIsNotTheCallers) {
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    std::promise<void> done;
    ThreadQueue queue("test");
    for (int i = 0; i < 100; ++i) {
        queue.async([&, i] {
            order.push_back(i);
            threads.push_back(std::this_thread::get_id());
        });
    }
    queue.async([&] { done.set_value(); });
    done.get_future().wait();
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
    for (const auto& thread : threads)
        EXPECT_EQ(thread, threads.front());
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST(ThreadQueue, ATimerFiresAgainAndAgainAndNotTooEarly) {
    using Clock = std::chrono::steady_clock;
    std::vector<Clock::time_point> firings;
    std::promise<void> done;
    ThreadQueue queue("test");
    const auto start = Clock::now();
    const auto timer = queue.repeat(0.02, 0.01, [&] {
        firings.push_back(Clock::now());
        if (firings.size() == 4) done.set_value();
    });
    done.get_future().wait();
    EXPECT_GE(firings[0] - start, std::chrono::milliseconds(20));
    EXPECT_GE(firings[3] - start, std::chrono::milliseconds(50));
}

TEST(ThreadQueue, ATimerThatItsOwnWorkEndsFiresNoMore) {
    std::atomic<int> firings = 0;
    std::promise<void> done;
    std::unique_ptr<SerialQueue::Timer> timer;
    ThreadQueue queue("test");
    queue.async([&] {
        timer = queue.repeat(0, 0.001, [&] {
            ++firings;
            timer.reset();
            // By the time that this one has fired, the other would have, many times.
            timer = queue.repeat(0.02, 60, [&] { done.set_value(); });
        });
    });
    done.get_future().wait();
    EXPECT_EQ(firings, 1);
}

TEST(ThreadQueue, MissedFiringsBecomeOne) {
    using Clock = std::chrono::steady_clock;
    std::vector<Clock::time_point> firings;
    std::promise<void> done;
    ThreadQueue other("other");
    std::promise<void> release;
    const auto wait = other.repeat(0.2, 60, [&] { release.set_value(); });
    ThreadQueue queue("test");
    const auto timer = queue.repeat(0, 0.05, [&] {
        // Several periods pass while the first firing lasts.
        if (firings.empty()) release.get_future().wait();
        firings.push_back(Clock::now());
        if (firings.size() == 5) done.set_value();
    });
    done.get_future().wait();
    // One for all that were missed, the next within the period, then two whole periods.
    EXPECT_GE(firings[4] - firings[0], std::chrono::milliseconds(100));
}

TEST(ThreadQueue, TheEndWaitsForWhatRunsAndForNothingElse) {
    bool finished = false;
    std::promise<void> begun;
    std::unique_ptr<SerialQueue::Timer> timer;
    {
        ThreadQueue queue("test");
        timer = queue.repeat(3600, 3600, [] {});
        queue.async([&] {
            begun.set_value();
            for (int i = 0; i < 1000; ++i)
                std::this_thread::yield();
            finished = true;
        });
        begun.get_future().wait();
    }
    EXPECT_TRUE(finished);
    timer.reset();  // outlived its queue
}

}  // namespace
}  // namespace velto
