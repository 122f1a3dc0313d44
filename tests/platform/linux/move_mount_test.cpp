// Moves where volumes are mounted inside one another, and onto a volume that is full. The volumes
// are real ones, mounted for the test alone.

#include <sys/statvfs.h>

#include "platform/posix/MoveWorld.h"
#include "support/linux/private_mounts.h"

namespace velto {
namespace {

class MoveAcrossMounts : public testing::Test, protected MoveWorld {
protected:
    MoveAcrossMounts() : MoveWorld(buildVolume(), buildVolume()) {}

    template <typename Action>
    static void expectInPrivate(Action action) {
        const InPrivate result = withPrivateMounts(action);
        if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount anything";
        EXPECT_EQ(result, InPrivate::done);
    }

    /// A volume at the target, of at most that size.
    bool mountTarget(const char* size) { return mountMemory(target.path(), size) && openAgain(); }

    /// What was opened before does not see the new mounts.
    bool openAgain() {
        from = files.openFolder(source.path(), FolderPath::withoutLinks);
        to = files.openFolder(target.path(), FolderPath::withoutLinks);
        return true;
    }
};

using MoveToAFullDisk = MoveAcrossMounts;

TEST_F(MoveAcrossMounts, AFolderWithADiskInsideStaysWholeAndSoDoesTheDisk) {
    expectInPrivate([&] {
        source.text("item/a/file", "content");
        source.folder("item/disk");
        if (!mountMemory(source.path("item/disk")) || !mountTarget("")) return false;
        source.text("item/disk/photo", "kept");
        EXPECT_EQ(move(), EXDEV);
        EXPECT_TRUE(isOnlyAtSource());
        EXPECT_EQ(source.read("item/a/file"), "content");
        EXPECT_EQ(source.read("item/disk/photo"), "kept");
        EXPECT_EQ(settle(), MoveState::atSource);
        return true;
    });
}

TEST_F(MoveAcrossMounts, ADiskItselfIsNoItem) {
    expectInPrivate([&] {
        source.folder("item");
        if (!mountMemory(source.path("item"))) return false;
        openAgain();
        source.text("item/photo", "kept");
        EXPECT_EQ(move(), EBUSY);
        EXPECT_NE(reasonOf([&] { files.moveAtOnce(*from, "item", *to, "moved"); }), 0);
        EXPECT_TRUE(isOnlyAtSource());
        EXPECT_EQ(source.read("item/photo"), "kept");
        return true;
    });
}

TEST_F(MoveAcrossMounts, AFolderThatIsBoundInsideIsNeitherCopiedNorEmptied) {
    expectInPrivate([&] {
        source.text("item/a/file", "content");
        source.folder("item/bound");
        source.text("Projects/thesis", "kept");
        if (!bindTo(source.path("Projects"), source.path("item/bound")) || !mountTarget("")) {
            return false;
        }
        EXPECT_EQ(move(), EXDEV);
        EXPECT_EQ(names(), (std::set<std::string>{"source/Projects", "source/item"}));
        EXPECT_EQ(source.read("item/a/file"), "content");
        EXPECT_EQ(source.read("Projects/thesis"), "kept");
        EXPECT_EQ(settle(), MoveState::atSource);
        return true;
    });
}

TEST_F(MoveAcrossMounts, AFolderThatIsBoundToItsPlaceIsNoItem) {
    expectInPrivate([&] {
        source.folder("item");
        source.text("Projects/thesis", "kept");
        if (!bindTo(source.path("Projects"), source.path("item"))) return false;
        openAgain();
        EXPECT_EQ(move(), EBUSY);
        EXPECT_EQ(names(), (std::set<std::string>{"source/Projects", "source/item"}));
        EXPECT_EQ(source.read("Projects/thesis"), "kept");
        return true;
    });
}

TEST_F(MoveAcrossMounts, ASubvolumeMovesToAnotherVolumeWithThoseInside) {
    expectInPrivate([&] {
        source.folder("disk");
        if (!mountBtrfs(source.path("disk")) || !makeSubvolume(source.path("disk/item")) ||
            !makeSubvolume(source.path("disk/item/inner"))) {
            return false;
        }
        source.text("disk/item/inner/file", "content");
        from = files.openFolder(source.path("disk"), FolderPath::withoutLinks);
        EXPECT_EQ(move(), 0);
        EXPECT_EQ(target.read("moved/inner/file"), "content");
        EXPECT_FALSE(source.exists("disk/item"));
        return true;
    });
}

TEST_F(MoveAcrossMounts, AFileThatShowsThroughAnOverlayMoves) {
    expectInPrivate([&] {
        source.text("item", "content");
        const TempHome changes;
        if (!layOverlay(source.path(), changes.path()) || !mountTarget("")) return false;
        EXPECT_EQ(move(), 0);
        EXPECT_EQ(target.read("moved"), "content");
        EXPECT_FALSE(source.exists("item"));
        return true;
    });
}

TEST_F(MoveAcrossMounts, AFolderThatAnOverlayCannotRenameStaysWhole) {
    // Without "redirect_dir" the overlay refuses to rename it, so it cannot be put aside.
    expectInPrivate([&] {
        source.text("item/a/file", "content");
        const TempHome changes;
        if (!layOverlay(source.path(), changes.path()) || !mountTarget("")) return false;
        const int reason = move();
        EXPECT_TRUE(reason == ENOTSUP || reason == 0) << reason;
        const std::string left =
            reason == 0 ? target.read("moved/a/file") : source.read("item/a/file");
        EXPECT_EQ(left, "content");
        EXPECT_EQ(source.exists("item"), reason != 0);
        EXPECT_EQ(target.exists("moved"), reason == 0);
        return true;
    });
}

TEST_F(MoveAcrossMounts, AFolderMovesFromADiskThatIsMountedInsideTheHome) {
    expectInPrivate([&] {
        source.folder("disk");
        if (!mountMemory(source.path("disk"))) return false;
        source.text("disk/item/file", "content");
        from = files.openFolder(source.path("disk"), FolderPath::withoutLinks);
        EXPECT_EQ(move(), 0);
        EXPECT_EQ(target.read("moved/file"), "content");
        EXPECT_FALSE(source.exists("disk/item"));
        EXPECT_EQ(moveBack(), 0);
        EXPECT_EQ(source.read("disk/item/file"), "content");
        return true;
    });
}

TEST_F(MoveToAFullDisk, AFileThatDoesNotFitStaysAndNothingOfItIsLeftThere) {
    expectInPrivate([&] {
        if (!mountTarget("256k")) return false;
        source.file("item", 1'000'000);
        const std::string text = treeText(source.path("item"));
        EXPECT_EQ(move(), ENOSPC);
        EXPECT_TRUE(isOnlyAtSource());
        EXPECT_EQ(treeText(source.path("item")), text);
        struct statvfs volume {};
        EXPECT_EQ(statvfs(target.path().c_str(), &volume), 0);
        EXPECT_EQ(volume.f_bfree, volume.f_blocks) << "the copy still takes up space";
        return true;
    });
}

TEST_F(MoveToAFullDisk, AFolderThatFitsInPartStaysWhole) {
    expectInPrivate([&] {
        if (!mountTarget("512k")) return false;
        for (int number = 0; number < 20; ++number)
            source.file("item/folder/" + std::to_string(number), 60'000);
        const std::string text = treeText(source.path("item"));
        EXPECT_EQ(move(), ENOSPC);
        EXPECT_TRUE(isOnlyAtSource());
        EXPECT_EQ(treeText(source.path("item")), text);
        EXPECT_EQ(settle(), MoveState::atSource);
        return true;
    });
}

TEST_F(MoveToAFullDisk, WhereNotEvenANameFitsTheItemStays) {
    expectInPrivate([&] {
        if (!mountTarget("64k,nr_inodes=2")) return false;
        source.text("item/file", "content");
        target.text("the last name", "");
        EXPECT_EQ(move(), ENOSPC);
        EXPECT_EQ(source.read("item/file"), "content");
        EXPECT_FALSE(target.exists("moved"));
        return true;
    });
}

}  // namespace
}  // namespace velto
