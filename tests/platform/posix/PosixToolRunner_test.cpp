#include "platform/posix/PosixToolRunner.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "support/TempHome.h"

namespace velto {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

ToolResult shell(const std::string& script) {
    return PosixToolRunner().run("/bin/sh", {"-c", script});
}

TEST(PosixToolRunner, AToolThatEndsWellAnswersZero) {
    const ToolResult result = shell("exit 0");
    EXPECT_TRUE(result.started);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.standardError, IsEmpty());
    EXPECT_THAT(result.startError, IsEmpty());
}

TEST(PosixToolRunner, AFailureComesBackWithItsStatusAndItsReason) {
    const ToolResult result = shell("echo 'could not find the agent' >&2; exit 113");
    EXPECT_TRUE(result.started);
    EXPECT_EQ(result.exitStatus, 113);
    EXPECT_EQ(result.standardError, "could not find the agent\n");
}

TEST(PosixToolRunner, AToolThatASignalEndsIsToldFromOneThatFailed) {
    EXPECT_EQ(shell("kill -TERM $$").exitStatus, 128 + SIGTERM);
    EXPECT_EQ(shell("kill -KILL $$").exitStatus, 128 + SIGKILL);
}

TEST(PosixToolRunner, AMissingToolIsNotStartedAndSaysWhy) {
    const ToolResult result = PosixToolRunner().run("/nowhere/launchctl", {"load"});
    EXPECT_FALSE(result.started);
    EXPECT_THAT(result.startError, HasSubstr("No such file"));
    EXPECT_EQ(result.exitStatus, -1);
}

TEST(PosixToolRunner, AFileThatIsNoProgramIsNotStarted) {
    TempHome home;
    const auto file = home.text("notes.txt", "not a program\n");
    ASSERT_EQ(chmod(file.path().c_str(), 0600), 0);
    const ToolResult result = PosixToolRunner().run(file.path(), {});
    EXPECT_FALSE(result.started);
    EXPECT_THAT(result.startError, HasSubstr("Permission denied"));
    EXPECT_FALSE(PosixToolRunner().run(home.path(), {}).started);
}

TEST(PosixToolRunner, AToolGetsTheEnvironmentThatTheProgramWasStartedWith) {
    ASSERT_EQ(setenv("VELTO_TEST_OF_THE_USER", "chosen", 1), 0);
    ASSERT_EQ(setenv("VELTO_TEST_CHANGED", "before", 1), 0);
    PosixToolRunner tools;
    ASSERT_EQ(setenv("VELTO_TEST_OWN", "for the engine", 1), 0);
    ASSERT_EQ(setenv("VELTO_TEST_CHANGED", "after", 1), 0);
    const ToolResult result =
        tools.run("/bin/sh", {"-c",
                              "echo \"$VELTO_TEST_OF_THE_USER, ${VELTO_TEST_OWN-nothing}, "
                              "$VELTO_TEST_CHANGED\" >&2"});
    for (const char* name : {"VELTO_TEST_OF_THE_USER", "VELTO_TEST_CHANGED", "VELTO_TEST_OWN"}) {
        unsetenv(name);
    }
    EXPECT_EQ(result.standardError, "chosen, nothing, before\n");
}

TEST(PosixToolRunner, ArgumentsArriveAsTheyAreGiven) {
    const ToolResult result = PosixToolRunner().run(
        "/bin/sh", {"-c", "for a in \"$@\"; do printf '<%s>' \"$a\" >&2; done", "sh", "two words",
                    "", "$HOME", "a'b\"c", "línea\nnueva"});
    EXPECT_EQ(result.standardError, "<two words><><$HOME><a'b\"c><línea\nnueva>");
}

TEST(PosixToolRunner, ALongComplaintIsReadWholeWithoutTheToolGettingStuck) {
    // Far more than a pipe holds.
    const ToolResult result = shell("head -c 3000000 /dev/zero | tr '\\0' e >&2; exit 7");
    EXPECT_EQ(result.exitStatus, 7);
    EXPECT_EQ(result.standardError, std::string(3'000'000, 'e'));
}

TEST(PosixToolRunner, BytesThatAreNoTextComeBackAsWritten) {
    using std::string_literals::operator""s;
    EXPECT_EQ(shell("printf 'a\\000b\\377' >&2").standardError, "a\0b\xFF"s);
}

TEST(PosixToolRunner, AToolReadsNothingAndItsOutputGoesNowhere) {
    const ToolResult result = shell("cat; echo noise; test -c /dev/fd/0 && test -c /dev/fd/1");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.standardError, IsEmpty());
}

TEST(PosixToolRunner, AToolThatIsAskedAnswersOnItsOutputAndItsComplaintsGoNowhere) {
    const ToolResult result = PosixToolRunner().read(
        "/bin/sh", {"-c", "echo answer; echo noise >&2; test -c /dev/fd/0 && test -c /dev/fd/2"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.standardOutput, "answer\n");
    EXPECT_THAT(result.standardError, IsEmpty());
}

TEST(PosixToolRunner, TheProgramKeepsNoDescriptorOfAFinishedTool) {
    const int before = dup(0);
    close(before);
    for (int run = 0; run < 5; ++run) {
        shell("echo x >&2");
        PosixToolRunner().run("/nowhere", {});
    }
    const int after = dup(0);
    close(after);
    EXPECT_EQ(after, before);
}

TEST(PosixToolRunner, AProcessThatTheToolLeavesBehindIsNotWaitedFor) {
    // It keeps standard error open for as long as this test runs; its number comes back so that it
    // can be ended.
    const ToolResult result = shell("sleep 600 & echo $! >&2; exit 3");
    EXPECT_EQ(result.exitStatus, 3);
    const pid_t left = static_cast<pid_t>(std::stol(result.standardError));
    EXPECT_EQ(kill(left, SIGKILL), 0) << "the run waited for it";
}

TEST(PosixToolRunner, SignalsThatTheProgramIgnoresStillEndATool) {
    const auto old = std::signal(SIGPIPE, SIG_IGN);
    const ToolResult result = shell("kill -PIPE $$; exit 0");
    std::signal(SIGPIPE, old);
    EXPECT_EQ(result.exitStatus, 128 + SIGPIPE);
}

TEST(PosixToolRunner, AToolThatNeverEndsIsKilled) {
    const auto run = [](const std::string& script) {
        return PosixToolRunner(std::chrono::milliseconds(200)).run("/bin/sh", {"-c", script});
    };
    EXPECT_EQ(run("exec sleep 600").exitStatus, 128 + SIGKILL);
    EXPECT_EQ(run("exec 2>&-; exec sleep 600").exitStatus, 128 + SIGKILL);
    const ToolResult endless = run("exec yes complaint >&2");
    EXPECT_EQ(endless.exitStatus, 128 + SIGKILL);
    EXPECT_LE(endless.standardError.size(), 4u * 1024 * 1024);
    EXPECT_THAT(endless.standardError, HasSubstr("complaint\ncomplaint\n"));
}

TEST(PosixToolRunner, SeveralToolsRunAtOnceEachWithItsOwnOutput) {
    std::vector<std::thread> threads;
    std::array<ToolResult, 8> results;
    for (std::size_t number = 0; number < results.size(); ++number) {
        threads.emplace_back([&, number] {
            results[number] =
                shell("echo " + std::to_string(number) + " >&2; exit " + std::to_string(number));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t number = 0; number < results.size(); ++number) {
        EXPECT_EQ(results[number].exitStatus, static_cast<int>(number));
        EXPECT_EQ(results[number].standardError, std::to_string(number) + "\n");
    }
}

}  // namespace
}  // namespace velto
