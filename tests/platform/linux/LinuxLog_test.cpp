#include "platform/linux/LinuxLog.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <sstream>
#include <thread>

#include <fmt/format.h>

#include "support/TempHome.h"

namespace velto {
namespace {

class LinuxLogTest : public testing::Test {
protected:
    LinuxLogTest()
        : descriptor(open(path.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600)) {}
    ~LinuxLogTest() override { close(descriptor); }

    std::string written() { return home.read("log"); }

    TempHome home;
    std::string path = home.path("log");
    int descriptor;
};

TEST_F(LinuxLogTest, OneCallIsOneLine) {
    LinuxLog log(descriptor, false);
    log.line("Velto ▶ análisis iniciado");
    log.line("");
    log.line("two\nlines");
    EXPECT_EQ(written(), "Velto ▶ análisis iniciado\n\ntwo\\u000alines\n");
}

TEST_F(LinuxLogTest, ALineHasItsMeasureUnlessDetailsAreAskedFor) {
    const std::string longLine(5'000, 'x');
    LinuxLog log(descriptor, true);
    log.line(longLine);
    EXPECT_EQ(written().size(), 3u + 1'000u + 1u);
    log.setDetailed();
    log.line(longLine);
    EXPECT_TRUE(written().ends_with("\n<6>" + longLine + "\n"));
}

TEST_F(LinuxLogTest, TheJournalLearnsThePriority) {
    LinuxLog(descriptor, true).line("Velto ▶ intención");
    EXPECT_EQ(written(), "<6>Velto ▶ intención\n");
}

TEST_F(LinuxLogTest, TheJournalIsRecognisedByItsStreamAlone) {
    struct stat status {};
    ASSERT_EQ(fstat(descriptor, &status), 0);
    EXPECT_TRUE(isJournalStream(descriptor, fmt::format("{}:{}", status.st_dev, status.st_ino)));
    EXPECT_FALSE(
        isJournalStream(descriptor, fmt::format("{}:{}", status.st_dev, status.st_ino + 1)));
    EXPECT_FALSE(isJournalStream(descriptor, ""));
    EXPECT_FALSE(isJournalStream(descriptor, "nonsense"));
    EXPECT_FALSE(isJournalStream(-1, "1:1"));
}

TEST_F(LinuxLogTest, LinesOfSeveralThreadsStayWhole) {
    LinuxLog log(descriptor, false);
    std::vector<std::thread> threads;
    for (char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([&log, letter] {
            for (int round = 0; round < 100; ++round)
                log.line(std::string(200, letter));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::istringstream lines(written());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_EQ(line, std::string(200, line.empty() ? '?' : line.front()));
    }
    EXPECT_EQ(count, 400);
}

TEST_F(LinuxLogTest, ALogThatNobodyCanTakeStopsNothing) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    LinuxLog(full, false).line("lost");
    close(full);
    LinuxLog(-1, false).line("lost");
}

}  // namespace
}  // namespace velto
