#include "analysis/growth/thinning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace velto {
namespace {

constexpr std::int64_t hour = 3600;
constexpr std::int64_t secondsOfADay = 24 * hour;
constexpr std::int64_t firstAnalysis = 1'800'000'000;

/// What is stored after each of so many analyses, one every `step` seconds.
struct Year {
    std::vector<StoredSnapshot> stored;
    std::size_t most = 0;
    std::int64_t mostBytes = 0;

    void analyse(std::int64_t moment, std::int64_t bytes) {
        stored.push_back({.moment = moment, .bytes = bytes});
        for (const std::int64_t gone : superfluousSnapshots(stored))
            std::erase_if(stored, [gone](const StoredSnapshot& one) { return one.moment == gone; });
        std::int64_t sum = 0;
        for (const StoredSnapshot& one : stored)
            sum += one.bytes;
        most = std::max(most, stored.size());
        mostBytes = std::max(mostBytes, sum);
    }
    /// How far before the wanted moment the nearest one at or before it lies; -1: there is none.
    std::int64_t misses(std::int64_t wanted) const {
        std::int64_t found = -1;
        for (const StoredSnapshot& one : stored) {
            if (one.moment <= wanted) found = wanted - one.moment;
        }
        return found;
    }
};

TEST(GrowthThinning, OneAnalysisUnderAClockYearsAheadTakesNoHistoryAway) {
    Year year;
    for (int number = 0; number < 40; ++number)
        year.analyse(firstAnalysis + number * secondsOfADay, 100'000);
    const std::size_t before = year.stored.size();
    year.analyse(firstAnalysis + 5'000 * secondsOfADay, 100'000);
    EXPECT_GE(year.stored.size(), before - 4);
    EXPECT_GT(before, 10U);
}

TEST(GrowthThinning, AYearOfAnalysesLeavesSomeOfEachTime) {
    for (const std::int64_t step : {6 * hour, secondsOfADay, 3 * secondsOfADay}) {
        SCOPED_TRACE(step / hour);
        Year year;
        std::int64_t now = firstAnalysis;
        for (; now < firstAnalysis + 500 * secondsOfADay; now += step)
            year.analyse(now, 100'000);
        now -= step;
        EXPECT_LE(year.most, mostSnapshots);
        EXPECT_EQ(year.stored.back().moment, now);
        struct Wanted {
            std::int64_t age;
            std::int64_t within;
        };
        for (const Wanted wanted :
             {Wanted{2 * secondsOfADay, secondsOfADay}, Wanted{7 * secondsOfADay, secondsOfADay},
              Wanted{12 * secondsOfADay, secondsOfADay},
              Wanted{30 * secondsOfADay, 7 * secondsOfADay},
              Wanted{80 * secondsOfADay, 7 * secondsOfADay},
              Wanted{200 * secondsOfADay, 30 * secondsOfADay},
              Wanted{330 * secondsOfADay, 30 * secondsOfADay}}) {
            const std::int64_t missed = year.misses(now - wanted.age);
            EXPECT_GE(missed, 0) << wanted.age / secondsOfADay;
            EXPECT_LE(missed, wanted.within + step) << wanted.age / secondsOfADay;
        }
        EXPECT_GE(year.stored.front().moment, now - 366 * secondsOfADay);
    }
}

TEST(GrowthThinning, TheLastAnalysesAreAllThere) {
    Year year;
    for (int index = 0; index < 10; ++index)
        year.analyse(firstAnalysis + index * 60, 1000);
    EXPECT_EQ(year.stored.size(), 10U);
}

TEST(GrowthThinning, AllTogetherStayBelowTheBoundAndTheOldestGoFirst) {
    Year year;
    for (int index = 0; index < 40; ++index)
        year.analyse(firstAnalysis + index * secondsOfADay, 5 << 20);
    EXPECT_LE(year.mostBytes, mostGrowthBytes);
    ASSERT_EQ(year.stored.size(), 6U);
    EXPECT_EQ(year.stored.back().moment, firstAnalysis + 39 * secondsOfADay);
}

TEST(GrowthThinning, TheNewestTwoStayHoweverOldAndLarge) {
    const std::vector<StoredSnapshot> stored = {
        {.moment = firstAnalysis, .bytes = 16 << 20},
        {.moment = firstAnalysis + 900 * secondsOfADay, .bytes = 40 << 20}};
    EXPECT_TRUE(superfluousSnapshots(stored).empty());
    EXPECT_TRUE(superfluousSnapshots({}).empty());
}

}  // namespace
}  // namespace velto
