// What the uninstaller removes, on real file systems of every kind.

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "filesystems/linux/VolumeWorld.h"
#include "support/TestPlatform.h"
#include "uninstall/AppUsage.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/ItemRemoval.h"

namespace velto {
namespace {

constexpr const char* leftover = "Library/Caches/com.example.app";

class RemovalOnVolumes : public testing::TestWithParam<VolumeKind> {
protected:
    static void onVolume(Placed placed,
                         const std::function<void(VolumeWorld&, ItemRemoval&)>& test) {
        const std::string reason = withMountsOfItsOwn([&]() -> std::string {
            VolumeWorld world(GetParam(), placed);
            if (std::string problem = world.begin(); !problem.empty()) return problem;
            world.keepEverything();
            TestPlatform machine;
            machine.platform.layout = world.layout;
            AppUsage usage{machine.platform};
            InstalledApps apps{machine.platform, usage};
            ItemRemoval removal(machine.platform, apps);
            test(world, removal);
            EXPECT_TRUE(leavesUnder(world.layout.removalFolder).empty());
            return "";
        });
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    static std::set<std::string> leavesUnder(const std::string& folder) {
        std::set<std::string> leaves;
        std::error_code none;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, none))
            leaves.insert(entry.path());
        return leaves;
    }

    static void expectOnlyThatGone(VolumeWorld& world, ItemRemoval& removal) {
        removal.remove(world.path(leftover));
        removal.remove(world.path("Documents/report.pdf"));
        const std::set<std::string> gone{leftover, "Documents/report.pdf"};
        EXPECT_EQ(world.prove(gone).gone, gone);
    }
};

TEST_P(RemovalOnVolumes, WhatWasChosenGoesAndNothingElse) {
    if (!GetParam().keepsModes) GTEST_SKIP() << "no home lies on such a volume";
    onVolume(Placed::everything, expectOnlyThatGone);
}

TEST_P(RemovalOnVolumes, OnADiskInsideTheHomeToo) {
    onVolume(Placed::diskInHome, expectOnlyThatGone);
}

TEST_P(RemovalOnVolumes, WhereNothingCanBeWrittenAllStaysAndIsSaidToStay) {
    onVolume(Placed::diskInHome, [](VolumeWorld& world, ItemRemoval& removal) {
        constexpr unsigned long readOnly = MS_REMOUNT | MS_BIND | MS_RDONLY;
        ASSERT_EQ(mount(nullptr, world.volume().c_str(), nullptr, readOnly, nullptr), 0);
        EXPECT_THROW(removal.remove(world.path(leftover)), FileError);
        EXPECT_EQ(world.prove().home, world.keptNames());
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, RemovalOnVolumes, testing::ValuesIn(volumeKinds()),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace
}  // namespace velto
