#include "cleaning/folder_size.h"

#include <cerrno>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>

#include "support/FakeDirectoryReader.h"
#include "support/TempHome.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Le;
using testing::Optional;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

struct FolderSizeTest : testing::Test {
    std::vector<std::optional<std::int64_t>> sizes(const std::vector<std::string>& folders) {
        return folderSizes(reader, folders);
    }
    std::optional<std::int64_t> size(const std::string& folder) { return sizes({folder}).at(0); }

    FakeDirectoryReader reader;
};

TEST_F(FolderSizeTest, EachFolderGetsItsOwnSumInTheOrderAsked) {
    reader.file("/c/b/1", 4096, 10);
    reader.file("/c/b/x/y/2", 4096, 5);
    reader.file("/c/a/3", 4096, 7);
    reader.folder("/c/empty");
    EXPECT_THAT(sizes({"/c/b", "/c/empty", "/c/a"}),
                ElementsAre(Optional(15), Optional(0), Optional(7)));
    EXPECT_THAT(sizes({}), testing::IsEmpty());
    EXPECT_THAT(sizes({"/c/b", "/c/b/x"}), ElementsAre(Optional(15), Optional(5)))
        << "one inside another, both whole";
}

TEST_F(FolderSizeTest, EverythingBelowCountsWithItsOwnSize) {
    reader.file("/c/a/.hidden/1", 0, 1000).hiddenFlag = true;
    reader.folder("/c/a/.hidden").logicalSize = 200;
    reader.entry("/c/a/link", EntryKind::symbolicLink).logicalSize = 30;
    reader.entry("/c/a/socket", EntryKind::other).logicalSize = 4;
    reader.folder("/c/a").logicalSize = 1'000'000;
    EXPECT_EQ(size("/c/a"), 1234) << "all but the folder itself";
}

TEST_F(FolderSizeTest, ALinkIsNeverFollowed) {
    reader.file("/documents/work", 0, 1'000'000);
    reader.entry("/c/a/link", EntryKind::symbolicLink).logicalSize = 10;
    reader.file("/c/a/link/work", 0, 1'000'000);
    reader.file("/c/a/swapped/work", 0, 1'000'000);
    reader.folder("/c/a/swapped").isLinkMeanwhile = true;
    EXPECT_EQ(size("/c/a"), 10);
}

TEST_F(FolderSizeTest, WhatCannotBeReadCountsNothingAndTheRestIsCounted) {
    reader.file("/c/a/closed/1", 0, 1000);
    reader.folder("/c/a/closed").openError = EACCES;
    reader.entry("/c/a/broken", EntryKind::unreadable).logicalSize = 1000;
    reader.file("/c/a/half/2", 0, 20);
    reader.folder("/c/a/half").listError = EIO;
    reader.file("/c/a/3", 0, 3);
    EXPECT_EQ(size("/c/a"), 23);
}

TEST_F(FolderSizeTest, WhatIsNoFolderHasNoSize) {
    reader.file("/c/file", 0, 1000);
    reader.entry("/c/link", EntryKind::symbolicLink);
    reader.file("/c/link/1", 0, 1000);
    reader.file("/c/closed/1", 0, 1000);
    reader.folder("/c/closed").openError = EACCES;
    reader.file("/c/a/1", 0, 1);
    EXPECT_THAT(sizes({"/c/file", "/c/link", "/c/missing", "/c/a", "/c/closed", "/none/at/all"}),
                ElementsAre(std::nullopt, std::nullopt, std::nullopt, Optional(1), std::nullopt,
                            std::nullopt));
}

TEST_F(FolderSizeTest, ASumThatNoNumberHoldsStaysAtTheLargest) {
    reader.file("/c/a/1", 0, largest - 1);
    reader.file("/c/a/2", 0, 1);
    EXPECT_EQ(size("/c/a"), largest);
    reader.file("/c/b/1", 0, largest - 1);
    reader.file("/c/b/2", 0, 5);
    EXPECT_EQ(size("/c/b"), largest);
    for (int index = 0; index < 64; ++index) {
        reader.file("/c/d/" + std::to_string(index) + "/f", 0, largest / 3);
    }
    EXPECT_EQ(size("/c/d"), largest) << "also when several threads have a part of it";
}

