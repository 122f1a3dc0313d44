#include "platform/linux/rotating_disk.h"

#include <gtest/gtest.h>

#include "support/TempHome.h"

namespace velto {
namespace {

/// A made /sys, laid out as sysfs has it (Documentation/ABI/stable/sysfs-block): the folders of
/// devices, those of partitions within, and links to both by number.
struct RotatingDisk : testing::Test {
    TempHome sys;

    /// `folder` below devices, as "pci/sda" or "pci/sda/sda1".
    void device(const std::string& folder, const std::string& number) {
        sys.folder("devices/" + folder);
        sys.folder("dev/block");
        sys.link("dev/block/" + number, "../../devices/" + folder);
    }
    void disk(const std::string& folder, const std::string& number, const std::string& rotational,
              const std::string& driver = "sd") {
        device(folder, number);
        sys.text("devices/" + folder + "/queue/rotational", rotational + "\n");
        sys.folder("drivers/" + driver);
        sys.folder("devices/" + folder + "/device");
        sys.link("devices/" + folder + "/device/driver", sys.path("drivers/" + driver));
    }
    void partition(const std::string& folder, const std::string& number) {
        device(folder, number);
        sys.text("devices/" + folder + "/partition", "1\n");
    }
    void madeOf(const std::string& folder, const std::string& part) {
        const std::string name = part.substr(part.rfind('/') + 1);
        sys.folder("devices/" + folder + "/slaves");
        sys.link("devices/" + folder + "/slaves/" + name, sys.path("devices/" + part));
    }
    bool rotates(unsigned major, unsigned minor) { return diskRotates(sys.path(), major, minor); }
};

TEST_F(RotatingDisk, ADiskSaysItOfItself) {
    disk("pci/sda", "8:0", "1");
    disk("pci/nvme0n1", "259:0", "0", "nvme");
    EXPECT_TRUE(rotates(8, 0));
    EXPECT_FALSE(rotates(259, 0));
}

TEST_F(RotatingDisk, APartitionIsAsItsDisk) {
    disk("pci/sda", "8:0", "1");
    partition("pci/sda/sda1", "8:1");
    disk("pci/sdb", "8:16", "0");
    partition("pci/sdb/sdb1", "8:17");
    EXPECT_TRUE(rotates(8, 1));
    EXPECT_FALSE(rotates(8, 17));
}

TEST_F(RotatingDisk, EncryptionAndVolumesAreAsWhatTheyAreMadeOf) {
    disk("pci/sda", "8:0", "1");
    partition("pci/sda/sda2", "8:2");
    disk("virtual/dm-0", "253:0", "0", "none");
    madeOf("virtual/dm-0", "pci/sda/sda2");
    disk("virtual/dm-1", "253:1", "0", "none");
    madeOf("virtual/dm-1", "virtual/dm-0");
    EXPECT_TRUE(rotates(253, 1));
}

TEST_F(RotatingDisk, OfSeveralDisksOneThatRotatesIsEnough) {
    disk("pci/sda", "8:0", "0");
    disk("pci/sdb", "8:16", "1");
    disk("virtual/md127", "9:127", "0", "none");
    madeOf("virtual/md127", "pci/sda");
    EXPECT_FALSE(rotates(9, 127));
    madeOf("virtual/md127", "pci/sdb");
    EXPECT_TRUE(rotates(9, 127));
}

TEST_F(RotatingDisk, AVirtualDiskThatAlwaysSaysItIsNotBelieved) {
    disk("pci/virtio0/vda", "254:0", "1", "virtio_blk");
    partition("pci/virtio0/vda/vda1", "254:1");
    EXPECT_FALSE(rotates(254, 0));
    EXPECT_FALSE(rotates(254, 1));
}

TEST_F(RotatingDisk, WhatCannotBeToldDoesNotRotate) {
    EXPECT_FALSE(rotates(8, 0));
    device("virtual/odd", "8:1");
    EXPECT_FALSE(rotates(8, 1));
    madeOf("virtual/odd", "virtual/odd");
    EXPECT_FALSE(rotates(8, 1)) << "made of itself";
}

}  // namespace
}  // namespace velto
