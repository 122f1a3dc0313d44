#include "platform/FileContent.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

#include <gmock/gmock.h>

#include "support/TempHome.h"

namespace velto {
namespace {

using testing::IsNull;
using testing::NotNull;

struct FileContentTest : testing::Test {
    TempHome home;
    std::unique_ptr<FileContentReader> reader = makeFileContentReader();
};

TEST_F(FileContentTest, ReadsFromAnyOffsetUpToTheEnd) {
    const auto content = reader->open(home.text("a", "velto").path());
    ASSERT_THAT(content, NotNull());
    EXPECT_EQ(content->size(), 5);
    std::array<std::byte, 8> buffer{};
    EXPECT_EQ(content->read(0, std::span(buffer).first(2)), 2);
    EXPECT_EQ(content->read(3, buffer), 2);
    EXPECT_EQ(buffer[0], std::byte{'t'});
    EXPECT_EQ(content->read(5, buffer), 0);
}

TEST_F(FileContentTest, AMissingFileSaysSo) {
    EXPECT_THAT(reader->open(home.path("missing")), IsNull());
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(FileContentTest, ALinkIsNotFollowed) {
    home.text("a", "velto");
    home.link("b", home.path("a"));
    EXPECT_THAT(reader->open(home.path("b")), IsNull());
}

TEST_F(FileContentTest, APipeInTheFilesPlaceNeitherBlocksNorOpens) {
    ASSERT_EQ(::mkfifo(home.path("pipe").c_str(), 0600), 0);
    EXPECT_THAT(reader->open(home.path("pipe")), IsNull());
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(FileContentTest, AFolderDoesNotOpen) {
    EXPECT_THAT(reader->open(home.folder("folder")), IsNull());
}

TEST_F(FileContentTest, ComparingAFileDoesNotCountAsUsingIt) {
#ifndef O_NOATIME
    GTEST_SKIP() << "this system cannot open a file without touching its access time";
#endif
    const std::string path = home.text("old", "velto").path();
    // Older than its modification: even a file system that is sparing with access times would
    // write a new one.
    const timespec times[2] = {{1'000'000'000, 0}, {1'100'000'000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    std::array<std::byte, 8> buffer{};
    const auto content = reader->open(path);
    content->readAsTold();
    content->notCached({0, 5});
    ASSERT_EQ(content->read(0, buffer), 5);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_atime, 1'000'000'000);
}

TEST_F(FileContentTest, AFilesPlaceIsToldAndThatOfNothingElse) {
    const auto place = reader->place(home.text("a", "velto").path());
    ASSERT_TRUE(place.has_value());
    struct stat status {};
    ASSERT_EQ(::stat(home.path("a").c_str(), &status), 0);
    EXPECT_EQ(place->volume, static_cast<std::uint64_t>(status.st_dev));
    EXPECT_EQ(place->position != 0, place->diskRotates);
    home.link("link", home.path("a"));
    EXPECT_FALSE(reader->place(home.path("link")).has_value());
    EXPECT_FALSE(reader->place(home.path("missing")).has_value());
}

TEST_F(FileContentTest, AdviceChangesNothingOfWhatIsRead) {
    const auto content = reader->open(home.text("a", "velto").path());
    content->readAsTold();
    content->readAhead({0, 5});
    content->notCached({0, 5});
    content->forget({0, 5});
    content->notCached({100, 0});
    std::array<std::byte, 8> buffer{};
    EXPECT_EQ(content->read(0, buffer), 5);
}

}  // namespace
}  // namespace velto
