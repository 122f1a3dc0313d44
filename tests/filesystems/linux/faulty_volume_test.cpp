// A volume that loses answers, refuses, is cut off from its server or vanishes in the middle. The
// kernel is in between: what it believes of the volume is what programs are told.

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "filesystems/linux/VolumeWorld.h"
#include "support/linux/private_mounts.h"

namespace velto {
namespace {

struct Fault {
    const char* name;
    VolumeFaults::Action action;
    int error;
    bool isPlainRename = false;
};

void PrintTo(const Fault& fault, std::ostream* stream) { *stream << fault.name; }

/// What is done while it happens.
struct Step {
    const char* name;
    std::function<void(const VolumeWorld&world, VeltoTrashService&service)> prepare, act;
    bool deletes = false;
};

const std::vector<Step>& steps() {
    static const auto trashAll = [](const VolumeWorld& world, VeltoTrashService& service) {
        service.moveToTrash(world.keptPaths(), "wind");
    };
    static const std::vector<Step> all{
        {"move", [](const auto&, auto&) {}, trashAll},
        {"undo", trashAll,
         [](const auto&, auto& service) {
             service.undoOperation(service.operations().front().id);
         }},
        {"restore", trashAll,
         [](const auto&, auto& service) { service.restore(service.items().back().id); }},
        {"delete", trashAll,
         [](const auto&, auto& service) { service.deletePermanently(service.items().back().id); },
         true},
        {"empty", trashAll, [](const auto&, auto& service) { service.emptyTrash(); }, true},
    };
    return all;
}

class FaultyVolume : public testing::TestWithParam<Fault> {
protected:
    void SetUp() override { fault = GetParam(); }

    /// The volume again, with what it held.
    std::string mountAgain(const VolumeWorld& world) {
        volume.reset();
        std::vector<std::string> options;
        if (fault.isPlainRename) options.emplace_back("plain-rename");
        volume.emplace(backing->path(), world.volume(), options);
        return volume->problem();
    }

    /// One step with the fault at a call. True when the volume was asked that often.
    bool survive(VolumeWorld& world, const Step& step, int at) {
        world.keepEverything();
        {
            TrashUser before = world.user();
            step.prepare(world, before.service);
        }
        const std::size_t inTrash = world.user().service.items().size();
        TrashUser user = world.user();
        user.service.items();
        VolumeFaults& faults = volume->faults();
        faults.count = 0;
        faults.error = fault.error;
        faults.at = at;
        faults.action = fault.action;
        bool isRefused = false;
        try {
            step.act(world, user.service);
        } catch (const FileError&) {
            isRefused = true;
        } catch (const TrashError&) {
            isRefused = true;
        }
        const bool wasReached = faults.count > at;
        faults.action = VolumeFaults::none;
        EXPECT_EQ(mountAgain(world), "");

        // What resists being deleted may be there in part; all else is whole, and in one place.
        if (!step.deletes) {
            const auto found = world.prove();
            for (const std::string& name : found.home) {
                if (found.trash.contains(name)) std::filesystem::remove_all(world.path(name));
            }
            if (!isRefused) {
                EXPECT_NE(found.trash.size(), inTrash) << "told as done";
            }
        }
        TrashUser next = world.user();
        if (step.deletes) {
            next.service.emptyTrash();
        } else {
            while (!next.service.items().empty())
                next.service.restore(next.service.items().back().id);
            EXPECT_EQ(world.prove().home, world.keptNames());
        }
        EXPECT_TRUE(world.user().service.items().empty());
        return wasReached;
    }

    void surviveEverywhere(Placed placed, int share) {
        const std::string reason = withMountsOfItsOwn([&]() -> std::string {
            VolumeWorld world(volumeKind("fuse"), placed);
            const TempHome memory;
            if (!mountMemory(memory.path())) return "this user may not mount anything";
            backing.emplace(memory.path());
            if (std::string problem = mountAgain(world); !problem.empty()) return problem;
            world.beginMounted();
            world.allowsSurplus = true;
            int at = fault.error % share;
            for (const Step& step : steps()) {
                for (bool wasReached = true; wasReached; at += share) {
                    SCOPED_TRACE(testing::Message() << step.name << ", call " << at);
                    wasReached = survive(world, step, at);
                    if (testing::Test::HasFailure()) return "";
                }
                at = (at * 3 + 1) % share;
            }
            return "";
        });
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    Fault fault;
    std::optional<TempHome> backing;
    std::optional<PassingVolume> volume;
};

TEST_P(FaultyVolume, WithHomeAndTrashLosesNothing) { surviveEverywhere(Placed::everything, 389); }

TEST_P(FaultyVolume, InsideTheHomeLosesNothing) { surviveEverywhere(Placed::diskInHome, 521); }

TEST_P(FaultyVolume, WithTheTrashLosesNothing) { surviveEverywhere(Placed::trash, 521); }

INSTANTIATE_TEST_SUITE_P(
    Faults, FaultyVolume,
    testing::Values(Fault{"loses_a_reply", VolumeFaults::loseReply, EIO},
                    Fault{"answers_too_late", VolumeFaults::loseReply, ETIMEDOUT},
                    Fault{"loses_a_reply_of_a_plain_rename", VolumeFaults::loseReply, EIO, true},
                    Fault{"refuses_once", VolumeFaults::refuse, EIO},
                    Fault{"is_disconnected", VolumeFaults::disconnect, ENOTCONN},
                    Fault{"vanishes", VolumeFaults::vanish, ENOTCONN},
                    Fault{"with_plain_renames_vanishes", VolumeFaults::vanish, ENOTCONN, true}),
    [](const auto& fault) { return fault.param.name; });

}  // namespace
}  // namespace velto
