// Subvolumes of btrfs are volumes by their numbers and folders by everything else: what lies in
// one is moved, brought back and deleted like the rest.

#include <gtest/gtest.h>

#include <fstream>

#include "filesystems/linux/VolumeWorld.h"
#include "support/linux/private_mounts.h"
#include "support/tree_text.h"

namespace velto {
namespace {

class TrashWithSubvolumes : public testing::TestWithParam<Placed> {
protected:
    /// A folder "item" with subvolumes inside, one in the other, and "volume", which is one itself.
    void withSubvolumes(const std::function<void(VolumeWorld& world, TrashUser& user)>& test) {
        const std::string reason = withMountsOfItsOwn([&]() -> std::string {
            VolumeWorld world(volumeKind("btrfs"), GetParam());
            if (std::string problem = world.begin(); !problem.empty()) return problem;
            std::filesystem::create_directories(world.path("Projects/item"));
            for (const char* name :
                 {"Projects/item/inner", "Projects/item/inner/deepest", "Projects/volume"}) {
                if (!makeSubvolume(world.path(name))) return "btrfs(8) cannot make subvolumes here";
                std::ofstream(world.path(name) + "/file") << "in " << name;
            }
            std::ofstream(world.path("Projects/item/file")) << "in the item";
            std::ofstream(world.path("Projects/kept")) << "kept";
            std::filesystem::create_directories(world.path("Projects/none"));
            TrashUser user = world.user();
            test(world, user);
            return "";
        });
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    static std::vector<std::string> both(const VolumeWorld& world) {
        return {world.path("Projects/item"), world.path("Projects/volume")};
    }
};

TEST_P(TrashWithSubvolumes, TheyGoInAndComeBack) {
    withSubvolumes([](VolumeWorld& world, TrashUser& user) {
        const std::string before = treeText(world.path("Projects"));
        const Operation operation = user.service.moveToTrash(both(world), "wind");
        EXPECT_FALSE(std::filesystem::exists(world.path("Projects/item")));
        EXPECT_FALSE(std::filesystem::exists(world.path("Projects/volume")));
        user.service.undoOperation(operation.id);
        EXPECT_EQ(treeText(world.path("Projects")), before);
    });
}

TEST_P(TrashWithSubvolumes, TheyAreDeletedOneByOneAndTogether) {
    withSubvolumes([](VolumeWorld& world, TrashUser& user) {
        const Operation operation = user.service.moveToTrash(both(world), "wind");
        user.service.deletePermanently(operation.items.front().id);
        EXPECT_EQ(user.service.items().size(), 1u);
        user.service.emptyTrash();
        EXPECT_TRUE(user.service.items().empty());
        EXPECT_FALSE(std::filesystem::exists(world.layout.trashFolder + "/" + operation.id));
        EXPECT_EQ(leavesBelow(world.path("Projects")), (std::set<std::string>{"kept", "none/"}));
    });
}

TEST_P(TrashWithSubvolumes, TheyExpire) {
    withSubvolumes([](VolumeWorld& world, TrashUser& user) {
        const Operation operation = user.service.moveToTrash(both(world), "wind");
        world.clock.time += 31_days;
        user.service.purgeExpired(30);
        EXPECT_TRUE(user.service.items().empty());
        EXPECT_FALSE(std::filesystem::exists(world.layout.trashFolder + "/" + operation.id));
    });
}

std::string nameOf(const testing::TestParamInfo<Placed>& info) {
    return info.param == Placed::everything ? "all" : "disk_in_home";
}

INSTANTIATE_TEST_SUITE_P(Placed, TrashWithSubvolumes,
                         testing::Values(Placed::everything, Placed::diskInHome), nameOf);

}  // namespace
}  // namespace velto
