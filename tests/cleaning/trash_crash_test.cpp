// The process dies before, in the middle of and after every single call that changes the disk, one
// after another through all of them. Whatever comes next finds every file in full, in one place.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "TrashWorld.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;

struct Scenario {
    const char* name;
    /// Done before, without interruption.
    std::function<void(TrashWorld& world)> prepare;
    /// What is cut off.
    std::function<void(TrashWorld& world, VeltoTrashService& service)> act;
    /// What the action deletes for good.
    std::set<std::string> deleted;
};

const std::set<std::string> everything{
    "Downloads/año nuevo.pdf", "Downloads/\u202Eright to left.txt",
    "Documents/two\nlines \"quoted\".txt", "Documents/empty", "Library/Caches/com.example.app"};

void trashAll(TrashWorld& world) {
    world.process()->service.moveToTrash(world.keptPaths(), "wind");
}

const TrashItem itemOf(const TrashWorld& world, VeltoTrashService& service,
                       const std::string& relative) {
    for (const TrashItem& item : service.items()) {
        if (item.originalPath == world.path(relative)) return item;
    }
    return {};
}

constexpr const char* someFolder = "Library/Caches/com.example.app";
constexpr const char* someFile = "Downloads/año nuevo.pdf";

const std::vector<Scenario> scenarios{
    {"move",
     [](TrashWorld&) {},
     [](TrashWorld& world, VeltoTrashService& service) {
         service.moveToTrash(world.keptPaths(), "wind");
     },
     {}},
    {"move_beside_others",
     [](TrashWorld& world) {
         world.process()->service.moveToTrash({world.path(someFile)}, "wind");
     },
     [](TrashWorld& world, VeltoTrashService& service) {
         service.moveToTrash({world.path(someFolder)}, "wind");
     },
     {}},
    {"restore",
     trashAll,
     [](TrashWorld& world, VeltoTrashService& service) {
         service.restore(itemOf(world, service, someFolder).id);
     },
     {}},
    {"undo",
     trashAll,
     [](TrashWorld&, VeltoTrashService& service) {
         service.undoOperation(service.operations().front().id);
     },
     {}},
    {"delete",
     trashAll,
     [](TrashWorld& world, VeltoTrashService& service) {
         service.deletePermanently(itemOf(world, service, someFolder).id);
     },
     {someFolder}},
    {"empty", trashAll, [](TrashWorld&, VeltoTrashService& service) { service.emptyTrash(); },
     everything},
    {"purge",
     [](TrashWorld& world) {
         world.process()->service.moveToTrash({world.path(someFile), world.path(someFolder)},
                                              "wind");
         world.clock.time += 31 * 86400.0;
         world.process()->service.moveToTrash({world.path("Documents/empty")}, "wind");
     },
     [](TrashWorld&, VeltoTrashService& service) { service.purgeExpired(30); },
     {someFile, someFolder}},
};

/// Runs the scenario in a child that dies at a call. True when the child came to the end.
bool actInChild(TrashWorld& world, const Scenario& scenario, Action action, int at,
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

struct Volumes {
    std::string home, trash;
    bool knowsExclusiveRename = true;
};

/// Dies at every call, or at a share of them: each `step`th, beginning elsewhere for each action.
void dieEverywhere(const Scenario& scenario, const Volumes& volumes, int share) {
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

class TrashCrash : public testing::TestWithParam<Scenario> {};

TEST_P(TrashCrash, NothingIsLostWhereverItDies) {
    dieEverywhere(GetParam(), {TrashWorld::fastVolume(), ""}, 11);
}

TEST_P(TrashCrash, NothingIsLostBetweenVolumes) {
    TrashWorld probe(TrashWorld::fastVolume(), TrashWorld::buildVolume());
    struct stat one {};
    struct stat other {};
    stat(probe.home.path().c_str(), &one);
    stat(probe.trashVolume->path().c_str(), &other);
    if (one.st_dev == other.st_dev) GTEST_SKIP() << "memory and build folder are one volume here";
    dieEverywhere(GetParam(), {TrashWorld::fastVolume(), TrashWorld::buildVolume()}, 41);
}

TEST_P(TrashCrash, NothingIsLostWhereRenamingMayReplace) {
    dieEverywhere(GetParam(), {TrashWorld::fastVolume(), "", false}, 19);
}

INSTANTIATE_TEST_SUITE_P(Changes, TrashCrash, testing::ValuesIn(scenarios),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
}  // namespace velto
