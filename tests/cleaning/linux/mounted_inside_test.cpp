// Folders of the user's that stand inside an item of the trash as well, bound there by somebody.

#include "../TrashFixture.h"
#include "support/linux/private_mounts.h"
#include "support/volumes.h"

namespace velto {
namespace {

/// An item that was moved to the trash with a folder bound inside.
class MountedInsideTheTrash : public TrashTest {
protected:
    template <typename Action>
    void withBound(Action action) {
        file("Projects/thesis", "kept");
        file("item/a/first");
        file("item/z/last");
        const InPrivate result = withPrivateMounts([&] {
            if (!bindTo(home.path("Projects"), home.path("item/z"))) return false;
            return action();
        });
        if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount anything";
        EXPECT_EQ(result, InPrivate::done);
        EXPECT_EQ(read(home.path("Projects/thesis")), "kept");
    }
    /// Nothing of it may be gone.
    void expectWhole(const std::string& place) const {
        EXPECT_EQ(read(home.path("Projects/thesis")), "kept");
        EXPECT_EQ(read(place + "/a/first"), "content");
        EXPECT_EQ(read(place + "/z/thesis"), "kept");
    }
};

TEST_F(MountedInsideTheTrash, DeletingTheItemEmptiesNothingAndItCanStillGoBack) {
    withBound([&] {
        const TrashItem item = service.moveToTrash({home.path("item")}, "wind").items.front();
        expectWhole(stored(item));
        EXPECT_THROW(service.deletePermanently(item.id), FileError);
        expectWhole(stored(item));
        service.restore(item.id);
        expectWhole(home.path("item"));
        return true;
    });
}

TEST_F(MountedInsideTheTrash, EmptyingTheTrashEmptiesNothingOfIt) {
    withBound([&] {
        const TrashItem item = service.moveToTrash({home.path("item")}, "wind").items.front();
        EXPECT_THROW(service.emptyTrash(), FileError);
        expectWhole(stored(item));
        return true;
    });
}

TEST_F(MountedInsideTheTrash, ThePurgeEmptiesNothingOfIt) {
    withBound([&] {
        const TrashItem item = service.moveToTrash({home.path("item")}, "wind").items.front();
        clock.time += 100_days;
        EXPECT_EQ(service.purgeExpired(30), 0) << "nothing was freed";
        expectWhole(stored(item));
        EXPECT_EQ(service.items(), std::vector{item}) << "it is still there";
        EXPECT_EQ(readByOthers().items, std::vector{item});
        EXPECT_TRUE(process.log.lines().empty() || !process.log.lines().back().contains("purga"));
        return true;
    });
}

TEST_F(MountedInsideTheTrash, ThePurgeThatWasCutOffForgetsNothingOfIt) {
    withBound([&] {
        const TrashItem item = service.moveToTrash({home.path("item")}, "wind").items.front();
        for (const auto kind :
             {JournalEntry::Kind::purge, JournalEntry::Kind::remove, JournalEntry::Kind::empty}) {
            TrashJournal(process.files, layout)
                .write({.kind = kind, .operation = {}, .itemIDs = {item.id}, .steps = {}});
            EXPECT_EQ(readByOthers().items, std::vector{item});
            expectWhole(stored(item));
        }
        return true;
    });
}

TEST_F(MountedInsideTheTrash, OnAnotherVolumeNothingIsCopiedNorEmptied) {
    if (!areTwoVolumes(home.path(), buildVolume())) GTEST_SKIP() << "all is one volume here";
    withBound([&] {
        const TempHome elsewhere(buildVolume());
        HomeLayout apart = layout;
        apart.dataFolder = elsewhere.path("Velto");
        apart.trashFolder = elsewhere.path("Velto/Trash");
        TrashProcess other{apart, clock};
        EXPECT_THROW(other.service.moveToTrash({home.path("item")}, "wind"), FileError);
        expectWhole(home.path("item"));
        EXPECT_TRUE(other.service.items().empty());
        return true;
    });
}

}  // namespace
}  // namespace velto
