// How long caches stay that the unattended pass has taken, and what they come to.

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "maintenance/MaintenanceRun.h"
#include "maintenance/MaintenanceStatus.h"
#include "maintenance/TakenItems.h"
#include "maintenance/holdings.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int64_t set = 2 * 60'000'000;  // bytes of the caches of one day

struct CacheRetentionTest : testing::Test {
    CacheRetentionTest() { machine.home.folder("Library/Application Support"); }

    void fillCaches() {
        machine.home.sparse("Library/Caches/com.example.One/data", set / 2);
        machine.home.sparse("Library/Caches/com.example.Two/data", set / 2);
    }

    void oldDownload() {
        const auto then = static_cast<std::int64_t>(machine.clock.time - 500 * secondsPerDay);
        machine.home.sparse("Downloads/film.mkv", 90'000'000).dated(then, then);
    }

    void pass() {
        const AppLanguage language(settings);
        MaintenanceScheduler scheduler(machine.platform);
        MaintenanceRun(machine.platform, settings, language, trash, scheduler).perform({});
    }

    std::vector<HeldItem> held() {
        const TakenItems taken(*machine.platform.files, machine.platform.layout);
        return heldItems(trash.items(), trash.operations(), {}, taken);
    }

    /// Bytes of all that is not small below the home, the trash with it, by its files.
    std::int64_t usedSpace() {
        std::int64_t bytes = 0;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(machine.home.path())) {
            if (!entry.is_regular_file()) continue;
            const auto length = static_cast<std::int64_t>(entry.file_size());
            if (length >= 1'000'000) bytes += length;
        }
        return bytes;
    }

    /// Bytes in the trash at the end of each day, when the caches are made again every day.
    std::vector<std::int64_t> daily(int days) {
        std::vector<std::int64_t> bytes;
        for (int passed = 0; passed < days; ++passed) {
            fillCaches();
            const std::int64_t before = usedSpace();
            pass();
            used.push_back(usedSpace());
            EXPECT_LE(used.back(), before) << "the pass of day " << passed << " takes free space";
            bytes.push_back(holdings(held(), keptFor(settings)).bytes);
            machine.clock.time += secondsPerDay;
        }
        return bytes;
    }

    static constexpr double secondsPerDay = 86400;
    std::vector<std::int64_t> used;  // bytes at the end of each day, the free space's counterpart
    TestPlatform machine;
    VeltoSettings settings{machine.defaults, machine.locale};
    VeltoTrashService trash{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
};

TEST_F(CacheRetentionTest, ThirtyDaysOfCachesNeverHoldMoreThanFourSets) {
    settings.setCacheDays(3);
    const auto bytes = daily(30);
    EXPECT_EQ(std::ranges::max(bytes), 4 * set);
    // Once the first ones go, each pass gives back as much as it takes.
    for (std::size_t day = 4; day < bytes.size(); ++day) {
        EXPECT_LE(bytes[day], bytes[day - 1]) << "day " << day;
        EXPECT_LE(used[day], used[day - 1]) << "day " << day;
    }
    EXPECT_EQ(std::ranges::max(used), 4 * set);
}

TEST_F(CacheRetentionTest, WithoutAnAnswerTheyStayAsLongAsEverythingAndAreForetold) {
    settings.setRetention(10);
    const auto bytes = daily(15);
    const auto choices = foretold(set, settings.retention(), settings.frequency());
    ASSERT_EQ(choices.front().days, 0);
    EXPECT_EQ(std::ranges::max(bytes), choices.front().bytes);
    EXPECT_EQ(choices.front().bytes, 11 * set);
    EXPECT_EQ(choices.back().bytes, 2 * set) << "one day";
}

TEST_F(CacheRetentionTest, OnlyCachesAreGivenBackEarlier) {
    settings.setCacheDays(1);
    oldDownload();
    fillCaches();
    pass();
    ASSERT_THAT(held(), SizeIs(3));
    // What the user has moved there by hand is no concern of the maintenance.
    machine.home.text("Library/Caches/mine/data", "x");
    trash.moveToTrash({machine.home.path("Library/Caches/mine")}, "wind");
    machine.clock.time += 2 * secondsPerDay;
    pass();
    std::vector<std::string> names;
    for (const TrashItem& item : trash.items())
        names.push_back(item.name);
    EXPECT_THAT(names, ElementsAre("film.mkv", "mine"));
}

TEST_F(CacheRetentionTest, AChangedAnswerCountsForWhatIsThereAlready) {
    fillCaches();
    pass();
    machine.clock.time += 2 * secondsPerDay;
    settings.setCacheDays(1);
    pass();
    EXPECT_THAT(trash.items(), IsEmpty());
}

TEST_F(CacheRetentionTest, TheHoldingsTellFromWhenOnTheyAreGivenBack) {
    settings.setCacheDays(3);
    const double first = machine.clock.time;
    oldDownload();
    fillCaches();
    pass();
    machine.clock.time += secondsPerDay;
    fillCaches();
    pass();
    const Holdings all = holdings(held(), keptFor(settings));
    EXPECT_EQ(all.items, 5);
    EXPECT_EQ(all.days.size(), 4u) << "the film stays as long as everything";
    EXPECT_EQ(all.days.begin()->second, 3);
    EXPECT_EQ(all.bytes, 2 * set + 90'000'000);
    using Return = Holdings::Return;
    EXPECT_THAT(all.returns, ElementsAre(Return{first + 3 * secondsPerDay, 2, set},
                                         Return{first + 4 * secondsPerDay, 2, set},
                                         Return{first + 30 * secondsPerDay, 1, 90'000'000}));
}

TEST(KeptForTest, CachesNeverStayLongerThanEverything) {
    EXPECT_EQ((KeptFor{.retention = 30, .cacheDays = std::nullopt}).days("caches"), 30);
    EXPECT_EQ((KeptFor{.retention = 30, .cacheDays = 3}).days("caches"), 3);
    EXPECT_EQ((KeptFor{.retention = 2, .cacheDays = 7}).days("caches"), 2);
    EXPECT_EQ((KeptFor{.retention = 30, .cacheDays = 3}).days("duplicates"), 30);
    EXPECT_EQ((KeptFor{.retention = 30, .cacheDays = 3}).days(""), 30);
}

TEST(ForetoldBytes, GrowWithTheDaysAndFallWithTheFrequency) {
    EXPECT_EQ(foretoldBytes(100, 30, "daily"), 3100);
    EXPECT_EQ(foretoldBytes(100, 3, "daily"), 400);
    EXPECT_EQ(foretoldBytes(100, 30, "weekends"), 500);
    EXPECT_EQ(foretoldBytes(100, 3, "monthly"), 100);
    EXPECT_EQ(foretoldBytes(0, 30, "daily"), 0);
    EXPECT_GT(foretoldBytes(INT64_MAX, 1'000'000, "daily"), 0);
}

}  // namespace
}  // namespace velto
