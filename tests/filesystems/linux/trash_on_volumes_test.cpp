// The trash on real file systems of every kind: everything in one volume, a disk inside the home
// with the trash elsewhere, and the trash alone on such a volume.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "filesystems/linux/VolumeWorld.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

using Names = std::set<std::string>;

struct Place {
    VolumeKind kind;
    Placed placed;
};

void PrintTo(const Place& place, std::ostream* stream) { PrintTo(place.kind, stream); }

std::vector<Place> everyPlace() {
    std::vector<Place> places;
    for (const VolumeKind& kind : volumeKinds()) {
        for (const Placed placed : {Placed::everything, Placed::diskInHome, Placed::trash}) {
            // A home that cannot keep a link or who may read it is none that systems offer.
            if (placed == Placed::diskInHome || kind.keepsModes) places.push_back({kind, placed});
        }
    }
    return places;
}

std::string placeName(const testing::TestParamInfo<Place>& info) {
    const char* const where[] = {"holds_all", "inside_the_home", "holds_the_trash"};
    return std::string(info.param.kind.name) + "_" + where[static_cast<int>(info.param.placed)];
}

/// Whether something was refused, and by what kind of error.
bool isRefused(const std::function<void()>& action) {
    try {
        action();
        return false;
    } catch (const FileError&) {
        return true;
    } catch (const TrashError&) {
        return true;
    }
}

std::string idOf(const VolumeWorld& world, VeltoTrashService& service, const std::string& name) {
    for (const TrashItem& item : service.items()) {
        if (item.originalPath == world.path(name)) return item.id;
    }
    ADD_FAILURE() << name << " is not in the trash";
    return {};
}

class TrashOnVolumes : public testing::TestWithParam<Place> {
protected:
    /// Runs the test on an empty volume, with everything in it that has to survive.
    void onVolume(const std::function<void(VolumeWorld& world)>& test) {
        const std::string reason = withMountsOfItsOwn([&]() -> std::string {
            VolumeWorld world(GetParam().kind, GetParam().placed);
            if (std::string problem = world.begin(); !problem.empty()) return problem;
            world.keepEverything();
            test(world);
            return "";
        });
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    static constexpr const char* folder = "Library/Caches/com.example.app";
    static constexpr const char* report = "Documents/report.pdf";
};

TEST_P(TrashOnVolumes, EverythingGoesInAndComesBackAsItWas) {
    onVolume([](VolumeWorld& world) {
        TrashUser user = world.user();
        const Operation operation = user.service.moveToTrash(world.keptPaths(), "wind");
        EXPECT_EQ(world.prove().trash, world.keptNames());
        user.service.undoOperation(operation.id);
        EXPECT_EQ(world.prove().home, world.keptNames());
        user.service.moveToTrash(world.keptPaths(), "wind");
        while (!user.service.items().empty())
            user.service.restore(user.service.items().back().id);
        EXPECT_EQ(world.prove().home, world.keptNames());
    });
}

TEST_P(TrashOnVolumes, ATakenPlaceIsNeverReplaced) {
    onVolume([](VolumeWorld& world) {
        TrashUser user = world.user();
        user.service.moveToTrash({world.path(report), world.path(folder)}, "wind");
        const std::string inTheWay =
            world.path(world.tellsCaseApart ? report : "Documents/REPORT.pdf");
        std::ofstream(inTheWay) << "new";
        fs::create_directories(world.path(folder) + "/new");
        user.service.restore(idOf(world, user.service, report));
        user.service.restore(idOf(world, user.service, folder));

        EXPECT_EQ(fs::file_size(inTheWay), 3u);
        EXPECT_TRUE(fs::remove(world.path(folder) + "/new"));
        EXPECT_TRUE(fs::remove(world.path(folder))) << "something was put into it";
        fs::remove(inTheWay);
        fs::rename(world.path("Documents/report (restaurado 1).pdf"), world.path(report));
        fs::rename(world.path("Library/Caches/com.example (restaurado 1).app"), world.path(folder));
        EXPECT_EQ(world.prove().home, world.keptNames());
    });
}

TEST_P(TrashOnVolumes, WhatIsDeletedIsGoneAndNothingElse) {
    onVolume([](VolumeWorld& world) {
        TrashUser user = world.user();
        user.service.moveToTrash(world.keptPaths(), "wind");
        user.service.deletePermanently(idOf(world, user.service, folder));
        EXPECT_EQ(world.prove({folder}).gone, (Names{folder}));
        user.service.restore(idOf(world, user.service, report));
        user.service.emptyTrash();
        const Names all = world.keptNames();
        EXPECT_EQ(world.prove(all).home, (Names{report}));
        EXPECT_TRUE(world.prove(all).trash.empty());

        user.service.moveToTrash({world.path(report)}, "wind");
        world.clock.time += 31_days;
        user.service.purgeExpired(30);
        EXPECT_EQ(world.prove(all).gone, all);
    });
}

TEST_P(TrashOnVolumes, OnAFullVolumeNothingIsLostAndRoomCanBeMade) {
    const std::string kind = GetParam().kind.name;
    if (kind == "bound" || kind == "vfat" || kind.starts_with("fuse")) {
        GTEST_SKIP() << "it cannot be filled without filling another one";
    }
    onVolume([](VolumeWorld& world) {
        TrashUser user = world.user();
        user.service.moveToTrash({world.path(folder)}, "wind");
        world.fill();
        if (GetParam().placed == Placed::diskInHome) {
            EXPECT_TRUE(
                isRefused([&] { user.service.restore(idOf(world, user.service, folder)); }));
            EXPECT_EQ(world.prove().trash, (Names{folder}));
        }
        const bool isMoved = !isRefused([&] {
            user.service.moveToTrash({world.path(report), world.path("Documents/empty")}, "wind");
        });
        const auto found = world.prove();
        EXPECT_EQ(found.trash.contains(report), isMoved);
        EXPECT_EQ(found.trash.contains("Documents/empty"), isMoved);
        user.service.emptyTrash();
        const Names all = world.keptNames();
        EXPECT_TRUE(world.prove(all).trash.empty());

        world.makeRoom();
        const Names left = world.prove(all).home;
        std::vector<std::string> paths;
        for (const std::string& name : left)
            paths.push_back(world.path(name));
        user.service.moveToTrash(paths, "wind");
        EXPECT_EQ(world.prove(all).trash, left);
    });
}

TEST_P(TrashOnVolumes, AVolumeThatCannotBeWrittenIsLeftAsItIs) {
    onVolume([](VolumeWorld& world) {
        TrashUser user = world.user();
        const std::string trashed =
            user.service.moveToTrash({world.path(folder)}, "wind").items.front().id;
        const auto before = world.prove();
        constexpr unsigned long bound = MS_REMOUNT | MS_BIND | MS_RDONLY;
        ASSERT_EQ(mount(nullptr, world.volume().c_str(), nullptr, bound, nullptr), 0);
        EXPECT_TRUE(isRefused([&] { user.service.moveToTrash({world.path(report)}, "wind"); }));
        EXPECT_TRUE(isRefused([&] { user.service.restore(trashed); }));
        if (GetParam().placed != Placed::diskInHome) {
            EXPECT_TRUE(isRefused([&] { user.service.deletePermanently(trashed); }));
            EXPECT_TRUE(isRefused([&] { user.service.emptyTrash(); }));
        }
        const auto after = world.prove();
        EXPECT_EQ(after.home, before.home);
        EXPECT_EQ(after.trash, before.trash);

        ASSERT_EQ(mount(nullptr, world.volume().c_str(), nullptr, MS_REMOUNT | MS_BIND, nullptr),
                  0);
        user.service.restore(trashed);
        EXPECT_EQ(world.prove().home, world.keptNames());
    });
}

/// What is cut off in the middle.
struct Cut {
    const char* name;
    std::function<void(const VolumeWorld&world, VeltoTrashService&service)> prepare, act;
};

/// True when the process came to the end before it was to be killed.
bool actAndDie(const VolumeWorld& world, const Cut& cut, int at) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        TrashUser user = world.user();
        user.service.items();
        user.calls.count = 0;
        user.calls.at = at;
        user.calls.action =
            at % 2 == 0 ? WatchedFileCalls::Action::dieAfter : WatchedFileCalls::Action::dieMidway;
        cut.act(world, user.service);
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    const bool isComplete = WEXITSTATUS(status) == 0;
    EXPECT_TRUE(isComplete || WEXITSTATUS(status) == WatchedFileCalls::died) << "it failed";
    return isComplete;
}

