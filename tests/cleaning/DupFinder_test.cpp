#include "cleaning/DupFinder.h"

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

#include "support/FakeFileContents.h"
#include "support/fakes.h"

namespace velto {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

constexpr std::size_t megabyte = 1024 * 1024;

struct DupFinderTest : testing::Test {
    /// Adds a file whose allocated size is its length.
    FakeFileContents::File& add(const std::string& path, std::string content) {
        records.push_back({path, static_cast<std::int64_t>(content.size())});
        FakeFileContents::File& file = contents.files[path];
        file.content = std::move(content);
        return file;
    }
    DupFinder::Result find(std::size_t threads = 1) {
        return DupFinder(clock, contents, threads).find(records);
    }
    std::vector<std::vector<std::string>> paths(const DupFinder::Result& result) const {
        std::vector<std::vector<std::string>> lists;
        for (const auto& group : result.groups)
            lists.push_back(group.paths);
        return lists;
    }

    FakeClock clock;
    FakeFileContents contents;
    std::vector<FileRecord> records;
};

std::string filled(std::size_t length, char fill = 'a') { return std::string(length, fill); }

TEST_F(DupFinderTest, OnlyFilesOfMoreThanAMillionBytesAreCompared) {
    add("/1", filled(1'000'000));
    add("/2", filled(1'000'000));
    add("/3", filled(1'000'001));
    add("/4", filled(1'000'001));
    const auto result = find();
    EXPECT_THAT(paths(result), ElementsAre(ElementsAre("/3", "/4")));
    EXPECT_EQ(contents.bytesRead("/1"), 0);
    EXPECT_FALSE(result.budgetExhausted);
}

TEST_F(DupFinderTest, ThreeIdenticalFilesAreOneGroupWithItsHashAndSize) {
    add("/b", filled(1'500'000));
    add("/other", filled(1'500'001));
    add("/a", filled(1'500'000));
    add("/c", filled(1'500'000));
    const auto result = find();
    ASSERT_THAT(result.groups, SizeIs(1));
    EXPECT_THAT(result.groups[0].paths, ElementsAre("/b", "/a", "/c"));
    EXPECT_EQ(result.groups[0].gb, 0.0015);
    // The digest of 1,500,000 times "a", from the coreutils' sha256sum.
    EXPECT_EQ(result.groups[0].hash,
              "f30207a92765493dcdd80a5a2b541b3f67073c413676ab523b30c4feb12fac90");
}

TEST_F(DupFinderTest, EqualFilesThatTakeUpDifferentRoomAreFound) {
    add("/plain", filled(1'500'000));
    add("/compressed", filled(1'500'000));
    add("/other", filled(1'500'001));
    records[0] = {"/plain", 1'507'328, 1'500'000};
    records[1] = {"/compressed", 1'048'576, 1'500'000};
    records[2] = {"/other", 1'507'328, 1'500'001};
    const auto result = find();
    ASSERT_THAT(result.groups, SizeIs(1));
    EXPECT_THAT(result.groups[0].paths, ElementsAre("/plain", "/compressed"));
    EXPECT_EQ(result.groups[0].gb, 0.001507328) << "of the first";
    EXPECT_EQ(contents.bytesRead("/other"), 0) << "no other file has its length";
}

TEST_F(DupFinderTest, AFileOfAnotherSizeIsNotEvenOpened) {
    add("/1", filled(2'000'000));
    add("/2", filled(2'000'001));
    EXPECT_THAT(find().groups, IsEmpty());
    EXPECT_EQ(contents.opened(), 0);
}

TEST_F(DupFinderTest, FilesThatBeginDifferentlyAreNeverReadInFull) {
    add("/1", filled(3'000'000)).content[4095] = 'x';
    add("/2", filled(3'000'000));
    EXPECT_THAT(find().groups, IsEmpty());
    EXPECT_EQ(contents.bytesRead("/1"), 4096);
    EXPECT_EQ(contents.bytesRead("/2"), 4096);
}

TEST_F(DupFinderTest, FilesThatDifferInOneByteAnywhereAreInNoGroup) {
    for (const std::size_t offset : {4'096u, 777'777u, 1'048'575u, 1'048'576u, 2'999'999u}) {
        records.clear();
        add("/1", filled(3'000'000)).content[offset] = 'x';
        add("/2", filled(3'000'000));
        EXPECT_THAT(find().groups, IsEmpty()) << offset;
    }
}

TEST_F(DupFinderTest, FilesOfOneFormatThatDifferFurtherInAreNotReadInFull) {
    for (int index = 0; index < 10; ++index) {
        add("/" + std::to_string(index),
            filled(4096, 'h') + filled(8 * megabyte, static_cast<char>('a' + index)));
    }
    EXPECT_THAT(find().groups, IsEmpty());
    for (const FileRecord& record : records) {
        EXPECT_THAT(contents.bytesRead(record.path), Le(3 * 4096));
    }
}

TEST_F(DupFinderTest, FilesWithAllSamplesAlikeButOtherContentAreToldApart) {
    add("/1", filled(2'000'000));
    add("/2", filled(2'000'000)).content[300'000] = 'x';
    add("/3", filled(2'000'000));
    add("/4", filled(2'000'000)).content[300'000] = 'x';
    EXPECT_THAT(paths(find()), ElementsAre(ElementsAre("/1", "/3"), ElementsAre("/2", "/4")));
}

TEST_F(DupFinderTest, WholeFilesAreReadInChunksOfOneMebibyte) {
    add("/1", filled(3 * megabyte + 5));
    add("/2", filled(3 * megabyte + 5));
    EXPECT_THAT(find().groups, SizeIs(1));
    EXPECT_THAT(contents.reads(), Each(Field(&FakeFileContents::Read::wanted, Le(megabyte))));
    EXPECT_THAT(contents.bytesRead("/1"),
                Le(static_cast<std::int64_t>(3 * megabyte) + 5 + 3 * 4096));
}

TEST_F(DupFinderTest, GroupsComeInTheOrderOfTheirFirstPath) {
    add("/1", filled(3'000'000));
    add("/2", filled(1'100'000));
    add("/3", filled(1'100'000));
    add("/4", filled(3'000'000, 'z'));
    add("/5", filled(3'000'000));
    add("/6", filled(3'000'000, 'z'));
    EXPECT_THAT(paths(find()), ElementsAre(ElementsAre("/1", "/5"), ElementsAre("/2", "/3"),
                                           ElementsAre("/4", "/6")));
}

TEST_F(DupFinderTest, ManyThreadsFindWhatOneFinds) {
    for (int index = 0; index < 105; ++index) {
        add("/" + std::to_string(index), filled(1'000'001 + static_cast<std::size_t>(index % 7),
                                                static_cast<char>('a' + index % 5)));
    }
    const auto alone = find(1);
    const auto together = find(8);
    EXPECT_THAT(alone.groups, SizeIs(35));
    EXPECT_EQ(paths(alone), paths(together));
}

TEST_F(DupFinderTest, FilesOfOneAllocatedSizeButTwoLengthsDiffer) {
    add("/1", filled(1'999'999));
    add("/2", filled(2'000'000));
    records = {{"/1", 2'002'944}, {"/2", 2'002'944}};
    EXPECT_THAT(find().groups, IsEmpty());
}

TEST_F(DupFinderTest, AnUnreadableFileIsLeftOutOfItsGroup) {
    add("/1", filled(2 * megabyte));
    add("/closed", filled(2 * megabyte)).openError = EACCES;
    add("/bad start", filled(2 * megabyte)).readError = EIO;
    add("/bad end", filled(2 * megabyte)) = {
        .content = filled(2 * megabyte), .readError = EIO, .readErrorFrom = megabyte};
    add("/2", filled(2 * megabyte));
    const auto result = find();
    EXPECT_THAT(paths(result), ElementsAre(ElementsAre("/1", "/2")));
    EXPECT_FALSE(result.budgetExhausted);
}

TEST_F(DupFinderTest, AFileThatFailsAfterItsSamplesSpoilsNoOther) {
    // Fails in the second chunk, so that a digest has been begun when it is given up.
    add("/1", filled(4 * megabyte));
    add("/2", filled(4 * megabyte));
    add("/bad", filled(4 * megabyte));
    add("/3", filled(4 * megabyte));
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path == "/bad" && offset == static_cast<std::int64_t>(megabyte)) {
            contents.files["/bad"].readError = EIO;
        }
    };
    EXPECT_THAT(paths(find(1)), ElementsAre(ElementsAre("/1", "/2", "/3")));
}

TEST_F(DupFinderTest, InterruptedAndShortReadsAreCarriedOn) {
    auto& file = add("/1", filled(2 * megabyte));
    file.interruptions = 3;
    file.longestRead = 1'000;
    add("/2", filled(2 * megabyte));
    EXPECT_THAT(paths(find()), ElementsAre(ElementsAre("/1", "/2")));
}

TEST_F(DupFinderTest, AFileThatGrowsWhileItIsReadIsLeftOut) {
    add("/1", filled(2 * megabyte));
    add("/2", filled(2 * megabyte));
    add("/growing", filled(2 * megabyte)).sizeAfterReads = 3 * megabyte;
    EXPECT_THAT(paths(find()), ElementsAre(ElementsAre("/1", "/2")));
}

TEST_F(DupFinderTest, AFileThatShrinksWhileItIsReadIsLeftOut) {
    add("/1", filled(3 * megabyte));
    add("/2", filled(3 * megabyte));
    add("/shrinking", filled(3 * megabyte));
    contents.beforeRead = [&](const std::string& path, std::int64_t offset) {
        if (path == "/shrinking" && offset == static_cast<std::int64_t>(megabyte)) {
            contents.files[path].content.resize(megabyte);
        }
    };
    EXPECT_THAT(paths(find()), ElementsAre(ElementsAre("/1", "/2")));
}

TEST_F(DupFinderTest, NoFilesNoGroups) {
    EXPECT_THAT(find().groups, IsEmpty());
    EXPECT_FALSE(find().budgetExhausted);
}

}  // namespace
}  // namespace velto
