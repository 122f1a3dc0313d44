// The temporary files of saves: what a killed process leaves is found again, and what a living one
// is at work on never.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "platform/own_folder.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

/// Runs something just before the file of a save is locked.
class InterruptedLock final : public FileCalls {
public:
    int lock(int file, int operation) override {
        if (before) std::exchange(before, nullptr)();
        return FileCalls::lock(file, operation);
    }
    std::function<void()> before;
};

struct StaleTemporaries : testing::Test {
    TempHome home;
    PosixFileManager files;
    std::string path = home.path("history.json");

    std::vector<std::string> names() { return files.list(home.path()); }
    int sweep() { return removeStaleTemporaries(home.path()); }

    /// A save whose process ends at its n-th call; false when it has no such call.
    bool saveAndDieAt(int call, WatchedFileCalls::Action how) {
        const pid_t child = fork();
        if (child == 0) {
            WatchedFileCalls calls;
            calls.waitsForDisk = false;
            calls.action = how;
            calls.at = call;
            PosixFileManager(calls).writeAtomically(path, "new");
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WEXITSTATUS(status) == WatchedFileCalls::died;
    }
};

TEST_F(StaleTemporaries, AKilledSaveLeavesNothingForLongWhereverItEnds) {
    using enum WatchedFileCalls::Action;
    int left = 0;
    for (const auto how : {dieBefore, dieMidway, dieAfter}) {
        for (int call = 0;; ++call) {
            home.text("history.json", "old");
            if (!saveAndDieAt(call, how)) break;
            const auto found = names();
            left += static_cast<int>(found.size()) - 1;
            for (const std::string& name : found)
                EXPECT_TRUE(name == "history.json" || isNameOfTemporary(name)) << name;
            EXPECT_EQ(sweep(), static_cast<int>(found.size()) - 1);
            EXPECT_THAT(names(), ElementsAre("history.json"));
            const std::string content = home.read("history.json");
            EXPECT_TRUE(content == "old" || content == "new") << content;
        }
    }
    EXPECT_GT(left, 0) << "no save was cut off while its file was there";
}

TEST_F(StaleTemporaries, ASaveInProgressIsNeverHitWhateverItIsDoing) {
    home.text("history.json", "old");
    WatchedFileCalls calls;
    int sweeps = 0;
    calls.before = [&](const char*, const char*) {
        ++sweeps;
        EXPECT_EQ(sweep(), 0);
    };
    PosixFileManager(calls).writeAtomically(path, "new");
    EXPECT_GT(sweeps, 3);
    EXPECT_EQ(home.read("history.json"), "new");
    EXPECT_THAT(names(), ElementsAre("history.json"));
}

TEST_F(StaleTemporaries, ASaveThatLosesItsFileBeforeItIsLockedBeginsAnew) {
    InterruptedLock calls;
    int removed = 0;
    calls.before = [&] { removed = sweep(); };
    PosixFileManager(calls).writeAtomically(path, "new");
    EXPECT_EQ(removed, 1);
    EXPECT_EQ(home.read("history.json"), "new");
    EXPECT_THAT(names(), ElementsAre("history.json"));
}

TEST_F(StaleTemporaries, WhereThereAreNoLocksSavesGoOnAndNothingIsSwept) {
    WatchedFileCalls calls;
    calls.refuses = [](const char* call, const char*) {
        return call == std::string("lock") ? ENOLCK : 0;
    };
    PosixFileManager(calls).writeAtomically(path, "new");
    EXPECT_EQ(home.read("history.json"), "new");
    home.text(".velto-0123456789abcdef", "left");
    EXPECT_EQ(removeStaleTemporaries(home.path(), calls), 0);
    EXPECT_TRUE(home.exists(".velto-0123456789abcdef"));
}

TEST_F(StaleTemporaries, OnlyOwnFilesOfExactlyThatFormGo) {
    const std::vector<std::string> kept{".velto-0123456789abcde",  ".velto-0123456789abcdef0",
                                        ".velto-9876543210ABCDEF", ".velto-0123456789abcdeg",
                                        "velto-0123456789abcdef",  "history.json",
                                        ".velto-itA1B2C3D4"};
    for (const std::string& name : kept)
        home.text(name, "kept");
    home.text(".velto-0123456789abcdef", "left");
    home.folder(".velto-00000000000000f0");
    home.link(".velto-00000000000000f1", "history.json");
    ASSERT_EQ(mkfifo(home.path(".velto-00000000000000f2").c_str(), 0600), 0);
    EXPECT_EQ(sweep(), 1);
    auto expected = kept;
    for (const char* other :
         {".velto-00000000000000f0", ".velto-00000000000000f1", ".velto-00000000000000f2"})
        expected.emplace_back(other);
    EXPECT_THAT(names(), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(home.read("history.json"), "kept");
}

TEST_F(StaleTemporaries, AFolderBehindALinkIsNotSwept) {
    home.text("elsewhere/.velto-0123456789abcdef", "left");
    home.link("link", "elsewhere");
    EXPECT_EQ(removeStaleTemporaries(home.path("link")), 0);
    EXPECT_EQ(removeStaleTemporaries(home.path("missing")), 0);
    EXPECT_TRUE(home.exists("elsewhere/.velto-0123456789abcdef"));
}

}  // namespace
}  // namespace velto
