#include "platform/posix/extents.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

using Extents = std::vector<FileExtent>;

FileExtent extent(std::int64_t offset, std::int64_t physical, std::int64_t length) {
    return {.offset = offset, .physical = physical, .length = length};
}

TEST(OwnSpaceIn, CountsWholeBlocksThatNobodyElseHolds) {
    FileExtent shared = extent(8192, 300'000, 4096);
    shared.isShared = true;
    EXPECT_EQ(
        ownSpaceIn({extent(0, 100'000, 8192), shared, extent(12288, 400'000, 4096)}, 16000, 4096),
        (OwnSpace{12288, true}));
}

TEST(OwnSpaceIn, LeavesOutWhatIsReservedBeyondTheEnd) {
    EXPECT_EQ(ownSpaceIn({extent(0, 100'000, 65536)}, 5000, 4096), (OwnSpace{8192, true}));
    EXPECT_EQ(ownSpaceIn({extent(8192, 100'000, 4096)}, 5000, 4096), (OwnSpace{0, true}));
}

TEST(OwnSpaceIn, IsNotExactWhereBlocksAreCompressed) {
    FileExtent packed = extent(0, 100'000, 131072);
    packed.isEncoded = true;
    EXPECT_EQ(ownSpaceIn({packed}, 131072, 4096), (OwnSpace{131072, false}));
    packed.isShared = true;
    EXPECT_EQ(ownSpaceIn({packed}, 131072, 4096), (OwnSpace{0, true}));
}

TEST(OwnSpaceIn, CountsNothingThatHasNoPlaceOfItsOwn) {
    FileExtent inner = extent(0, 0, 100);
    inner.isNowhere = true;
    EXPECT_EQ(ownSpaceIn({inner}, 100, 4096), (OwnSpace{0, true}));
}

TEST(LiesInSameBlocks, HoweverTheyAreCutIntoPieces) {
    const Extents whole{extent(0, 100'000, 8192), extent(16384, 500'000, 4096)};
    const Extents pieces{extent(0, 100'000, 4096), extent(4096, 104'096, 4096),
                         extent(16384, 500'000, 4096)};
    EXPECT_TRUE(liesInSameBlocks(whole, pieces, 20480));
    EXPECT_TRUE(liesInSameBlocks({}, {}, 20480));  // nothing but a hole
}

TEST(LiesInSameBlocks, NotWhenOnePlaceIsAnother) {
    const Extents one{extent(0, 100'000, 8192)};
    EXPECT_FALSE(liesInSameBlocks(one, {extent(0, 100'000, 4096)}, 8192));
    EXPECT_FALSE(
        liesInSameBlocks(one, {extent(0, 100'000, 4096), extent(4096, 200'000, 4096)}, 8192));
    EXPECT_FALSE(liesInSameBlocks(one, {}, 8192));
    FileExtent inner = extent(0, 0, 100);
    inner.isNowhere = true;
    EXPECT_FALSE(liesInSameBlocks({inner}, {inner}, 100));
}

}  // namespace
}  // namespace velto
