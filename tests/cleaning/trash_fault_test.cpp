// Every single call of the file system fails once, one after another through all of them. The trash
// says so or gets over it; either way every file is whole and in one place, and the trash works on.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <span>

#include "trash_scenarios.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;

constexpr int reasons[] = {ENOSPC, EACCES, EBUSY, ENOENT, EROFS, ENAMETOOLONG};
/// What a network volume answers to a call that it has carried out: the connection's own trouble,
/// or what the call met when it was sent again and found its work done.
constexpr int lostReplies[] = {EIO, ENOENT, EEXIST};

enum class Outcome { done, refused, brokenOff };

Outcome outcomeOf(const std::function<void()>& action) {
    try {
        action();
        return Outcome::done;
    } catch (const FileError&) {
        return Outcome::refused;
    } catch (const TrashError&) {
        return Outcome::refused;
    } catch (const std::exception& error) {
        ADD_FAILURE() << "an error of another kind: " << error.what();
        return Outcome::brokenOff;
    }
}

struct Fault {
    int at;
    int reason;
    Action action;
};

/// True when the call at which it should fail was made.
bool failOnce(const TrashScenario& scenario, const TrashVolumes& volumes, const Fault& fault) {
    TrashWorld world(volumes.home, volumes.trash);
    world.keepMany();
    scenario.prepare(world);
    // What is to be deleted and resists is there in part; when it was to expire, it is forgotten.
    world.mayBeInPart = scenario.deleted;
    world.allowsLeftovers = !scenario.deleted.empty();
    const auto process = world.process();
    process->calls.knowsExclusiveRename = volumes.knowsExclusiveRename;
    process->service.items();
    // From a call on that only looks is from the next change on.
    process->calls.countsAll = fault.action == Action::fail;
    process->calls.count = 0;
    process->calls.at = fault.at;
    process->calls.error = fault.reason;
    process->calls.action = fault.action;
    const Outcome outcome = outcomeOf([&] { scenario.act(world, process->service); });
    const bool wasReached = process->calls.count > fault.at;
    process->calls.action = Action::none;

    const TrashWorld::Whereabouts found = world.prove(scenario.deleted);
    const bool saysDone = outcome == Outcome::done && scenario.deleted.empty();
    if (saysDone) {
        EXPECT_EQ(found.home, scenario.home) << "reported as done";
    }
    // What is deleted on a disk that takes no word of it is gone for the process that has done it.
    const bool isUntold = fault.action == Action::failOnwards && !scenario.deleted.empty();
    if (!isUntold) {
        EXPECT_EQ(process->service.items(), world.process()->service.items())
            << "this process and the next do not agree";
    }
    world.proveTrashWorks();
    return wasReached;
}

void failEverywhere(const TrashScenario& scenario, const TrashVolumes& volumes, int share,
                    Action action = Action::fail) {
    const int step = isExhaustive() ? 1 : share;
    int points = 0;
    const std::span<const int> all =
        action == Action::doThenFail ? std::span<const int>(lostReplies) : reasons;
    for (const int reason : all) {
        // Elsewhere for each reason and for each scenario.
        int at = (reason * 7 + static_cast<int>(std::strlen(scenario.name))) % step;
        for (bool wasReached = true; wasReached; at += step) {
            SCOPED_TRACE(testing::Message()
                         << scenario.name << ", call " << at << ": " << std::strerror(reason));
            wasReached =
                failOnce(scenario, volumes, {.at = at, .reason = reason, .action = action});
            if (testing::Test::HasFailure()) return;
            ++points;
        }
    }
    EXPECT_GT(points * step, 20) << "the calls are not counted";
    testing::Test::RecordProperty("points", points);
}

class TrashFault : public testing::TestWithParam<TrashScenario> {};

TEST_P(TrashFault, NothingIsLostWhateverFails) {
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), ""}, 53);
}

TEST_P(TrashFault, NothingIsLostBetweenVolumes) {
    if (!TrashWorld::hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), buildVolume()}, 211);
}

TEST_P(TrashFault, NothingIsLostWhereRenamingMayReplace) {
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), "", false}, 101);
}

TEST_P(TrashFault, NothingIsLostWhenADoneCallIsReportedAsFailed) {
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), ""}, 29, Action::doThenFail);
}

TEST_P(TrashFault, NothingIsLostWhenADoneCallIsReportedAsFailedAndRenamingMayReplace) {
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), "", false}, 29, Action::doThenFail);
}

TEST_P(TrashFault, NothingIsLostBetweenVolumesWhenADoneCallIsReportedAsFailed) {
    if (!TrashWorld::hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), buildVolume()}, 127, Action::doThenFail);
}

TEST_P(TrashFault, NothingIsLostOnADiskThatFailsForGood) {
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), ""}, 13, Action::failOnwards);
}

TEST_P(TrashFault, NothingIsLostWhereRenamingMayReplaceAndFailsForGood) {
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), "", false}, 17, Action::failOnwards);
}

TEST_P(TrashFault, NothingIsLostBetweenVolumesThatFailForGood) {
    if (!TrashWorld::hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    failEverywhere(GetParam(), {TrashWorld::fastVolume(), buildVolume()}, 61, Action::failOnwards);
}

INSTANTIATE_TEST_SUITE_P(Changes, TrashFault, testing::ValuesIn(trashScenarios()),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
}  // namespace velto
