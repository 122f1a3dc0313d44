// What keeps two processes from spoiling each other's files: locks, and versions of a file.

#include <fcntl.h>
#include <sys/wait.h>

#include <array>
#include <fstream>

#include "platform/posix/MoveWorld.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

class Locks : public MoveWithinVolume {
protected:
    std::string path = source.path("lock");
    PosixFileManager other;

    int lockReason() {
        return reasonOf([&] { files.lock(path, false); });
    }
};

TEST_F(Locks, OnlyOneHolderAtATimeUntilItEnds) {
    auto held = files.lock(path, false);
    ASSERT_TRUE(held);
    EXPECT_FALSE(other.lock(path, false));
    EXPECT_FALSE(files.lock(path, false)) << "not even the same process twice";
    held.reset();
    EXPECT_TRUE(other.lock(path, false));
}

TEST_F(Locks, AnotherProcessWaitsForIt) {
    std::array<int, 2> toChild;
    std::array<int, 2> toParent;
    ASSERT_EQ(::pipe(toChild.data()), 0);
    ASSERT_EQ(::pipe(toParent.data()), 0);
    char token = 'x';
    const pid_t child = fork();  // before the lock is taken: a child holds what its parent holds
    if (child == 0) {
        if (::read(toChild[0], &token, 1) != 1 || files.lock(path, false)) _exit(1);
        if (::write(toParent[1], &token, 1) != 1) _exit(2);
        // Released while this one waits, or just before.
        _exit(files.lock(path, true) ? 0 : 3);
    }
    ::close(toParent[1]);  // so that a child that ends early is noticed
    auto held = files.lock(path, true);
    EXPECT_EQ(::write(toChild[1], &token, 1), 1);
    EXPECT_EQ(::read(toParent[0], &token, 1), 1);
    held.reset();
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    for (const int end : {toChild[0], toChild[1], toParent[0]})
        ::close(end);
}

TEST_F(Locks, AProcessThatDiesLeavesNoLock) {
    const pid_t child = fork();
    if (child == 0) {
        const auto held = files.lock(path, true);
        _exit(held ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(files.lock(path, false));
}

TEST_F(Locks, WaitingForALockThatIsNeverReleasedEnds) {
    const auto held = other.lock(path, false);
    PosixFileManager impatient(calls, {.limit = std::chrono::milliseconds(30)});
    EXPECT_EQ(reasonOf([&] { impatient.lock(path, true); }), EWOULDBLOCK);
}

TEST_F(Locks, APipeInTheFilesPlaceIsRefusedAndNotWaitedFor) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(lockReason(), EINVAL);
    EXPECT_EQ(reasonOf([&] { files.lock(path, true); }), EINVAL);
    fs::remove(path);
    source.folder("lock");
    EXPECT_EQ(lockReason(), EISDIR);
}

TEST_F(Locks, ALinkInTheFilesPlaceIsNotFollowed) {
    source.link("lock", target.path("made"));
    EXPECT_EQ(lockReason(), ELOOP);
    EXPECT_FALSE(target.exists("made"));
    target.text("made", "content");
    EXPECT_EQ(lockReason(), ELOOP);
}

TEST_F(Locks, AFileSystemWithoutLocksGrantsIt) {
    for (const int reason : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
        calls.refuses = [=](const char* call, const char*) {
            return call == std::string("lock") ? reason : 0;
        };
        EXPECT_TRUE(files.lock(path, true)) << reason;
        EXPECT_TRUE(files.lock(path, false)) << reason;
    }
}

TEST_F(Locks, AFailureIsNoLock) {
    calls.refuses = [](const char* call, const char*) {
        return call == std::string("lock") ? EIO : 0;
    };
    EXPECT_EQ(lockReason(), EIO);
    calls.refuses = nullptr;
    path = source.path("missing/lock");
    EXPECT_EQ(lockReason(), ENOENT);
}

TEST_F(Locks, ALinkInItsPlaceIsNotFollowed) {
    target.text("file", "kept");
    source.link("lock", target.path("file"));
    EXPECT_EQ(lockReason(), ELOOP);
    EXPECT_EQ(target.read("file"), "kept");
}

TEST_F(Locks, TheLocksFileIsForTheUserAloneAndKeepsItsContent) {
    source.text("lock", "kept");
    EXPECT_TRUE(files.lock(path, true));
    EXPECT_EQ(source.read("lock"), "kept");
    path = source.path("new");
    EXPECT_TRUE(files.lock(path, true));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

class Versions : public MoveWithinVolume {
protected:
    std::string path = source.path("file");
    ReadLimit limit = ownFile(1 << 20);

    std::unique_ptr<FileVersion> version(const std::string& content) {
        source.text("file", content);
        return files.openVersion(path, limit);
    }
};

TEST_F(Versions, AFileThatStaysIsCurrentAndReadWhole) {
    const std::string content(300'000, 'x');
    const auto held = version(content);
    EXPECT_TRUE(held->isCurrent());
    EXPECT_EQ(held->read(), content);
    EXPECT_EQ(held->read(), content) << "as often as one likes";
    EXPECT_TRUE(held->isCurrent());
    EXPECT_EQ(version("")->read(), "");
}

TEST_F(Versions, AReplacedFileIsTheOldOneStill) {
    const auto held = version("old");
    files.writeAtomically(path, "new");
    EXPECT_FALSE(held->isCurrent());
    EXPECT_EQ(held->read(), "old");
}

TEST_F(Versions, NoNewFileIsTakenForIt) {
    // A file system likes to give a new file the number of the one that went last.
    const auto held = version("same");
    for (int round = 0; round < 20; ++round) {
        fs::remove(path);
        EXPECT_FALSE(held->isCurrent());
        source.text("file", "same");
        EXPECT_FALSE(held->isCurrent());
    }
}

TEST_F(Versions, AChangeOfTheSameLengthWithItsTimeSetBackIsNoticed) {
    setTimes(source.text("file", "old").path(), {5, 0}, {6, 0});
    const auto held = files.openVersion(path, limit);
    ASSERT_TRUE(held->isCurrent());
    std::fstream(path, std::ios::in | std::ios::out) << "new";
    setTimes(path, {5, 0}, {6, 0});
    EXPECT_FALSE(held->isCurrent());
}

TEST_F(Versions, AFileThatHasGrownOrShrunkIsReadAsItIs) {
    const auto held = version("old");
    std::fstream(path, std::ios::app | std::ios::out) << std::string(200'000, 'n');
    EXPECT_EQ(held->read(), "old" + std::string(200'000, 'n'));
    fs::resize_file(path, 2);
    EXPECT_EQ(held->read(), "ol");
    EXPECT_FALSE(held->isCurrent());
}

TEST_F(Versions, WhereNoFileIsThereIsNoVersion) {
    EXPECT_FALSE(files.openVersion(path, limit));
    source.text("file", "");
    EXPECT_FALSE(files.openVersion(path + "/below", limit));
}

TEST_F(Versions, WhatCannotBeReadIsReported) {
    source.folder("folder");
    EXPECT_EQ(reasonOf([&] { files.openVersion(source.path("folder"), limit)->read(); }), EISDIR);
    ASSERT_EQ(mkfifo(source.path("pipe").c_str(), 0600), 0);
    EXPECT_NE(reasonOf([&] { files.openVersion(source.path("pipe"), limit)->read(); }), 0);
    calls.refuses = [](const char* call, const char*) {
        return call == std::string("readAt") ? EIO : 0;
    };
    EXPECT_EQ(reasonOf([&] { version("content")->read(); }), EIO);
}

}  // namespace
}  // namespace velto
