// Every system call of a move between volumes fails once, with each reason that a disk has. The
// item is whole in exactly one place afterwards.

#include <sys/wait.h>

#include <ostream>

#include "platform/posix/MoveWorld.h"
#include "support/exhaustive.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;

constexpr int reasons[] = {ENOSPC, EACCES, EIO, EBUSY};
/// Of a call that was carried out all the same; the last two, of one that a network sent again.
constexpr int lostReplies[] = {EIO, ENOENT, EEXIST};

void makeItem(TempHome& home, bool isFolder) {
    if (!isFolder) {
        home.file("item", 70'000);
        return;
    }
    home.text("item/a/file", "content");
    home.text("item/empty file", "");
    home.folder("item/empty folder");
    home.link("item/link", "a/file");
    setMode(home.path("item/a"), 0555);
}

struct Way {
    const char* name;
    bool isFolder;
    bool knowsExclusiveRename;
};

void PrintTo(const Way& way, std::ostream* stream) { *stream << way.name; }

class MoveFaults : public testing::TestWithParam<Way> {
protected:
    /// False when the move has fewer calls than that.
    static bool failAt(int call, int reason, Action action = Action::fail,
                       const std::string& sourceVolume = buildVolume()) {
        MoveWorld world(sourceVolume, otherVolume());
        makeItem(world.source, GetParam().isFolder);
        const std::string text = treeText(world.source.path("item"));
        world.calls.knowsExclusiveRename = GetParam().knowsExclusiveRename;
        world.calls.countsAll = action == Action::fail;
        world.calls.action = action;
        world.calls.at = call;
        world.calls.error = reason;
        const int failure = world.move();
        const bool wasReached = world.calls.count > call;
        world.calls.action = Action::none;
        const std::string where =
            "call " + std::to_string(call) + " fails with " + std::to_string(reason);
        const MoveState state = world.settle();
        EXPECT_NE(state, MoveState::nowhere) << where;
        const bool isMoved = state == MoveState::atTarget;
        // A failure that is not reported must not have kept the item from moving.
        EXPECT_TRUE(isMoved || failure != 0) << where;
        EXPECT_EQ(treeText(world.source.path("item")), isMoved ? "" : text) << where;
        EXPECT_EQ(treeText(world.target.path("moved")), isMoved ? text : "") << where;
        EXPECT_TRUE(isMoved ? world.isOnlyAtTarget() : world.isOnlyAtSource()) << where;
        return wasReached;
    }
};

TEST_P(MoveFaults, LeaveTheItemWholeInOnePlace) {
    const int share = isExhaustive() ? 1 : 3;
    for (int call = 0;; ++call) {
        bool wasReached = true;
        for (int index = 0; index < 4; ++index) {
            // In the ordinary run every call fails with one or two reasons; all of them get a turn.
            if ((call + index) % share == 0) wasReached = failAt(call, reasons[index]);
        }
        if (!wasReached || HasFailure()) break;
        ASSERT_LT(call, 2'000);
    }
}

TEST_P(MoveFaults, LeaveTheItemWholeInOnePlaceAlsoWhenTheCallWasCarriedOut) {
    // Between volumes, and within one.
    for (const std::string& sourceVolume : {buildVolume(), otherVolume()}) {
        bool wasReached = true;
        for (int call = 0; wasReached && !HasFailure(); ++call) {
            for (const int reason : lostReplies)
                wasReached = failAt(call, reason, Action::doThenFail, sourceVolume);
            ASSERT_LT(call, 2'000);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, MoveFaults,
                         testing::Values(Way{"file", false, true}, Way{"folder", true, true},
                                         Way{"fileWithoutExclusiveRename", false, false},
                                         Way{"folderWithoutExclusiveRename", true, false}),
                         [](const auto& way) { return std::string(way.param.name); });

/// As above, but the process dies; the next one settles.
class MoveDeaths : public testing::TestWithParam<Way> {};

TEST_P(MoveDeaths, LeaveTheItemWholeInOnePlace) {
    for (const Action action : {Action::dieBefore, Action::dieMidway, Action::dieAfter}) {
        for (int call = 0;; ++call) {
            if (!isExhaustive() && call % 3 != static_cast<int>(action) % 3) continue;
            MoveWorld world(buildVolume(), otherVolume());
            makeItem(world.source, GetParam().isFolder);
            const std::string text = treeText(world.source.path("item"));
            world.calls.knowsExclusiveRename = GetParam().knowsExclusiveRename;
            world.calls.action = action;
            world.calls.at = call;
            const pid_t child = fork();
            if (child == 0) _exit(world.move());
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            const bool died = WEXITSTATUS(status) == WatchedFileCalls::died;
            world.calls.action = Action::none;
            const std::string where = "died at call " + std::to_string(call);
            const bool isMoved = world.settle() == MoveState::atTarget;
            EXPECT_EQ(treeText(world.source.path("item")), isMoved ? "" : text) << where;
            EXPECT_EQ(treeText(world.target.path("moved")), isMoved ? text : "") << where;
            EXPECT_TRUE(isMoved ? world.isOnlyAtTarget() : world.isOnlyAtSource()) << where;
            if (!died || HasFailure()) break;
            ASSERT_LT(call, 2'000);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, MoveDeaths,
                         testing::Values(Way{"file", false, true}, Way{"folder", true, true},
                                         Way{"fileWithoutExclusiveRename", false, false},
                                         Way{"folderWithoutExclusiveRename", true, false}),
                         [](const auto& way) { return std::string(way.param.name); });

}  // namespace
}  // namespace velto