TEST_F(FolderSizeTest, EverySumIsTheSameWhateverTheThreadsDo) {
    std::vector<std::string> folders;
    std::vector<std::optional<std::int64_t>> expected;
    for (int folder = 0; folder < 20; ++folder) {
        const std::string path = "/c/" + std::to_string(folder);
        folders.push_back(path);
        std::int64_t total = 0;
        for (int file = 0; file < 60; ++file) {
            const std::int64_t bytes = folder * 1000 + file;
            const std::string below = "/" + std::to_string(file % 7) + "/" + std::to_string(file);
            reader.file(path + below, 0, bytes);
            total += bytes;
        }
        expected.emplace_back(total);
    }
    for (int round = 0; round < 50; ++round)
        ASSERT_EQ(sizes(folders), expected);
    EXPECT_EQ(reader.openNow(), 0);
}

TEST_F(FolderSizeTest, ThousandsOfFoldersKeepFewOpen) {
    std::vector<std::string> folders;
    for (int folder = 0; folder < 5000; ++folder) {
        folders.push_back("/c/" + std::to_string(folder));
        reader.file(folders.back() + "/sub/file", 0, 3);
        reader.file(folders.back() + "/other/file", 0, 4);
    }
    EXPECT_THAT(sizes(folders), Each(Optional(7)));
    EXPECT_THAT(reader.mostOpen(), Le(200)) << "a process may have 256 files open";
}

TEST_F(FolderSizeTest, AFolderAsDeepAsTheyGetIsMeasured) {
    FakeDirectoryReader::Node* folder = &reader.folder("/c/a");
    for (int depth = 0; depth < 20'000; ++depth)
        folder = &reader.folderIn(*folder, "d");
    reader.fileIn(*folder, "bottom").logicalSize = 9;
    EXPECT_EQ(size("/c/a"), 9);
}

TEST_F(FolderSizeTest, WhatTheReaderThrowsReachesTheCaller) {
    reader.file("/c/a/1", 0, 1);
    reader.beforeRead = [](const FakeDirectoryReader::Node&) { throw std::runtime_error("full"); };
    EXPECT_THROW(size("/c/a"), std::runtime_error);
    EXPECT_EQ(reader.openNow(), 0);
}

TEST(FolderSizeOnDiskTest, TheSumIsThatOfTheEntriesOwnSizes) {
    TempHome home;
    home.sparse("a/huge", 7'000'000'000);
    home.text("a/.hidden/note", "twelve bytes");
    home.link("a/sub/link", "seventeen letters");
    home.link("a/outside", home.folder("elsewhere"));
    home.sparse("elsewhere/more", 5'000'000);
    std::filesystem::create_hard_link(home.path("a/huge"), home.path("a/sub/again"));
    const auto files = systemFileManager();
    std::int64_t expected = 0;
    for (const char* path : {"a/huge", "a/.hidden", "a/.hidden/note", "a/sub", "a/sub/link",
                             "a/outside", "a/sub/again"}) {
        expected += files->attributes(home.path(path))->logicalSize;
    }
    EXPECT_GE(expected, 14'000'000'000 + 12 + 17) << "both names of the file";
    const auto reader = systemDirectoryReader();
    EXPECT_THAT(folderSizes(*reader, {home.path("a"), home.path("a/outside"), home.path("a/huge")}),
                ElementsAre(Optional(expected), std::nullopt, std::nullopt));
}

TEST(FolderSizeOnDiskTest, AFolderReachedThroughALinkAboveItIsMeasured) {
    TempHome home;
    home.sparse("disk/caches/app/data", 60);
    home.link("Caches", home.path("disk/caches"));
    const auto reader = systemDirectoryReader();
    EXPECT_THAT(folderSizes(*reader, {home.path("Caches/app")}), ElementsAre(Optional(60)));
}

}  // namespace
}  // namespace velto
