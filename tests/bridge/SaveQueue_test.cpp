#include "bridge/SaveQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/FakeDispatcher.h"
#include "support/ThreadDispatcher.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SaveQueueTest : testing::Test {
    FakeDispatcher queues;
    SaveQueue saves{queues};
    std::vector<std::string> written;

    void put(const std::string& file, const std::string& text, const std::string& then = "") {
        SaveQueue::Work after;
        if (!then.empty()) after = [this, then] { written.push_back(then); };
        saves.put(
            file, [this, text] { written.push_back(text); }, after);
    }
};

TEST_F(SaveQueueTest, NothingIsWrittenOnTheThreadThatAsksAndAllOfItIsAChange) {
    put("a", "one");
    EXPECT_THAT(written, IsEmpty());
    EXPECT_EQ(queues.changes, 1);
    queues.runGlobal();
    EXPECT_THAT(written, ElementsAre("one"));
}

TEST_F(SaveQueueTest, FilesAreWrittenInTheOrderInWhichTheyWereFirstAskedFor) {
    put("a", "one");
    put("b", "two");
    put("c", "three");
    queues.runGlobal();
    EXPECT_THAT(written, ElementsAre("one", "two", "three"));
}

TEST_F(SaveQueueTest, OfAFileThatIsAskedForAgainOnlyTheLatestTextIsWritten) {
    put("a", "old", "told of the old one");
    put("b", "other");
    put("a", "new", "told of the new one");
    queues.runAll();
    EXPECT_THAT(written, ElementsAre("new", "other", "told of the old one", "told of the new one"));
}

TEST_F(SaveQueueTest, WhatFollowsRunsOnTheMainThreadOnceTheFileIsWritten) {
    put("a", "one", "told");
    queues.runMain();
    EXPECT_THAT(written, IsEmpty());
    queues.runGlobal();
    EXPECT_THAT(written, ElementsAre("one"));
    queues.runMain();
    EXPECT_THAT(written, ElementsAre("one", "told"));
}

TEST_F(SaveQueueTest, FinishingWritesWhatNobodyHasBegunWithAndOnlyOnce) {
    put("a", "one", "told");
    put("b", "two");
    saves.finish();
    EXPECT_THAT(written, ElementsAre("one", "two"));
    queues.runAll();
    EXPECT_THAT(written, ElementsAre("one", "two", "told"));
}

TEST_F(SaveQueueTest, WhatIsAskedForAfterFinishingIsWrittenToo) {
    put("a", "one");
    saves.finish();
    put("a", "two");
    queues.runAll();
    put("a", "three");
    queues.runAll();
    EXPECT_THAT(written, ElementsAre("one", "two", "three"));
}

TEST(SaveQueueThreads, TheLatestTextIsWhatStaysWhoeverWritesIt) {
    constexpr int rounds = 200;
    int file = 0;  // whoever writes has it alone
    int told = 0;
    ThreadDispatcher threads;
    {
        const SaveQueue saves(threads);
        for (int round = 1; round <= rounds; ++round) {
            saves.put(
                "file", [&file, round] { file = round; }, [&told] { ++told; });
            if (round % 3 != 0) continue;
            saves.finish();
            ASSERT_EQ(file, round);
        }
    }
    threads.runMainUntil([&] { return told == rounds; });
    threads.join();
    EXPECT_EQ(file, rounds);
}

}  // namespace
}  // namespace velto
