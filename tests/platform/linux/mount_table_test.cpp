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

std::vector<std::string> othersBelow(const std::string& lines, std::string_view folder) {
    std::vector<std::string> places;
    for (const Mount& mount : otherVolumesBelow(mountsIn(lines).value(), folder))
        places.push_back(mount.place);
    return places;
}

TEST(MountTable, OtherVolumesBelowAFolderAreThoseStoredElsewhere) {
    EXPECT_EQ(othersBelow(table, "/home/ana"), (std::vector<std::string>{"/home/ana/My stick"}));
    EXPECT_TRUE(othersBelow(table, "/home/an").empty());
    EXPECT_TRUE(othersBelow(table, "/home/ana/chroot").empty());
}

TEST(MountTable, AHomeOnAVolumeOfItsOwnIsComparedWithThat) {
    const std::string own = table +
                            "99 28 0:40 /@home /home rw - btrfs /dev/sda3 rw\n"
                            "100 99 0:40 /@cache /home/ana/.cache rw - btrfs /dev/sda3 rw\n";
    EXPECT_EQ(othersBelow(own, "/home/ana"),
              (std::vector<std::string>{"/home/ana/My stick", "/home/ana/chroot/home"}));
}

TEST(MountTable, OfSeveralAtOnePlaceTheLastOneCounts) {
    const std::string over = table + "99 98 8:2 /x /home/ana/My\\040stick rw - ext4 /dev/sda2 rw\n";
    EXPECT_TRUE(othersBelow(over, "/home/ana").empty());
}

TEST(MountTable, NetworksAndProgramsAreNotWaitedFor) {
    for (const char* type : {"nfs4", "cifs", "fuse.sshfs", "fuse", "autofs"})
        EXPECT_TRUE(mayWait({.type = type})) << type;
    for (const char* type : {"ext4", "vfat", "fuseblk", "btrfs", "tmpfs"})
        EXPECT_FALSE(mayWait({.type = type})) << type;
    const std::vector<Mount> mounts{{.place = "/", .type = "ext4"},
                                    {.place = "/home/ana/nas", .type = "nfs4"},
                                    {.place = "/home/ana/nas/x", .type = "ext4"}};
    EXPECT_TRUE(mayWait(mounts, "/home/ana/nas/x")) << "the way to it leads through the network";
    EXPECT_FALSE(mayWait(mounts, "/home/ana/nasal"));
}

}  // namespace
}  // namespace velto
