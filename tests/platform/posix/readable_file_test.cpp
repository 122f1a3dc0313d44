// What is read as a file, and what never is, whatever somebody puts in a file's place.

#include "platform/posix/readable_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>

#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

/// Files that belong to somebody else, as far as the program is told; and one that grows as soon as
/// it has been looked at.
class OtherFileCalls final : public FileCalls {
public:
    int stat(int folder, const char* name, struct stat& status) override {
        return changed(FileCalls::stat(folder, name, status), status);
    }
    int status(int file, struct stat& status) override {
        const int result = changed(FileCalls::status(file, status), status);
        if (!growing.empty()) std::ofstream(growing, std::ios::app) << std::string(3'000'000, 'g');
        return result;
    }
    ssize_t readAt(int file, void* buffer, std::size_t size, off_t offset) override {
        const ssize_t length = FileCalls::readAt(file, buffer, size, offset);
        if (length > 0) bytesRead += length;
        return length;
    }

    bool areForeign = false;
    bool isFolderForeign = false;
    std::string growing;
    ssize_t bytesRead = 0;

private:
    int changed(int result, struct stat& status) const {
        const bool isFile = S_ISREG(status.st_mode);
        if ((isFile && areForeign) || (!isFile && isFolderForeign)) status.st_uid = ::geteuid() + 1;
        return result;
    }
};

enum class Answer { read, refused, failed };

struct ReadableFileTest : testing::Test {
    static constexpr std::int64_t bound = 1'000'000;

    TempHome home;
    OtherFileCalls calls;
    PosixFileManager files{calls};

    /// By path and by version alike.
    Answer answer(const std::string& name, ReadFrom from) {
        const ReadLimit limit{.from = from, .bytes = bound};
        const Answer first = outcome([&] { files.read(home.path(name), limit); });
        const Answer second = outcome([&] {
            const auto version = files.openVersion(home.path(name), limit);
            if (!version) throw FileError("read", name, ENOENT);
            version->read();
        });
        EXPECT_EQ(first, second) << name;
        return first;
    }
    template <typename Action>
    static Answer outcome(Action action) {
        try {
            action();
            return Answer::read;
        } catch (const RefusedFile&) {
            return Answer::refused;
        } catch (const FileError&) {
            return Answer::failed;
        }
    }
    void expect(const std::string& name, Answer own, Answer ownThroughLink, Answer any) {
        EXPECT_EQ(answer(name, ReadFrom::ownFile), own) << name;
        EXPECT_EQ(answer(name, ReadFrom::ownThroughLink), ownThroughLink) << name;
        EXPECT_EQ(answer(name, ReadFrom::anyFile), any) << name;
    }
};

TEST_F(ReadableFileTest, AFileIsReadUpToItsBoundAndNotOneByteBeyond) {
    home.text("full", std::string(bound, 'x'));
    home.text("over", std::string(bound + 1, 'x'));
    home.text("empty", "");
    expect("full", Answer::read, Answer::read, Answer::read);
    expect("empty", Answer::read, Answer::read, Answer::read);
    expect("over", Answer::refused, Answer::refused, Answer::refused);
    EXPECT_EQ(files.read(home.path("full"), ownFile(bound)), std::string(bound, 'x'));
}

TEST_F(ReadableFileTest, AFileOfAnImpossibleLengthIsRefusedUnread) {
    home.sparse("huge", 1'000'000'000'000);
    expect("huge", Answer::refused, Answer::refused, Answer::refused);
    EXPECT_EQ(calls.bytesRead, 0);
}

TEST_F(ReadableFileTest, AHugeHoleWithinTheBoundCostsOnePiece) {
    home.sparse("hole", 900'000'000'000);
    EXPECT_EQ(outcome([&] { files.read(home.path("hole"), ownFile(1'000'000'000'000)); }),
              Answer::refused);
    EXPECT_LE(calls.bytesRead, 1'000'000);
}

TEST_F(ReadableFileTest, TheProgramsOwnTextsHoldNoNulByte) {
    home.text("binary", std::string("a\0b", 3));
    home.text("late", std::string(600'000, 'x') + '\0');
    expect("binary", Answer::refused, Answer::refused, Answer::read);
    expect("late", Answer::refused, Answer::refused, Answer::read);
}

TEST_F(ReadableFileTest, WhatIsNoRegularFileIsRefusedAndNotWaitedFor) {
    ASSERT_EQ(mkfifo(home.path("pipe").c_str(), 0600), 0);
    home.folder("folder");
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = home.path("socket");
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    path.copy(address.sun_path, path.size());
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    for (const char* name : {"pipe", "folder", "socket"})
        expect(name, Answer::refused, Answer::refused, Answer::refused);
    ::close(listener);
}

TEST_F(ReadableFileTest, ALinkCountsOnlyWhereItMayLeadToAFile) {
    home.text("file", "content");
    home.link("link", "file");
    home.link("device", "/dev/zero");
    home.link("dangling", "nothing");
    home.link("loop", "loop");
    expect("link", Answer::refused, Answer::read, Answer::read);
    expect("device", Answer::refused, Answer::refused, Answer::refused);
    expect("loop", Answer::refused, Answer::failed, Answer::failed);
    expect("dangling", Answer::refused, Answer::failed, Answer::failed);
}

TEST_F(ReadableFileTest, AnotherUsersFileIsNotOurs) {
    home.text("file", "content");
    calls.areForeign = true;
    expect("file", Answer::refused, Answer::refused, Answer::read);
    calls.isFolderForeign = true;
    expect("file", Answer::read, Answer::read, Answer::read);  // who has the folder has all in it
}

TEST_F(ReadableFileTest, AnotherUsersFileThatCannotBeOpenedIsNotOursEither) {
    if (::geteuid() != 0) GTEST_SKIP() << "only an administrator can become another user";
    home.text("closed", "content");
    ASSERT_EQ(chmod(home.path("closed").c_str(), 0600), 0);
    constexpr uid_t nobody = 65534;
    ASSERT_EQ(chown(home.path().c_str(), nobody, nobody), 0);
    const auto isRefused = [&] {
        PosixFileManager plain;
        const auto read = [&] { plain.read(home.path("closed"), ownFile(bound)); };
        return outcome(read) == Answer::refused ? 1 : 0;
    };
    EXPECT_EQ(asOrdinaryUser({}, isRefused), 1);
}

TEST_F(ReadableFileTest, WhatMayBeReadableTheNextTimeIsAnErrorAndNoRefusal) {
    home.text("file", "content");
    ASSERT_EQ(chmod(home.path("file").c_str(), 0), 0);
    const auto isFailure = [&] {
        PosixFileManager plain;
        const auto read = [&] { plain.read(home.path("file"), ownFile(bound)); };
        return outcome(read) == Answer::failed ? 1 : 0;
    };
    EXPECT_EQ(asOrdinaryUser({home.path()}, isFailure), 1);
    EXPECT_EQ(outcome([&] { files.read(home.path("missing"), ownFile(bound)); }), Answer::failed);
    EXPECT_FALSE(files.openVersion(home.path("missing"), ownFile(bound)));
}

TEST_F(ReadableFileTest, AFileThatGrowsWhileItIsReadStaysWithinItsBound) {
    home.text("growing", "start");
    calls.growing = home.path("growing");
    EXPECT_EQ(outcome([&] { files.read(home.path("growing"), ownFile(bound)); }), Answer::refused);
    EXPECT_LE(calls.bytesRead, bound + 1);
}

}  // namespace
}  // namespace velto
