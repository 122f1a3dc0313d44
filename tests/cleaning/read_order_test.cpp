#include "cleaning/read_order.h"

#include <gmock/gmock.h>

#include "cleaning/DigestStore.h"

namespace velto {
namespace {

using testing::ElementsAre;

constexpr std::int64_t oneMiB = 1024 * 1024;

std::vector<ReadLane> lanesOf(const std::vector<std::optional<FilePlace>>& places) {
    std::vector<std::size_t> files(places.size());
    for (std::size_t file = 0; file < files.size(); ++file)
        files[file] = file;
    return readLanes(
        files, [&](std::size_t file) -> const std::optional<FilePlace>& { return places[file]; });
}

TEST(ReadOrder, ADiskThatRotatesIsReadFromItsStartToItsEndByOneReader) {
    const auto at = [](std::uint64_t position) { return FilePlace{1, true, position}; };
    EXPECT_THAT(lanesOf({at(70), at(20), at(90), at(10)}), ElementsAre(ElementsAre(3, 1, 0, 2)));
}

TEST(ReadOrder, EachDiskThatRotatesIsReadForItself) {
    const FilePlace one{1, true, 50};
    const FilePlace other{2, true, 40};
    const FilePlace first{1, true, 0};
    EXPECT_THAT(lanesOf({one, other, first}), ElementsAre(ElementsAre(2, 0), ElementsAre(1)));
}

TEST(ReadOrder, AnyOtherDiskIsReadInTheGivenOrderByManyReaders) {
    const FilePlace place{1, false, 0};
    EXPECT_THAT(lanesOf({place, std::nullopt, place}),
                ElementsAre(ElementsAre(0), ElementsAre(1), ElementsAre(2)));
}

TEST(ReadOrder, TheSlowDiskIsBegunFirst) {
    const FilePlace fast{1, false, 0};
    const FilePlace slow{2, true, 5};
    EXPECT_THAT(lanesOf({fast, slow, fast}),
                ElementsAre(ElementsAre(1), ElementsAre(0), ElementsAre(2)));
}

TEST(ReadOrder, SmallFilesAreComparedInOneGo) {
    EXPECT_EQ(nextComparison(0, 1'000'001), 1'000'001);
    EXPECT_EQ(nextComparison(0, 4 * oneMiB), 4 * oneMiB);
}

TEST(ReadOrder, LargeFilesAreComparedFurtherEachTime) {
    const std::int64_t length = 30 * oneMiB;
    std::vector<std::int64_t> ends;
    for (std::int64_t compared = 0; compared < length;) {
        compared = nextComparison(compared, length);
        ends.push_back(compared / oneMiB);
    }
    EXPECT_THAT(ends, ElementsAre(1, 2, 4, 8, 10, 12, 15, 18, 22, 27, 30));
}

TEST(ReadOrder, TheLargestFilesTakeFewParts) {
    std::size_t parts = 0;
    const std::int64_t length = std::int64_t{1} << 44;
    for (std::int64_t compared = 0; compared < length; ++parts)
        compared = nextComparison(compared, length);
    EXPECT_LE(parts, DigestStore::mostBeginnings);
}

}  // namespace
}  // namespace velto
