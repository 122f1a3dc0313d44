#include "platform/posix/PosixFileManager.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "platform/posix/FaultyFileCalls.h"
#include "support/TempHome.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// The reason with which `action` fails, 0 when it does not.
template <typename Action>
int failureOf(Action action) {
    try {
        action();
        return 0;
    } catch (const FileError& error) {
        EXPECT_FALSE(error.attempt().empty());
        return error.code();
    }
}

mode_t permissions(const std::string& path) {
    struct stat status {};
    lstat(path.c_str(), &status);
    return status.st_mode & 07777;
}

class PosixFileManagerTest : public testing::Test {
protected:
    TempHome home;
    FaultyFileCalls calls;
    PosixFileManager files{calls};
};

TEST_F(PosixFileManagerTest, SomethingExistsEvenAsALinkThatLeadsNowhere) {
    home.file("file", 1);
    home.link("dangling", "missing");
    EXPECT_TRUE(files.exists(home.path("file")));
    EXPECT_TRUE(files.exists(home.path("dangling")));
    EXPECT_FALSE(files.exists(home.path("missing")));
    EXPECT_FALSE(files.exists(home.path("file") + std::string("\0hidden", 7)));
}

TEST_F(PosixFileManagerTest, AttributesAreTheItemsOwnDownToTheFractionOfASecond) {
    const auto file = home.file("file", 100'000);
    home.folder("folder");
    home.link("link", "file");
    const timespec times[2] = {{.tv_sec = 1'600'000'000, .tv_nsec = 500'000'000},
                               {.tv_sec = 1'500'000'000, .tv_nsec = 250'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.path().c_str(), times, 0), 0);
    const auto attributes = files.attributes(home.path("file"));
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->kind, FileKind::regular);
    EXPECT_EQ(attributes->logicalSize, 100'000);
    EXPECT_GE(attributes->allocatedSize, 100'000);
    EXPECT_DOUBLE_EQ(attributes->accessed, 1'600'000'000.5);
    EXPECT_DOUBLE_EQ(attributes->modified, 1'500'000'000.25);
    EXPECT_EQ(files.attributes(home.path("folder"))->kind, FileKind::folder);
    EXPECT_EQ(files.attributes(home.path("link"))->kind, FileKind::symbolicLink);
    EXPECT_FALSE(files.attributes(home.path("missing")));
}

TEST_F(PosixFileManagerTest, AListHoldsEveryNameOnce) {
    home.file("folder/.hidden", 1);
    home.file("folder/caf\xC3\xA9", 1);
    home.folder("folder/inner");
    EXPECT_THAT(files.list(home.path("folder")),
                UnorderedElementsAre(".hidden", "caf\xC3\xA9", "inner"));
    EXPECT_EQ(failureOf([&] { files.list(home.path("missing")); }), ENOENT);
    EXPECT_EQ(failureOf([&] { files.list(home.path("folder/.hidden")); }), ENOTDIR);
    EXPECT_EQ(failureOf([&] { files.list(""); }), EINVAL);
}

TEST_F(PosixFileManagerTest, AResolvedPathHoldsNoLink) {
    home.file("real/file", 1);
    home.link("link", "real");
    home.link("loop", "loop");
    EXPECT_EQ(files.resolved(home.path("link/../link/./file")), home.path("real/file"));
    EXPECT_EQ(failureOf([&] { files.resolved(home.path("missing")); }), ENOENT);
    EXPECT_EQ(failureOf([&] { files.resolved(home.path("loop")); }), ELOOP);
}

TEST_F(PosixFileManagerTest, AFileIsReadWholeAndByteForByte) {
    std::string content(300'000, 'x');
    content += std::string("\0\xFF\n", 3);
    home.text("file", content);
    EXPECT_EQ(files.read(home.path("file"), anyFile(1 << 20)), content);
    home.text("empty", "");
    EXPECT_EQ(files.read(home.path("empty"), anyFile(1 << 20)), "");
}

TEST_F(PosixFileManagerTest, WhatIsNoFileIsNotReadAndNotWaitedFor) {
    ASSERT_EQ(mkfifo(home.path("pipe").c_str(), 0600), 0);
    home.link("loop", "loop");
    EXPECT_EQ(failureOf([&] { files.read(home.path("pipe"), anyFile(1 << 20)); }), EINVAL);
    EXPECT_EQ(failureOf([&] { files.read(home.path(), anyFile(1 << 20)); }), EISDIR);
    EXPECT_EQ(failureOf([&] { files.read(home.path("loop"), anyFile(1 << 20)); }), ELOOP);
    EXPECT_EQ(failureOf([&] { files.read(home.path("missing"), anyFile(1 << 20)); }), ENOENT);
    EXPECT_EQ(failureOf([&] { files.read(home.path(std::string(300, 'n')), anyFile(1 << 20)); }),
              ENAMETOOLONG);
}

TEST_F(PosixFileManagerTest, AnErrorSaysWhatFailedOnWhatAndWhy) {
    try {
        files.read(home.path("missing"), anyFile(1 << 20));
        FAIL();
    } catch (const FileError& error) {
        EXPECT_EQ(error.attempt(), "read");
        EXPECT_EQ(error.path(), home.path("missing"));
        EXPECT_THAT(error.what(), HasSubstr("No such file"));
    }
}

TEST_F(PosixFileManagerTest, ANewFileIsForTheUserAloneAndAnOldOneKeepsItsPermissions) {
    files.writeAtomically(home.path("new"), "1");
    EXPECT_EQ(permissions(home.path("new")), 0600u);
    home.text("shared", "old");
    ASSERT_EQ(chmod(home.path("shared").c_str(), 0644), 0);
    files.writeAtomically(home.path("shared"), "2");
    EXPECT_EQ(home.read("shared"), "2");
    EXPECT_EQ(permissions(home.path("shared")), 0644u);
    EXPECT_THAT(files.list(home.path()), UnorderedElementsAre("new", "shared"));
}

TEST_F(PosixFileManagerTest, AWriteThroughALinkReplacesTheLinkAndNotAFileElsewhere) {
    home.text("elsewhere", "kept");
    home.link("file", "elsewhere");
    files.writeAtomically(home.path("file"), "new");
    EXPECT_EQ(home.read("elsewhere"), "kept");
    EXPECT_EQ(home.read("file"), "new");
    EXPECT_EQ(files.attributes(home.path("file"))->kind, FileKind::regular);
}

TEST_F(PosixFileManagerTest, AFileWithTheLongestNameCanBeWritten) {
    const std::string path = home.path(std::string(255, 'n'));
    files.writeAtomically(path, "content");
    EXPECT_EQ(files.read(path, anyFile(1 << 20)), "content");
}

TEST_F(PosixFileManagerTest, AWriteThatTakesManyCallsIsWhole) {
    calls.shortWrite = 7;
    const std::string content(1000, 'c');
    files.writeAtomically(home.path("file"), content);
    EXPECT_EQ(home.read("file"), content);
}

TEST_F(PosixFileManagerTest, AWriteThatFailsAnywhereLeavesTheOldFileAndNothingElse) {
    // Each call in turn: open the folder, make the file, write, permissions, sync, rename.
    home.text("file", "old");
    int step = 0;
    for (;; ++step) {
        calls.count = 0;
        calls.failAt = step;
        if (failureOf([&] { files.writeAtomically(home.path("file"), "new"); }) == 0) break;
        EXPECT_EQ(home.read("file"), "old") << step;
        EXPECT_THAT(files.list(home.path()), ElementsAre("file")) << step;
        ASSERT_LT(step, 20);
    }
    // Only the folder's own sync may fail unseen: by then the new content is in place.
    EXPECT_EQ(step, 6);
    EXPECT_EQ(home.read("file"), "new");
}

TEST_F(PosixFileManagerTest, AFullDiskLeavesTheOldFile) {
    home.text("file", "old");
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small{.rlim_cur = 1000, .rlim_max = old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const int reason =
        failureOf([&] { files.writeAtomically(home.path("file"), std::string(100'000, 'n')); });
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(reason, EFBIG);
    EXPECT_EQ(home.read("file"), "old");
    EXPECT_THAT(files.list(home.path()), ElementsAre("file"));
}

TEST_F(PosixFileManagerTest, AFileCannotBeWrittenWhereNoFolderIsOrOverOne) {
    home.folder("folder");
    home.file("file", 1);
    const auto write = [&](const std::string& path) {
        return failureOf([&] { files.writeAtomically(path, "x"); });
    };
    EXPECT_EQ(write(home.path("missing/file")), ENOENT);
    EXPECT_EQ(write(home.path("file/below")), ENOTDIR);
    EXPECT_EQ(write(home.path("folder")), EISDIR);
    EXPECT_NE(write(home.path("folder/")), 0);
    EXPECT_EQ(write("relative"), EINVAL);
    EXPECT_EQ(write(home.path("cut") + std::string("\0x", 2)), EINVAL);
    EXPECT_THAT(files.list(home.path()), UnorderedElementsAre("file", "folder"));
}

TEST_F(PosixFileManagerTest, FoldersAreMadeWithTheirParentsForTheUserAlone) {
    files.createFolders(home.path("a/b/c"));
    EXPECT_EQ(permissions(home.path("a")), 0700u);
    EXPECT_EQ(permissions(home.path("a/b/c")), 0700u);
    files.createFolders(home.path("a/b/c"));
    files.createFolders(home.path("a/b/c/"));
    files.createFolders("/");
    home.link("link", "a");
    files.createFolders(home.path("link/d"));
    EXPECT_TRUE(home.exists("a/d"));
}

TEST_F(PosixFileManagerTest, AFolderCannotBeMadeOverOrBelowAFile) {
    home.file("file", 1);
    home.link("dangling", "missing");
    EXPECT_EQ(failureOf([&] { files.createFolders(home.path("file")); }), ENOTDIR);
    EXPECT_EQ(failureOf([&] { files.createFolders(home.path("file/below")); }), ENOTDIR);
    EXPECT_EQ(failureOf([&] { files.createFolders(home.path("dangling")); }), ENOTDIR);
    EXPECT_EQ(failureOf([&] { files.createFolders(home.path(std::string(300, 'n'))); }),
              ENAMETOOLONG);
    EXPECT_FALSE(home.exists("missing"));
}

TEST_F(PosixFileManagerTest, AFolderThatCannotBeMadeIsReported) {
    calls.failAt = 0;
    calls.error = EROFS;
    EXPECT_EQ(failureOf([&] { files.createFolders(home.path("new")); }), EROFS);
}

}  // namespace
}  // namespace velto
