// Another program swaps folders for links, without pause, while this one works.

#include <gmock/gmock.h>

#include <algorithm>

#include "attack/Racer.h"
#include "attack/attack_world.h"

namespace velto {
namespace {

int removalRounds() { return isExhaustive() ? 3'000 : 150; }

class Race : public testing::Test {
protected:
    void SetUp() override {
        if (!Racer::isPossible(world.root.folder("probe"))) {
            GTEST_SKIP() << "names cannot be exchanged here";
        }
        std::filesystem::remove(world.root.path("probe"));
        world.detail = TreeDetail::usual;  // a manifest may be read where it lies just then
        world.lookOutside();
    }

    void linkBeside(const std::string& place, const std::string& target = "") {
        world.putLink(place + " link", target);
    }

    void expectAllOnceAndNothingOutside() {
        world.expectOutsideUntouched();
        auto expected = world.contents;
        std::ranges::sort(expected);
        EXPECT_EQ(world.found(), expected) << "something is lost, or there twice";
    }

    AttackWorld world;
    VeltoTrashService trash{world.files, world.files, world.clock, world.log, world.layout};
};

TEST_F(Race, MovingAndUndoingNeverLeavesTheHomeAndLosesNothing) {
    const std::vector<std::string> paths{world.file("d/e/deep"), world.file("d/file"),
                                         world.file("other")};
    linkBeside(world.home("d"));
    linkBeside(world.home("d/e"), "e");
    long swaps = 0;
    {
        const Racer racer({world.home("d"), world.home("d/e")});
        for (int round = 0; round < removalRounds(); ++round) {
            tryTo([&] { trash.moveToTrash(paths, "wind"); });
            for (const Operation& operation : std::vector(trash.operations()))
                tryTo([&] { trash.undoOperation(operation.id); });
        }
        swaps = racer.swaps();
    }
    EXPECT_GT(swaps, 0);
    expectAllOnceAndNothingOutside();
}

TEST_F(Race, RestoringIntoAFolderOfTheUsersChoiceStaysThere) {
    const std::string path = world.file("a");
    world.root.folder("home/chosen/below");
    linkBeside(world.home("chosen"));
    linkBeside(world.home("chosen/below"), "e");
    {
        const Racer racer({world.home("chosen"), world.home("chosen/below")});
        for (int round = 0; round < removalRounds(); ++round) {
            if (!world.files.exists(path)) break;
            tryTo([&] {
                const Operation operation = trash.moveToTrash({path}, "wind");
                trash.restoreTo(operation.items.front().id, world.home("chosen/below"));
            });
            for (const TrashItem& item : std::vector(trash.items()))
                tryTo([&] { trash.restore(item.id); });
        }
    }
    expectAllOnceAndNothingOutside();
}

/// Deletes what was put into the trash, in one way or another, and nothing else.
class DeletingRace : public Race, public testing::WithParamInterface<int> {
protected:
    void deleteOne(const TrashItem& item) {
        switch (GetParam()) {
            case 0:
                return trash.deletePermanently(item.id);
            case 1:
                return trash.emptyTrash();
            default:
                trash.purgeExpired(1);
        }
    }
};

TEST_P(DeletingRace, NothingBehindALinkIsDeleted) {
    world.file("kept");
    const std::string trashFolder = world.layout.trashFolder;
    for (int round = 0; round < removalRounds() / 3; ++round) {
        world.root.text("home/thrown away", "nobody's");
        const TrashItem item = trash.moveToTrash({world.home("thrown away")}, "wind").items.front();
        world.clock.time += 2 * 86'400;
        const std::string operation = trashFolder + "/" + item.opID;
        // What stands behind the link has the very names that are looked for.
        const std::string stored = item.id + "-" + item.name;
        world.root.text("outside/" + item.opID + "/" + stored, "of others");
        world.root.text("outside/" + stored, "of others");
        world.lookOutside();
        std::filesystem::remove(trashFolder + " link");
        linkBeside(trashFolder);
        linkBeside(operation);
        {
            const Racer racer({trashFolder, operation});
            for (int attempt = 0; attempt < 5; ++attempt)
                tryTo([&] { deleteOne(item); });
        }
        std::filesystem::remove(operation + " link");
        tryTo([&] { trash.emptyTrash(); });
        world.expectOutsideUntouched();
        if (HasFailure()) return;
        std::filesystem::remove_all(world.root.path("outside/" + item.opID));
        std::filesystem::remove(world.root.path("outside/" + stored));
        world.lookOutside();
    }
    expectAllOnceAndNothingOutside();
}

constexpr const char* ways[] = {"purge", "empty", "expiry"};

INSTANTIATE_TEST_SUITE_P(Ways, DeletingRace, testing::Values(0, 1, 2),
                         [](const auto& way) { return ways[way.param]; });

}  // namespace
}  // namespace velto
