#include "platform/linux/disk_statistics.h"

#include <gtest/gtest.h>

#include "support/TempHome.h"

namespace velto {
namespace {

/// A laptop with an encrypted system on NVMe, two disks in a mirror, a card and a DVD drive: lines
/// as /proc/diskstats of Linux 6.1 has them (kernels before 5.5 end after fewer columns).
constexpr std::string_view diskstats =
    " 259       0 nvme0n1 183023 41811 12345678 52344 255731 181131 23456789 348871 0 115640 "
    "424421 0 0 0 0 28390 23205\n"
    " 259       1 nvme0n1p1 356 1215 15682 130 2 0 2 2 0 96 133 0 0 0 0 0 0\n"
    " 259       2 nvme0n1p2 182501 40596 12325000 52180 255727 181131 23456787 348868 0 115600 "
    "401049 0 0 0 0 0 0\n"
    " 253       0 dm-0 222904 0 12322768 77612 436858 0 23456776 1124432 0 119128 1202044 0 0 0 0 "
    "0 "
    "0\n"
    "   7       0 loop0 1345 0 2800 240 0 0 0 0 0 260 240 0 0 0 0 0 0\n"
    "   8       0 sda 100 0 2000 5 7 0 3000 4 0 9 9\n"
    "   8      16 sdb 100 0 2000 5 7 0 3000 4 0 9 9\n"
    "   9     127 md127 200 0 2000 0 7 0 3000 0 0 0 0\n"
    " 252       0 zram0 900 0 7200 10 2000 0 16000 20 0 30 30\n"
    " 179       0 mmcblk0 10 0 80 1 0 0 0 0 0 1 1\n"
    "  11       0 sr0 0 0 0 0 0 0 0 0 0 0 0\n"
    " 104       0 cciss/c0d0 1 0 8 1 1 0 16 1 0 1 1\n"
    " 259       5 nvme1c1n1 1 0 4096 1 1 0 4096 1 0 1 1\n";

struct DiskStatistics : testing::Test {
    TempHome sys;
    DiskChoice choice{sys.path()};

    std::vector<std::string> counted(std::string_view text = diskstats) {
        std::vector<std::string> names;
        const auto disks = choice.of(disksIn(text));
        for (const DiskCounters& one : disks.value())
            names.push_back(one.name);
        return names;
    }
    void hardware(const std::string& name) { sys.folder("block/" + name + "/device"); }
};

using Names = std::vector<std::string>;

TEST_F(DiskStatistics, BytesAreSectorsOf512) {
    const auto all = disksIn(diskstats);
    ASSERT_EQ(all.size(), 13u);
    EXPECT_EQ(all[0].name, "nvme0n1");
    EXPECT_EQ(all[0].read, 12345678ull * 512);
    EXPECT_EQ(all[0].written, 23456789ull * 512);
    EXPECT_EQ(all[5].read, 2000u * 512);
    EXPECT_EQ(all[5].written, 3000u * 512);
    EXPECT_TRUE(disksIn("").empty());
    EXPECT_TRUE(disksIn("8 0 sda 1 2\n\n").empty());
}

TEST_F(DiskStatistics, EachByteIsCountedOnceWhereItReachesTheHardware) {
    for (const char* name : {"nvme0n1", "sda", "sdb", "mmcblk0", "sr0", "cciss!c0d0", "nvme1c1n1"})
        hardware(name);
    for (const char* name : {"dm-0", "loop0", "md127", "zram0"})
        sys.folder(std::string("block/") + name);
    sys.folder("block/nvme0n1/nvme0n1p1");
    sys.text("block/nvme1c1n1/hidden", "1\n");
    sys.text("block/sda/hidden", "0\n");
    EXPECT_EQ(counted(), (Names{"nvme0n1", "sda", "sdb", "mmcblk0", "sr0", "cciss/c0d0"}));
}

TEST_F(DiskStatistics, ADiskThatIsPluggedInLaterIsCounted) {
    hardware("sda");
    EXPECT_EQ(counted("8 0 sda 1 0 8 0 0 0 0 0 0 0 0\n"), Names{"sda"});
    hardware("sdb");
    EXPECT_EQ(counted("8 0 sda 1 0 8 0 0 0 0 0 0 0 0\n8 16 sdb 1 0 8 0 0 0 0 0 0 0 0\n"),
              (Names{"sda", "sdb"}));
}

TEST_F(DiskStatistics, WithoutSysfsNothingIsGuessed) {
    EXPECT_FALSE(choice.of(disksIn(diskstats)));
    sys.folder("block");
    EXPECT_TRUE(choice.of(disksIn(diskstats)).value().empty());
}

}  // namespace
}  // namespace velto
