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

TEST(MountTable, WhatIsMountedAtAPathOrBelowItIsFound) {
    EXPECT_TRUE(holdsMount(table, "/home/ana/chroot"));
    EXPECT_TRUE(holdsMount(table, "/home/ana/chroot/home"));
    EXPECT_TRUE(holdsMount(table, "/home/ana"));
}

TEST(MountTable, WhatIsMountedBesideOrAboveIsNot) {
    EXPECT_FALSE(holdsMount(table, "/home/ana/chroot/home/letters"));
    EXPECT_FALSE(holdsMount(table, "/home/ana/chroot/ho"));
    EXPECT_FALSE(holdsMount(table, "/home/ana/Documents"));
}

TEST(MountTable, EscapedCharactersAreThemselves) {
    EXPECT_TRUE(holdsMount(table, "/home/ana/My stick"));
    EXPECT_FALSE(holdsMount(table, "/home/ana/My\\040stick"));
}

TEST(MountTable, ALineThatCannotBeReadMayBeAnything) {
    EXPECT_TRUE(holdsMount(table + "99 28 8:17\n", "/home/ana/Documents"));
    EXPECT_TRUE(
        holdsMount(table + "99 28 8:17 / home rw - ext4 /dev/sda2 rw\n", "/home/ana/Documents"));
}

TEST(MountTable, AnEmptyTableHoldsNothing) { EXPECT_FALSE(holdsMount("", "/home/ana")); }

}  // namespace
}  // namespace velto
