// Another program swaps folders for links while leftovers of an application are removed for good.

#include <gtest/gtest.h>

#include "attack/Racer.h"
#include "attack/attack_world.h"
#include "support/TestPlatform.h"
#include "uninstall/AppUsage.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/ItemRemoval.h"

namespace velto {
namespace {

int rounds() { return isExhaustive() ? 1'000 : 60; }

TEST(UninstallRace, NothingBehindALinkIsRemoved) {
    AttackWorld world;
    world.detail = TreeDetail::usual;
    if (!Racer::isPossible(world.root.folder("probe"))) {
        GTEST_SKIP() << "names cannot be exchanged here";
    }
    TestPlatform machine;
    machine.platform.layout = world.layout;
    AppUsage usage{machine.platform};
    InstalledApps apps{machine.platform, usage};
    const ItemRemoval removal(machine.platform, apps);
    world.file("Library/Preferences/kept");
    const std::string caches = world.home("Library/Caches");
    const std::string item = caches + "/com.example.app";
    // Behind the links stand the same names.
    world.root.text("outside/com.example.app/blob", "of others");
    world.root.text("outside/deep/blob", "of others");
    world.root.text("outside/blob", "of others");
    world.lookOutside();
    int removed = 0;
    for (int round = 0; round < rounds(); ++round) {
        std::filesystem::remove_all(caches);
        world.root.text("home/Library/Caches/com.example.app/deep/blob", "nobody's");
        for (const std::string& place : {caches, item, item + "/deep"}) {
            std::filesystem::remove(place + " link");
            world.putLink(place + " link");
        }
        {
            const Racer racer({caches, item, item + "/deep"});
            for (int attempt = 0; attempt < 3; ++attempt) {
                tryTo([&] {
                    removal.remove(item);
                    ++removed;
                });
                tryTo([&] { removal.sweep(); });
            }
        }
        tryTo([&] { removal.sweep(); });
        world.expectOutsideUntouched();
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(removed, 0);
    EXPECT_EQ(world.found(), world.contents);
}

}  // namespace
}  // namespace velto
