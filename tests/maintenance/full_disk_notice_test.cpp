#include "maintenance/full_disk_notice.h"

#include <gtest/gtest.h>

#include "maintenance/MaintenanceRun.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

constexpr double aDay = 86400;
constexpr double today = 1000 * aDay;
constexpr std::int64_t gb = 1'000'000'000;

TEST(FullDiskNoticeTest, IsOffUntilItIsAskedFor) {
    EXPECT_FALSE(fullDiskNotice(0, 0, 0, today).isDue);
    EXPECT_FALSE(fullDiskNotice(-5, 0, 0, today).isDue);
}

TEST(FullDiskNoticeTest, ComesBelowTheThresholdOnly) {
    EXPECT_FALSE(fullDiskNotice(10, 10 * gb, 0, today).isDue);
    EXPECT_TRUE(fullDiskNotice(10, 10 * gb - 1, 0, today).isDue);
    EXPECT_FALSE(fullDiskNotice(10, std::nullopt, 0, today).isDue) << "nobody knows";
}

TEST(FullDiskNoticeTest, ADiskThatStaysFullIsToldOfOnceAWeek) {
    EXPECT_FALSE(fullDiskNotice(10, gb, today - 6 * aDay, today).isDue);
    EXPECT_EQ(fullDiskNotice(10, gb, today - 6 * aDay, today).told, today - 6 * aDay);
    EXPECT_TRUE(fullDiskNotice(10, gb, today - 7 * aDay, today).isDue);
    EXPECT_TRUE(fullDiskNotice(10, gb, today + 90 * aDay, today).isDue) << "the clock was set back";
}

TEST(FullDiskNoticeTest, RoomInBetweenMakesItNews) {
    EXPECT_EQ(fullDiskNotice(10, 20 * gb, today - aDay, today).told, 0);
    EXPECT_EQ(fullDiskNotice(10, std::nullopt, today - aDay, today).told, today - aDay);
}

struct FullDiskPass : testing::Test {
    FullDiskPass() { machine.home.folder("Library/Application Support"); }

    void pass() {
        const AppLanguage language(settings);
        MaintenanceScheduler scheduler(machine.platform);
        MaintenanceRun(machine.platform, settings, language, trash, scheduler).perform({});
    }

    TestPlatform machine;
    VeltoSettings settings{machine.defaults, machine.locale};
    VeltoTrashService trash{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
};

TEST_F(FullDiskPass, SaysItBesideWhatItHasDone) {
    machine.volumes.available = 4'250'000'000;
    pass();
    EXPECT_TRUE(machine.notifications.posted.empty()) << "nobody has asked";
    settings.setFullDiskGB(10);
    machine.home.sparse("Library/Caches/com.example.App/data", 60'000'000);
    pass();
    ASSERT_EQ(machine.notifications.posted.size(), 2u);
    EXPECT_EQ(machine.notifications.posted[0].title, "Velto maintenance complete");
    EXPECT_EQ(machine.notifications.posted[1].title, "Your disk is getting full");
    EXPECT_EQ(machine.notifications.posted[1].body,
              "4.3 GB are free. Velto shows what takes up the rest.");
    pass();
    EXPECT_EQ(machine.notifications.posted.size(), 2u) << "said once";
}

TEST_F(FullDiskPass, SpeaksTheUsersLanguage) {
    machine.volumes.available = 4'250'000'000;
    settings.setFullDiskGB(10);
    settings.setLanguage("es");
    pass();
    ASSERT_EQ(machine.notifications.posted.size(), 1u);
    EXPECT_EQ(machine.notifications.posted[0].title, "Queda poco espacio");
    EXPECT_EQ(machine.notifications.posted[0].body,
              "Quedan 4,3 GB libres. Velto muestra qué los ocupa.");
}

}  // namespace
}  // namespace velto
