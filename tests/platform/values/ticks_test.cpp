#include "platform/values/ticks.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

TEST(Ticks, OnAnIntelMacATickIsANanosecond) {
    EXPECT_EQ(nanosecondsOf(1'234'567'890, {1, 1}), 1'234'567'890u);
}

TEST(Ticks, OnAppleSiliconASecondHas24MillionOfThem) {
    EXPECT_EQ(nanosecondsOf(24'000'000, {125, 3}), 1'000'000'000u);
    EXPECT_EQ(nanosecondsOf(1, {125, 3}), 41u);
    EXPECT_EQ(nanosecondsOf(2, {125, 3}), 83u);
    EXPECT_EQ(nanosecondsOf(3, {125, 3}), 125u);
}

TEST(Ticks, AThousandYearsOfAManyCoresTimeDoNotOverflow) {
    constexpr std::uint64_t seconds = 400ULL * 365 * 86'400;
    EXPECT_EQ(nanosecondsOf(seconds * 24'000'000, {125, 3}), seconds * 1'000'000'000);
}

TEST(Ticks, AClockThatTellsNothingIsTakenAsItIs) { EXPECT_EQ(nanosecondsOf(7, {0, 0}), 7u); }

}  // namespace
}  // namespace velto
