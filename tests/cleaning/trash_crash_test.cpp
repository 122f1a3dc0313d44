// The process dies before, in the middle of and after every single call that changes the disk, one
// after another through all of them. Whatever comes next finds every file in full, in one place.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "trash_scenarios.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;

/// Runs the scenario in a child that dies at a call. True when the child came to the end.
bool actInChild(TrashWorld& world, const TrashScenario& scenario, Action action, int at,
                bool knowsExclusiveRename) {
    const pid_t child = fork();
    if (child == 0) {
        const auto process = world.process();
        process->calls.knowsExclusiveRename = knowsExclusiveRename;
        process->service.items();
        process->calls.count = 0;
        process->calls.at = at;
        process->calls.action = action;
        scenario.act(world, process->service);
        _exit(0);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        ADD_FAILURE() << "the child ended by a signal, status " << status;
        return true;
    }
    if (WEXITSTATUS(status) == WatchedFileCalls::died) return false;
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the action itself failed";
    return true;
}

/// Dies at every call, or at a share of them: each `step`th, beginning elsewhere for each action.
void dieEverywhere(const TrashScenario& scenario, const TrashVolumes& volumes, int share) {
    const int step = isExhaustive() ? 1 : share;
    int points = 0;
    for (const Action action : {Action::dieBefore, Action::dieMidway, Action::dieAfter}) {
        bool isComplete = false;
        for (int at = static_cast<int>(action) % step; !isComplete; at += step) {
            SCOPED_TRACE(testing::Message() << scenario.name << ", call " << at << ", action "
                                            << static_cast<int>(action));
            TrashWorld world(volumes.home, volumes.trash);
            world.keepMany();
            scenario.prepare(world);
            isComplete = actInChild(world, scenario, action, at, volumes.knowsExclusiveRename);
            world.prove(scenario.deleted);
            world.proveTrashWorks();
            if (testing::Test::HasFailure()) return;
            ++points;
        }
    }
    EXPECT_GT(points * step, 20) << "the calls are not counted";
    testing::Test::RecordProperty("points", points);
}

class TrashCrash : public testing::TestWithParam<TrashScenario> {};

TEST_P(TrashCrash, NothingIsLostWhereverItDies) {
    dieEverywhere(GetParam(), {TrashWorld::fastVolume(), ""}, 11);
}

TEST_P(TrashCrash, NothingIsLostBetweenVolumes) {
    if (!TrashWorld::hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    dieEverywhere(GetParam(), {TrashWorld::fastVolume(), buildVolume()}, 41);
}

TEST_P(TrashCrash, NothingIsLostWhereRenamingMayReplace) {
    dieEverywhere(GetParam(), {TrashWorld::fastVolume(), "", false}, 19);
}

INSTANTIATE_TEST_SUITE_P(Changes, TrashCrash, testing::ValuesIn(trashScenarios()),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
}  // namespace velto
