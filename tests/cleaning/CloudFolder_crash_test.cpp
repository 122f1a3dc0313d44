// A move to the cloud folder or back is cut off, or fails, at every call that changes the disk.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ostream>

#include "TrashWorld.h"
#include "cleaning/CloudFolder.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using testing::ElementsAre;

constexpr const char* iCloud = "Library/Mobile Documents/com~apple~CloudDocs";

using Action = WatchedFileCalls::Action;

/// What is moved, in a home of its own.
struct Passage {
    const char* name;
    bool isOut;                        // out of the cloud folder
    bool knowsExclusiveRename = true;  // else a file system that can only rename by replacing
    std::string downloads{};           // out to this volume, its place being gone
};

void PrintTo(const Passage& passage, std::ostream* stream) { *stream << passage.name; }

struct Journey {
    explicit Journey(const Passage& thePassage) : passage(thePassage) {
        if (!passage.downloads.empty()) {
            otherVolume.emplace(passage.downloads);
            layout.downloads = otherVolume->path("Downloads");
        }
        home.folder(iCloud);
        home.text("Work/papers/one", std::string(9'000, '1'));
        home.text("Work/papers/deep/two", "2");
        content = treeText(origin);
        if (!passage.isOut) return;
        PosixFileManager files;
        CloudFolder(files, files, log, layout).moveTo({origin});
        if (otherVolume) files.removeAll(home.path("Work"));
    }

    CloudFolder::Result travel(WatchedFileCalls& calls) {
        calls.knowsExclusiveRename = passage.knowsExclusiveRename;
        calls.waitsForDisk = false;
        PosixFileManager files(calls);
        CloudFolder service(files, files, log, layout);
        return passage.isOut ? service.moveFrom({there}) : service.moveTo({origin});
    }

    /// Where the folder stands in full, as the next start leaves it; it still finds its way home.
    void prove() {
        PosixFileManager files;
        CloudFolder service(files, files, log, layout);
        service.settle();
        const std::string arrival = otherVolume ? layout.downloads + "/papers" : origin;
        const bool isThere = files.exists(there);
        ASSERT_NE(isThere, files.exists(arrival)) << "in one place, and in one alone";
        ASSERT_EQ(treeText(isThere ? there : arrival), content);
        ASSERT_THAT(leavesBelow(layout.cloudDrive), testing::SizeIs(isThere ? 2 : 1))
            << "nothing is left over";
        if (!isThere) return;
        ASSERT_THAT(service.moveFrom({there}).arrivedAt, ElementsAre(arrival));
        ASSERT_EQ(treeText(arrival), content);
    }

    Passage passage;
    TempHome home{TrashWorld::fastVolume()};
    std::optional<TempHome> otherVolume;
    HomeLayout layout = HomeLayout::macOS(home.path());
    std::string origin = home.path("Work/papers");
    std::string there = layout.cloudFolder + "/papers";
    std::string content;
    FakeLog log;
};

class CloudPassage : public testing::TestWithParam<Passage> {
protected:
    void SetUp() override {
        if (GetParam().downloads.empty()) return;
        if (!TrashWorld::hasTwoVolumes()) {
            GTEST_SKIP() << "memory and build folder are one volume here";
        }
    }
};

TEST_P(CloudPassage, NothingIsLostWhereverTheProcessDies) {
    for (const Action action : {Action::dieBefore, Action::dieMidway, Action::dieAfter}) {
        int at = 0;
        for (bool isComplete = false; !isComplete; ++at) {
            SCOPED_TRACE(testing::Message() << "call " << at << ", action " << int(action));
            Journey journey(GetParam());
            const pid_t child = fork();
            if (child == 0) {
                WatchedFileCalls calls;
                calls.action = action;
                calls.at = at;
                journey.travel(calls);
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal, status " << status;
            isComplete = WEXITSTATUS(status) != WatchedFileCalls::died;
            journey.prove();
            if (HasFatalFailure()) return;
        }
        EXPECT_GT(at, 5) << "the calls are not counted";
    }
}

void failEverywhere(const Passage& passage, Action action, int reason) {
    for (int at = 0;; ++at) {
        SCOPED_TRACE(testing::Message() << "call " << at << ", reason " << reason);
        Journey journey(passage);
        WatchedFileCalls calls;
        calls.action = action;
        calls.at = at;
        calls.error = reason;
        const auto result = journey.travel(calls);
        PosixFileManager files;
        const std::string start = journey.passage.isOut ? journey.there : journey.origin;
        ASSERT_EQ(result.failed.empty(), !files.exists(start)) << "the answer is true";
        journey.prove();
        if (testing::Test::HasFatalFailure() || calls.count <= at) break;
    }
}

TEST_P(CloudPassage, NothingIsLostWhateverCallFails) {
    failEverywhere(GetParam(), Action::fail, ENOSPC);
}

TEST_P(CloudPassage, NothingIsLostWhenADoneCallIsReportedAsFailed) {
    for (const int reason : {EIO, ENOENT, EEXIST})
        failEverywhere(GetParam(), Action::doThenFail, reason);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, CloudPassage,
    testing::Values(
        Passage{.name = "in", .isOut = false}, Passage{.name = "out", .isOut = true},
        Passage{.name = "in_by_replacing", .isOut = false, .knowsExclusiveRename = false},
        Passage{.name = "out_to_another_volume", .isOut = true, .downloads = buildVolume()}),
    [](const auto& passage) { return passage.param.name; });

}  // namespace
}  // namespace velto
