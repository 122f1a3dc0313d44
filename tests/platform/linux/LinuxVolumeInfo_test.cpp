#include "platform/linux/LinuxVolumeInfo.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include "support/TempHome.h"

namespace velto {
namespace {

TEST(LinuxVolumeInfo, TheDiskHasTheSizeThatTheSystemReports) {
    TempHome home;
    struct statvfs figures {};
    ASSERT_EQ(statvfs(home.path().c_str(), &figures), 0);
    const LinuxVolumeInfo volumes;
    const auto total = volumes.totalCapacity(home.path());
    ASSERT_TRUE(total);
    EXPECT_EQ(*total, static_cast<std::int64_t>(figures.f_blocks * figures.f_frsize));
    const auto available = volumes.availableCapacity(home.path());
    ASSERT_TRUE(available);
    EXPECT_GE(*available, 0);
    // What is kept for the administrator is not offered to the user.
    EXPECT_LE(*available, static_cast<std::int64_t>(figures.f_bfree * figures.f_frsize) +
                              1'000'000'000);  // others may free space meanwhile
    EXPECT_LE(*available, *total);
}

TEST(LinuxVolumeInfo, AMissingPathAndAVolumeWithoutBlocksHaveNoFigures) {
    const LinuxVolumeInfo volumes;
    EXPECT_FALSE(volumes.totalCapacity("/nowhere/at/all"));
    EXPECT_FALSE(volumes.availableCapacity("/nowhere/at/all"));
    EXPECT_FALSE(volumes.totalCapacity("/proc"));
    EXPECT_FALSE(volumes.availableCapacity("/proc"));
}

TEST(LinuxVolumeInfo, WhatIsKeptForTheAdministratorIsNoPartOfWhatIsAvailable) {
    TempHome home;
    struct statvfs figures {};
    ASSERT_EQ(statvfs(home.path().c_str(), &figures), 0);
    const auto kept = LinuxVolumeInfo().reservedCapacity(home.path());
    EXPECT_EQ(kept.value_or(0),
              static_cast<std::int64_t>((figures.f_bfree - figures.f_bavail) * figures.f_frsize));
    EXPECT_FALSE(LinuxVolumeInfo().reservedCapacity("/nowhere/at/all"));
}

TEST(LinuxVolumeInfo, VolumesWithoutBlocksAreNotToldOf) {
    for (const MountedVolume& volume : LinuxVolumeInfo().volumesBelow("/"))
        EXPECT_FALSE(volume.path.starts_with("/proc")) << volume.path;
}

}  // namespace
}  // namespace velto
