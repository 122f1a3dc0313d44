#include "platform/linux/mount_table.h"

#include <gtest/gtest.h>

#include <string>

namespace velto {
namespace {

// Lines of the form that proc_pid_mountinfo(5) describes; a stick whose name has a blank.
const std::string table =
    "23 28 0:21 / /proc rw,nosuid,nodev,noexec,relatime shared:12 - proc proc rw\n"
    "28 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw,errors=remount-ro\n"
    "97 28 8:2 /home/ana/Documents /home/ana/chroot/home rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
    "98 28 8:17 / /home/ana/My\\040stick rw,nosuid,nodev - vfat /dev/sdb1 rw,fmask=0022\n";

bool holds(std::string_view path) { return holdsMount(mountsIn(table).value(), path); }

TEST(MountTable, WhatIsMountedAtAPathOrBelowItIsFound) {
    EXPECT_TRUE(holds("/home/ana/chroot"));
    EXPECT_TRUE(holds("/home/ana/chroot/home"));
    EXPECT_TRUE(holds("/home/ana"));
}

TEST(MountTable, WhatIsMountedBesideOrAboveIsNot) {
    EXPECT_FALSE(holds("/home/ana/chroot/home/letters"));
    EXPECT_FALSE(holds("/home/ana/chroot/ho"));
    EXPECT_FALSE(holds("/home/ana/Documents"));
}

TEST(MountTable, EscapedCharactersAreThemselves) {
    EXPECT_TRUE(holds("/home/ana/My stick"));
    EXPECT_FALSE(holds("/home/ana/My\\040stick"));
}

TEST(MountTable, EveryFieldIsToldWhateverItsNumberOfTags) {
    const auto mounts = mountsIn(table).value();
    ASSERT_EQ(mounts.size(), 4U);
    EXPECT_EQ(mounts[2].number, 97U);
    EXPECT_EQ(mounts[2].device, "8:2");
    EXPECT_EQ(mounts[2].root, "/home/ana/Documents");
    EXPECT_EQ(mounts[2].type, "ext4");
    EXPECT_EQ(mounts[3].type, "vfat");
    EXPECT_EQ(mounts[3].source, "/dev/sdb1");
}

TEST(MountTable, ALineThatCannotBeReadMayBeAnything) {
    EXPECT_FALSE(mountsIn(table + "99 28 8:17\n"));
    EXPECT_FALSE(mountsIn(table + "99 28 8:17 / home rw - ext4 /dev/sda2 rw\n"));
}

TEST(MountTable, AnEmptyTableHoldsNothing) {
    EXPECT_FALSE(holdsMount(mountsIn("").value(), "/home/ana"));
}

TEST(MountTable, ThisProcessSeesARoot) {
    const auto mounts = systemMounts();
    ASSERT_TRUE(mounts);
    EXPECT_TRUE(holdsMount(*mounts, "/proc"));
}

}  // namespace
}  // namespace velto
