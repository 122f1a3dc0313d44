#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "cleaning/DupFinder.h"
#include "support/FakeFileContents.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

constexpr std::int64_t readSize = 1024 * 1024;  // what is read at once; the files have some of it

/// A clock that reads move on, from whatever thread.
class ReadingClock final : public Clock {
public:
    double now() const override { return monotonic(); }
    double monotonic() const override { return static_cast<double>(milliseconds_) / 1000; }
    void advance(std::int64_t milliseconds) { milliseconds_ += milliseconds; }

private:
    std::atomic<std::int64_t> milliseconds_{0};
};

/// Pairs of equal files, and a clock that only reading from some offset on moves: 4096 and further
/// is what the full-hash stage reads.
struct DupFinderBudget : testing::Test {
    void addPair(const std::string& name, std::int64_t length) {
        for (const char* copy : {"/a/", "/b/"}) {
            records.push_back({copy + name, length});
            contents.files[copy + name].content =
                name + std::string(static_cast<std::size_t>(length) - name.size(), 'x');
        }
    }
    DupFinder::Result find(std::size_t threads = 1) {
        return DupFinder(clock, contents, threads).find(records, stopped);
    }

    ReadingClock clock;
    FakeFileContents contents;
    std::vector<FileRecord> records;
    std::function<bool()> stopped;
};

TEST_F(DupFinderBudget, TheCountGoesOnWhileOneHugeFileIsRead) {
    addPair("huge", 9 * readSize);
    std::vector<std::pair<std::int64_t, std::int64_t>> told;
    DupFinder(clock, contents, 1)
        .find(records, {}, DupFinder::Budget::twelveSeconds,
              [&](std::int64_t files, std::int64_t bytes) { told.emplace_back(files, bytes); });
    EXPECT_EQ(told.back().first, 2);
    EXPECT_GE(told.back().second, 18 * readSize);
    EXPECT_TRUE(std::ranges::is_sorted(told));
    for (std::size_t index = 1; index < told.size(); ++index)
        EXPECT_THAT(told[index].second - told[index - 1].second, Le(readSize));
}

TEST_F(DupFinderBudget, WhatWasCompleteByTheDeadlineIsReturned) {
    addPair("late", 9 * readSize);
    addPair("early", 2 * readSize);
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path == "/b/late" && offset == 3 * readSize) clock.advance(12'001);
    };
    const auto result = find();
    EXPECT_TRUE(result.budgetExhausted);
    ASSERT_THAT(result.groups, SizeIs(1));
    EXPECT_THAT(result.groups[0].paths, ElementsAre("/a/early", "/b/early"));
}

TEST_F(DupFinderBudget, TheDeadlineIsOverrunByNoMoreThanOneChunk) {
    addPair("huge", 20 * readSize);
    contents.beforeRead = [&](const std::string&, std::int64_t offset) {
        if (offset == 5 * readSize) clock.advance(13'000);
    };
    EXPECT_TRUE(find().budgetExhausted);
    EXPECT_THAT(contents.bytesRead("/a/huge"), Le(6 * readSize + 3 * 4096));
}

TEST_F(DupFinderBudget, ExactlyTwelveSecondsAreWithinTheBudget) {
    addPair("file", 3 * readSize);
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path == "/a/file" && offset == readSize) clock.advance(12'000);
    };
    const auto result = find();
    EXPECT_FALSE(result.budgetExhausted);
    EXPECT_THAT(result.groups, SizeIs(1));
}

TEST_F(DupFinderBudget, TheQuickStageDoesNotUseItUp) {
    addPair("file", 3 * readSize);
    contents.beforeRead = [&](const std::string&, std::int64_t offset) {
        if (offset == 0 && contents.reads().size() < 2) clock.advance(60'000);
    };
    const auto result = find();
    EXPECT_FALSE(result.budgetExhausted);
    EXPECT_THAT(result.groups, SizeIs(1));
}

TEST_F(DupFinderBudget, TimeThatRunsOutWithTheLastByteCostsNothing) {
    addPair("file", 2 * readSize);
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path == "/b/file" && offset == readSize && contents.bytesRead(path) > readSize) {
            clock.advance(20'000);
        }
    };
    const auto result = find();
    EXPECT_FALSE(result.budgetExhausted);
    EXPECT_THAT(result.groups, SizeIs(1));
}

