// What was in the trash for longer than the user wants to keep it.

#include "TrashFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;

struct TrashPurgeTest : RefusingTrashTest {
    /// An item that was moved in that many seconds before the present.
    TrashItem aged(const std::string& name, double seconds) {
        const double now = clock.time;
        clock.time = now - seconds;
        const TrashItem item = refusing.moveToTrash({file(name)}, "wind").items.at(0);
        clock.time = now;
        return item;
    }
};

TEST_F(TrashPurgeTest, AnItemIsKeptToTheVeryLastSecond) {
    const TrashItem kept = aged("kept", 30 * 86400.0);
    const TrashItem expired = aged("expired", 30 * 86400.0 + 1);
    const TrashItem young = aged("young", 0);
    refusing.purgeExpired(30);
    EXPECT_THAT(refusing.items(), ElementsAre(kept, young));
    EXPECT_EQ(read(stored(kept)), "content");
    EXPECT_FALSE(exists(operationFolder(expired.opID)));
    EXPECT_EQ(readByOthers().items, refusing.items());
}

TEST_F(TrashPurgeTest, AnItemMayHaveFewerDaysOfItsOwnAndNeverMore) {
    const TrashItem short_ = aged("short", 3 * 86400.0 + 1);
    const TrashItem exact = aged("exact", 3 * 86400.0);
    const TrashItem other = aged("other", 5 * 86400.0);
    const TrashItem longer = aged("longer", 30 * 86400.0 + 1);
    refusing.purgeExpired(30, [&](const TrashItem& item) -> std::int64_t {
        if (item.id == other.id) return 30;
        return item.id == longer.id ? 400 : 3;
    });
    EXPECT_THAT(refusing.items(), ElementsAre(exact, other));
    EXPECT_FALSE(exists(operationFolder(short_.opID)));
}

TEST_F(TrashPurgeTest, WhatWasFreedIsTheUnroundedSumOfWhatTheDiskCounts) {
    aged("a", 2_days);
    aged("b", 2_days);
    files.bytes = 1'234'567'890;
    EXPECT_DOUBLE_EQ(refusing.purgeExpired(1), 2.46913578);
    EXPECT_EQ(log.lines().back(), "Velto ▶ purga: 2 elementos, 2.5 GB liberados");
}

TEST_F(TrashPurgeTest, NothingExpiredIsNeitherSavedNorLogged) {
    aged("a", 1_days);
    log.clear();
    // A save would replace the file by another.
    const auto before = process.files.attributes(manifestPath());
    EXPECT_EQ(refusing.purgeExpired(1), 0);
    EXPECT_EQ(process.files.attributes(manifestPath())->identity, before->identity);
    EXPECT_EQ(process.files.attributes(manifestPath())->modified, before->modified);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(TrashPurgeTest, ATrashThatWasNeverUsedStaysUnused) {
    EXPECT_EQ(refusing.purgeExpired(30), 0);
    EXPECT_FALSE(exists(layout.trashFolder));
}

TEST_F(TrashPurgeTest, AVanishedItemIsForgotten) {
    const TrashItem gone = aged("gone", 2_days);
    process.files.removeAll(stored(gone));
    files.bytes = 1'000'000'000;
    EXPECT_EQ(refusing.purgeExpired(1), 0);
    EXPECT_TRUE(refusing.items().empty());
    EXPECT_FALSE(exists(operationFolder(gone.opID)));
    EXPECT_EQ(log.lines().back(), "Velto ▶ purga: 1 elementos, 0.0 GB liberados");
    EXPECT_EQ(readByOthers(), Manifest{});
}

TEST_F(TrashPurgeTest, WhatResistsIsForgottenAndTheRestGoes) {
    const TrashItem resisting = aged("resisting", 2_days);
    const TrashItem other = aged("other", 2_days);
    files.resisting = "-resisting";
    refusing.purgeExpired(1);
    EXPECT_TRUE(refusing.items().empty());
    EXPECT_TRUE(refusing.operations().empty());
    EXPECT_EQ(read(stored(resisting)), "content");
    EXPECT_FALSE(exists(operationFolder(other.opID)));
}

TEST_F(TrashPurgeTest, TheYoungItemsOfAnOperationStay) {
    // Items of one operation have one age; a clock that was set back in between makes two.
    const TrashItem old = aged("old", 5_days);
    const TrashItem young = aged("young", 0);
    Manifest mixed = readByOthers();
    for (TrashItem& item : mixed.items)
        item.opID = old.opID;
    mixed.operations = {{.id = old.opID, .ts = 1, .gb = 0, .items = mixed.items, .kind = "wind"}};
    std::filesystem::rename(stored(young), operationFolder(old.opID) + "/" + young.id + "-young");
    write(manifestPath(), encodeManifest(mixed));
    refusing.purgeExpired(1);
    ASSERT_EQ(refusing.operations().size(), 1u);
    EXPECT_THAT(refusing.operations()[0].items, ElementsAre(mixed.items[1]));
    EXPECT_THAT(refusing.items(), ElementsAre(mixed.items[1]));
    EXPECT_EQ(process.files.list(operationFolder(old.opID)).size(), 1u);
}

TEST_F(TrashPurgeTest, NoRetentionAtAllTakesWhatIsOlderThanThisInstant) {
    const TrashItem now = aged("now", 0);
    aged("before", 0.5);
    refusing.purgeExpired(0);
    EXPECT_THAT(refusing.items(), ElementsAre(now));
}

TEST_F(TrashPurgeTest, ATrashOutOfReachIsLeftToTheNextPurge) {
    aged("a", 2_days);
    struct Unreachable final : PosixFileManager {
        std::unique_ptr<FileLock> lock(const std::string& path, bool) override {
            throw FileError("lock", path, EACCES);
        }
    } unreachable;
    VeltoTrashService other(unreachable, unreachable, clock, log, layout);
    EXPECT_EQ(other.purgeExpired(1), 0);
    EXPECT_EQ(readByOthers().items.size(), 1u);
}

}  // namespace
}  // namespace velto
