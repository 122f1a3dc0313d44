#include "platform/linux/GlibDispatcher.h"
#include "support/linux/main_loop.h"

#include <glib.h>
#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

namespace velto {
namespace {

using testing::ElementsAre;

TEST(GlibDispatcher, ThePageHearsEventsInTheOrderTheyWereSent) {
    GlibDispatcher dispatcher;
    std::vector<int> order;
    for (int number = 0; number < 100; ++number) {
        dispatcher.main([&order, number] { order.push_back(number); });
    }
    iterateUntil([&] { return order.size() == 100; });
    for (int number = 0; number < 100; ++number) {
        EXPECT_EQ(order[static_cast<std::size_t>(number)], number);
    }
}

TEST(GlibDispatcher, EventsOfOneWorkItemStayInOrderWhileOthersSendToo) {
    GlibDispatcher dispatcher;
    std::vector<std::vector<int>> received(4);
    std::size_t count = 0;
    for (std::size_t sender = 0; sender < received.size(); ++sender) {
        dispatcher.global(QualityOfService::userInitiated, [&, sender] {
            for (int number = 0; number < 50; ++number) {
                dispatcher.main([&, sender, number] {
                    received[sender].push_back(number);
                    ++count;
                });
            }
        });
    }
    iterateUntil([&] { return count == 200; });
    for (const auto& numbers : received) {
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
        EXPECT_EQ(numbers.size(), 50u);
    }
}

TEST(GlibDispatcher, WorkForTheMainThreadNeverRunsInsideTheCall) {
    GlibDispatcher dispatcher;
    std::vector<std::string> events;
    dispatcher.main([&] {
        dispatcher.main([&] { events.emplace_back("inner"); });
        events.emplace_back("outer");
    });
    EXPECT_TRUE(events.empty());
    iterateUntil([&] { return events.size() == 2; });
    EXPECT_THAT(events, ElementsAre("outer", "inner"));
}

TEST(GlibDispatcher, FileWorkRunsOffTheMainThreadAndItsAnswerOnIt) {
    GlibDispatcher dispatcher;
    const auto here = std::this_thread::get_id();
    std::thread::id worker, answer;
    bool workerIsMain = true, done = false;
    dispatcher.global(QualityOfService::utility, [&] {
        worker = std::this_thread::get_id();
        workerIsMain = dispatcher.isMainThread();
        dispatcher.main([&] {
            answer = std::this_thread::get_id();
            done = true;
        });
    });
    iterateUntil([&] { return done; });
    EXPECT_NE(worker, here);
    EXPECT_FALSE(workerIsMain);
    EXPECT_EQ(answer, here);
    EXPECT_TRUE(dispatcher.isMainThread());
}

TEST(GlibDispatcher, SeveralWorkItemsRunAtOnce) {
    // Each waits for all the others: run one after another they would never end.
    GlibDispatcher dispatcher;
    constexpr int items = 8;
    std::latch together(items);
    std::atomic<int> finished = 0;
    for (int item = 0; item < items; ++item) {
        dispatcher.global(QualityOfService::userInitiated, [&] {
            together.arrive_and_wait();
            dispatcher.main([&] { ++finished; });
        });
    }
    iterateUntil([&] { return finished == items; });
}

TEST(GlibDispatcher, ALongUtilityJobDoesNotHoldUpWhatTheUserAskedFor) {
    GlibDispatcher dispatcher;
    std::promise<void> release;
    const std::shared_future<void> released = release.get_future().share();
    for (int job = 0; job < 100; ++job) {
        dispatcher.global(QualityOfService::utility, [released] { released.wait(); });
    }
    bool answered = false;
    dispatcher.global(QualityOfService::userInitiated,
                      [&] { dispatcher.main([&] { answered = true; }); });
    iterateUntil([&] { return answered; });
    release.set_value();
}

TEST(GlibDispatcher, DelayedWorkRunsInTheOrderOfItsTimeAndNotBefore) {
    GlibDispatcher dispatcher;
    std::vector<std::string> events;
    const gint64 start = g_get_monotonic_time();
    gint64 late = 0;
    dispatcher.mainAfter(0.03, [&] {
        late = g_get_monotonic_time();
        events.emplace_back("late");
    });
    dispatcher.mainAfter(0, [&] { events.emplace_back("soon"); });
    EXPECT_TRUE(events.empty());
    iterateUntil([&] { return events.size() == 2; });
    EXPECT_THAT(events, ElementsAre("soon", "late"));
    EXPECT_GE(late - start, 30'000);  // microseconds: a lower bound, whatever the machine's load
}

TEST(GlibDispatcher, AnImpossibleDelayIsNoDelay) {
    GlibDispatcher dispatcher;
    int runs = 0;
    dispatcher.mainAfter(-5, [&] { ++runs; });
    dispatcher.mainAfter(std::numeric_limits<double>::quiet_NaN(), [&] { ++runs; });
    iterateUntil([&] { return runs == 2; });
}

TEST(GlibDispatcher, WhatHasNotBegunWhenTheProgramEndsNeverRunsAndIsReleased) {
    const auto held = std::make_shared<int>(0);
    bool ran = false;
    {
        GlibDispatcher dispatcher;
        dispatcher.main([held, &ran] { ran = true; });
        dispatcher.mainAfter(0, [held, &ran] { ran = true; });
    }
    EXPECT_EQ(held.use_count(), 1);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_FALSE(ran);
}

TEST(GlibDispatcher, TheEndWaitsForWorkThatIsRunning) {
    std::atomic<bool> finished = false;
    {
        GlibDispatcher dispatcher;
        std::promise<void> begun;
        dispatcher.global(QualityOfService::userInitiated, [&] {
            begun.set_value();
            std::this_thread::yield();
            dispatcher.main([] {});
            finished = true;
        });
        begun.get_future().wait();
    }
    EXPECT_TRUE(finished);
}

TEST(GlibDispatcher, AReadingThatHangsIsLeftBehindWhenTheProgramEnds) {
    GlibDispatcher dispatcher;
    std::promise<void> begun, release;
    dispatcher.global(QualityOfService::userInitiated, [&] {
        begun.set_value();
        release.get_future().wait();
    });
    begun.get_future().wait();
    EXPECT_FALSE(dispatcher.finish(0.01));
    release.set_value();
    EXPECT_TRUE(dispatcher.finish(600)) << "it has ended, only later";
}

TEST(GlibDispatcher, AChangeOfTheUsersFilesIsCompletedHoweverLongItTakes) {
    GlibDispatcher dispatcher;
    std::atomic<int> made = 0;
    std::promise<void> begun;
    dispatcher.change([&] {
        begun.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ++made;
        dispatcher.change([&] { ++made; });  // as an uninstall asks for its history entry
    });
    begun.get_future().wait();
    EXPECT_TRUE(dispatcher.finish(0));
    EXPECT_EQ(made, 2);
}

TEST(GlibDispatcher, ReadingsThatHangHoldUpNoChange) {
    GlibDispatcher dispatcher;
    std::promise<void> release, changed;
    const std::shared_future<void> released = release.get_future().share();
    for (int reading = 0; reading < 100; ++reading)
        dispatcher.global(QualityOfService::userInitiated, [released] { released.wait(); });
    dispatcher.change([&] { changed.set_value(); });
    changed.get_future().wait();
    release.set_value();
    EXPECT_TRUE(dispatcher.finish(600));
}

TEST(GlibDispatcher, WhatDroppedReadingHoldsIsLetGoOfElsewhere) {
    // The monitor of a closed window waits for its last sample when it goes.
    GlibDispatcher dispatcher;
    std::promise<void> begun, release;
    const std::shared_future<void> released = release.get_future().share();
    std::latch all(64);
    for (int reading = 0; reading < 64; ++reading) {
        dispatcher.global(QualityOfService::userInitiated, [&all, released] {
            all.count_down();
            released.wait();
        });
    }
    all.wait();
    const auto here = std::this_thread::get_id();
    std::thread::id where = here;
    bool ran = false;
    std::shared_ptr<int> held(new int, [&](int* number) {
        where = std::this_thread::get_id();
        std::unique_ptr<int> owned(number);
    });
    dispatcher.global(QualityOfService::userInitiated,
                      [held = std::move(held), &ran] { ran = true; });
    EXPECT_FALSE(dispatcher.finish(0.01));
    EXPECT_FALSE(dispatcher.finish(0.01));  // drops nothing that it has to do itself
    release.set_value();
    EXPECT_TRUE(dispatcher.finish(600));
    EXPECT_FALSE(ran);
    EXPECT_NE(where, here);
}

TEST(GlibDispatcherDeathTest, WorkThatThrowsEndsTheProgramInsteadOfBeingLost) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            GlibDispatcher dispatcher;
            dispatcher.main([] { throw std::runtime_error("fault"); });
            g_main_context_iteration(nullptr, TRUE);
        },
        "fault");
}

}  // namespace
}  // namespace velto