TEST_F(DupFinderBudget, ManySmallPairsAreSettledBeforeAHugeOne) {
    addPair("aaa huge", 40 * readSize);
    for (int index = 0; index < 50; ++index)
        addPair(std::to_string(index), readSize + 1);
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path.ends_with("huge") && offset >= readSize) clock.advance(1'000);
    };
    const auto result = find();
    EXPECT_TRUE(result.budgetExhausted);
    EXPECT_GE(result.groups.size(), 32u);
}

TEST_F(DupFinderBudget, SeveralThreadsKeepToItToo) {
    constexpr int pairs = 20;
    for (int index = 0; index < pairs; ++index)
        addPair(std::to_string(index), 2 * readSize);
    contents.beforeRead = [&](const std::string&, std::int64_t offset) {
        if (offset >= readSize) clock.advance(700);
    };
    const auto result = find(4);
    EXPECT_TRUE(result.budgetExhausted);
    EXPECT_LT(result.groups.size(), std::size_t{pairs});
    for (const auto& group : result.groups)
        EXPECT_THAT(group.paths, SizeIs(2));
}

TEST_F(DupFinderBudget, ACallerWhoWantsNoMoreStopsItWithoutTheFlag) {
    addPair("file", 9 * readSize);
    std::atomic<bool> enough = false;
    stopped = [&] { return enough.load(); };
    contents.beforeRead = [&](const std::string&, std::int64_t offset) {
        if (offset == 2 * readSize) enough = true;
    };
    const auto result = find();
    EXPECT_FALSE(result.budgetExhausted);
    EXPECT_THAT(result.groups, IsEmpty());
    EXPECT_THAT(contents.bytesRead("/a/file"), Le(3 * readSize + 3 * 4096));
}

TEST_F(DupFinderBudget, WhatItDidNotGetThroughIsLeftForAnotherSearch) {
    addPair("late", 9 * readSize);
    addPair("early", 2 * readSize);
    records.push_back({"/alone", 3 * readSize});
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path == "/b/late" && offset == 3 * readSize) clock.advance(12'001);
    };
    const auto first = find();
    EXPECT_THAT(first.left, ElementsAre(records[0], records[1]));
    contents.beforeRead = nullptr;
    const auto rest = DupFinder(clock, contents, 1).find(first.left);
    ASSERT_THAT(rest.groups, SizeIs(1));
    EXPECT_THAT(rest.groups[0].paths, ElementsAre("/a/late", "/b/late"));
    EXPECT_THAT(rest.left, IsEmpty());
}

TEST_F(DupFinderBudget, WithEveryThreadNoFileIsBothSettledAndLeft) {
    for (int index = 0; index < 20; ++index)
        addPair(std::to_string(index), 3 * readSize);
    contents.beforeRead = [&](const std::string&, std::int64_t offset) {
        if (offset >= readSize) clock.advance(200);
    };
    const auto result = find(4);
    EXPECT_EQ(result.groups.size() * 2 + result.left.size(), records.size());
}

TEST_F(DupFinderBudget, WithoutALimitNothingIsLeft) {
    addPair("file", 9 * readSize);
    contents.beforeRead = [&](const std::string&, std::int64_t) { clock.advance(60'000); };
    const auto result =
        DupFinder(clock, contents, 1).find(records, {}, DupFinder::Budget::unlimited);
    EXPECT_FALSE(result.budgetExhausted);
    EXPECT_THAT(result.groups, SizeIs(1));
    EXPECT_THAT(result.left, IsEmpty());
}

TEST_F(DupFinderBudget, ASearchThatIsStoppedLeavesTheRest) {
    addPair("file", 9 * readSize);
    addPair("other", 8 * readSize);
    stopped = [] { return true; };
    EXPECT_THAT(find().left, SizeIs(4));
}

}  // namespace
}  // namespace velto