/// One round: true when the process came to its end.
bool surviveCut(VolumeWorld& world, const Cut& cut, int at) {
    world.keepEverything();
    {
        TrashUser user = world.user();
        cut.prepare(world, user.service);
    }
    const bool isComplete = actAndDie(world, cut, at);
    const bool deletes = cut.name == std::string("delete") || cut.name == std::string("empty");
    const Names gone = world.prove(deletes ? world.keptNames() : Names()).gone;
    TrashUser next = world.user();
    while (!next.service.items().empty())
        next.service.restore(next.service.items().back().id);
    EXPECT_EQ(world.prove(gone).gone, gone);
    return isComplete;
}

TEST_P(TrashOnVolumes, AProcessThatIsKilledInTheMiddleLosesNothing) {
    const std::string kind = GetParam().kind.name;
    if (kind == "bound" || kind == "fuse" || kind == "fuse_ignoring_case") {
        GTEST_SKIP() << "it is cut off as the others are";
    }
    const auto trashAll = [](const VolumeWorld& world, VeltoTrashService& service) {
        service.moveToTrash(world.keptPaths(), "wind");
    };
    const auto undo = [](const VolumeWorld&, VeltoTrashService& service) {
        service.undoOperation(service.operations().front().id);
    };
    const auto erase = [](const VolumeWorld& world, VeltoTrashService& service) {
        service.deletePermanently(idOf(world, service, folder));
    };
    const auto empty = [](const VolumeWorld&, VeltoTrashService& service) { service.emptyTrash(); };
    const Cut cuts[] = {{"move", [](const auto&, auto&) {}, trashAll},
                        {"undo", trashAll, undo},
                        {"delete", trashAll, erase},
                        {"empty", trashAll, empty}};
    onVolume([&](VolumeWorld& world) {
        // Elsewhere for each kind: together they go through all of it.
        int at = 3 + 7 * static_cast<int>(world.kind.name[0] + world.kind.name[3]) % 40;
        for (const Cut& cut : cuts) {
            SCOPED_TRACE(testing::Message() << cut.name << " cut at call " << at);
            if (surviveCut(world, cut, at)) surviveCut(world, cut, at % 10);  // there were fewer
            if (testing::Test::HasFailure()) return;
            at += 11;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, TrashOnVolumes, testing::ValuesIn(everyPlace()), placeName);

}  // namespace
}  // namespace velto
