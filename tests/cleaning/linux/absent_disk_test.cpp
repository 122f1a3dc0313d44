// A real volume that is not mounted at the next start, or another one in its place.

#include <sys/mount.h>

#include "../TrashFixture.h"
#include "support/linux/private_mounts.h"
#include "support/tree_text.h"
#include "support/volumes.h"

namespace velto {
namespace {

class AbsentVolume : public TrashTest {
protected:
    /// Moves the thing in a process that dies once its original is put aside.
    void cutOff(const HomeLayout& apart) {
        const pid_t child = fork();
        if (child == 0) {
            TrashProcess dying(apart, clock);
            bool isAside = false;
            dying.calls.before = [&](std::string_view call, std::string_view name) {
                if (call != "rename") return;
                if (isAside && name.ends_with("thing")) _exit(WatchedFileCalls::died);
                isAside = isAside || name.starts_with(".velto-");
            };
            dying.service.moveToTrash({home.path("disk/thing")}, "wind");
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), WatchedFileCalls::died);
    }
};

TEST_F(AbsentVolume, WhatWasUnderWayWaitsForItsVolume) {
    if (!areTwoVolumes(home.path(), buildVolume())) GTEST_SKIP() << "all is one volume here";
    const TempHome elsewhere(buildVolume());
    HomeLayout apart = layout;
    apart.dataFolder = elsewhere.path("Velto");
    apart.trashFolder = elsewhere.path("Velto/Trash");
    home.folder("disk");
    home.folder("drawer");
    const std::string disk = home.path("disk");
    const InPrivate result = withPrivateMounts([&] {
        // The volume stays mounted in the drawer as well, or it would be gone with what it holds.
        if (!mountMemory(home.path("drawer")) || !bindTo(home.path("drawer"), disk)) return false;
        file("disk/thing/a", "a");
        file("disk/thing/b", "b");
        const std::string whole = treeText(home.path("disk/thing"));
        cutOff(apart);

        EXPECT_EQ(umount2(disk.c_str(), MNT_DETACH), 0);
        EXPECT_TRUE(TrashProcess(apart, clock).service.items().empty())
            << "the mount point is empty";
        if (!mountMemory(disk)) return false;
        file("disk/thing/a", "of another");
        EXPECT_TRUE(TrashProcess(apart, clock).service.items().empty()) << "this is another volume";
        EXPECT_EQ(home.read("disk/thing/a"), "of another");
        EXPECT_EQ(umount2(disk.c_str(), MNT_DETACH), 0);

        if (!bindTo(home.path("drawer"), disk)) return false;
        EXPECT_TRUE(TrashProcess(apart, clock).service.items().empty());
        EXPECT_EQ(treeText(home.path("disk/thing")), whole);
        EXPECT_FALSE(std::filesystem::exists(apart.trashFolder + ".journal"));
        return true;
    });
    if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount anything";
    EXPECT_EQ(result, InPrivate::done);
}

}  // namespace
}  // namespace velto
