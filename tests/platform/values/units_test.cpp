#include "platform/values/units.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

TEST(Units, GigabytesAreDecimal) { EXPECT_DOUBLE_EQ(gigabytes(1'500'000'000), 1.5); }

TEST(Units, HalvesRoundAwayFromZero) {
    EXPECT_DOUBLE_EQ(roundedToTenth(gigabytes(1'049'999'999)), 1.0);
    EXPECT_DOUBLE_EQ(roundedToTenth(gigabytes(1'050'000'000)), 1.1);
    EXPECT_DOUBLE_EQ(roundedToTenth(-0.25), -0.3);
}

TEST(Units, TenthsHaveAPointAndOneDecimal) {
    EXPECT_EQ(tenths(1234.56), "1234.6");
    EXPECT_EQ(tenths(0.04), "0.0");
}

TEST(Units, TheShortestTextReadsBackAsTheSameNumber) {
    EXPECT_EQ(shortest(1.2), "1.2");
    EXPECT_EQ(shortest(0), "0.0");
    EXPECT_EQ(shortest(1700000000), "1700000000.0");
    EXPECT_EQ(std::stod(shortest(1763700000.123456)), 1763700000.123456);
}

}  // namespace
}  // namespace velto
