// A link stands in each place that the program owns, before it starts. What the link leads to is
// not touched, whatever the user asks for.

#include <gmock/gmock.h>

#include <ostream>

#include "attack/attack_world.h"

namespace velto {
namespace {

struct OwnedPlace {
    const char* name;
    const char* path;  // in the data folder
    const char* target;
};

void PrintTo(const OwnedPlace& place, std::ostream* stream) { *stream << place.name; }

constexpr OwnedPlace places[] = {
    {"trash", "Trash", ""},
    {"manifest", "Trash/manifest.json", "manifest.json"},
    {"journal", "Trash.journal", "manifest.json"},
    {"trash_lock", "Trash.lock", "victim"},
    {"dangling_trash_lock", "Trash.lock", "made by the program"},
    {"history", "history.json", "manifest.json"},
    {"history_lock", "history.json.lock", "victim"},
    {"cloud_index", "cloud.json", "manifest.json"},
    {"cloud_lock", "cloud.json.lock", "victim"},
    {"removing", "Removing", ""},
    {"web_storage", "WebView", ""},
};

class LinkInOwnPlace : public testing::TestWithParam<OwnedPlace> {};

TEST_P(LinkInOwnPlace, LeadsNothingToWhatItLeadsTo) {
    AttackWorld world;
    const std::string one = world.file("Documents/one");
    const std::string two = world.file("Documents/two");
    const std::string three = world.file("Documents/three");
    {
        VeltoTrashService trash(world.files, world.files, world.clock, world.log, world.layout);
        trash.moveToTrash({one}, "wind");
    }
    world.putLink(world.data(GetParam().path), GetParam().target);

    VeltoTrashService trash(world.files, world.files, world.clock, world.log, world.layout);
    HistoryService history(world.files, world.files, world.log, world.layout);
    CloudFolder cloud(world.files, world.files, world.log, world.layout);
    tryTo([&] { history.record(trash.moveToTrash({two}, "wind")); });
    tryTo([&] { cloud.settle(); });
    tryTo([&] { cloud.moveTo({three}); });
    for (const TrashItem& item : std::vector(trash.items()))
        tryTo([&] { trash.restore(item.id); });
    tryTo([&] { history.clear(); });
    world.clock.time += 60 * 86'400;
    tryTo([&] { trash.purgeExpired(30); });
    world.expectOutsideUntouched();
    tryTo([&] { trash.emptyTrash(); });
    world.expectOutsideUntouched();
    // A full reset takes the link at most.
    tryTo([&] { world.files.removeAll(world.layout.dataFolder); });
    world.expectOutsideUntouched();
    EXPECT_FALSE(world.files.exists(world.layout.dataFolder));
}

INSTANTIATE_TEST_SUITE_P(Of, LinkInOwnPlace, testing::ValuesIn(places),
                         [](const auto& place) { return place.param.name; });

struct LinksInTheTrash : testing::Test {
    AttackWorld world;
    VeltoTrashService trash{world.files, world.files, world.clock, world.log, world.layout};

    static int reasonOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const FileError& error) {
            return error.code();
        }
        return 0;
    }
};

TEST_F(LinksInTheTrash, ALinkInTheTrashsPlaceIsRefusedByName) {
    const std::string path = world.file("a");
    world.putLink(world.layout.trashFolder);
    for (const auto& action : std::vector<std::function<void()>>{
             [&] { trash.moveToTrash({path}, "wind"); }, [&] { trash.emptyTrash(); },
             [&] { trash.restore("it00000000"); },
             [&] { trash.deletePermanently("it00000000"); }}) {
        try {
            action();
            ADD_FAILURE() << "not refused";
        } catch (const FileError& error) {
            EXPECT_EQ(error.code(), ELOOP);
            EXPECT_EQ(error.path(), world.layout.trashFolder);
        }
    }
    EXPECT_TRUE(world.files.exists(path));
    world.expectOutsideUntouched();
}

TEST_F(LinksInTheTrash, AnOperationThatIsALinkIsNoOperation) {
    const TrashItem item = trash.moveToTrash({world.file("a")}, "wind").items.front();
    const std::string operation = world.layout.trashFolder + "/" + item.opID;
    world.root.text("outside/" + item.id + "-a", "of others, by that very name");
    world.lookOutside();
    world.putLink(operation);
    EXPECT_THROW(trash.restore(item.id), TrashError);
    EXPECT_THROW(trash.deletePermanently(item.id), TrashError);
    world.clock.time += 60 * 86'400;
    trash.purgeExpired(30);
    trash.emptyTrash();
    EXPECT_FALSE(world.files.exists(operation)) << "the link itself goes";
    world.expectOutsideUntouched();
}

TEST_F(LinksInTheTrash, AnItemThatIsALinkComesBackAndGoesAsTheLinkItIs) {
    for (const bool isDeleted : {false, true}) {
        const TrashItem item = trash.moveToTrash({world.file("a")}, "wind").items.front();
        world.putLink(world.layout.trashFolder + "/" + item.opID + "/" + item.id + "-a");
        if (isDeleted) {
            trash.deletePermanently(item.id);
        } else {
            trash.restore(item.id);
            EXPECT_TRUE(std::filesystem::is_symlink(world.home("a")));
            world.files.removeAll(world.home("a"));
        }
        world.expectOutsideUntouched();
    }
}

TEST_F(LinksInTheTrash, TheDataFolderMayLieElsewhere) {
    // What the user keeps on another disk is reached through the folders above.
    const std::string elsewhere = world.root.folder("other disk");
    std::filesystem::create_directories(
        std::filesystem::path(world.layout.dataFolder).parent_path());
    std::filesystem::create_symlink(elsewhere, world.layout.dataFolder);
    const std::string path = world.file("a");
    trash.undoOperation(trash.moveToTrash({path}, "wind").id);
    EXPECT_TRUE(world.files.exists(path));
}

TEST_F(LinksInTheTrash, APipeInTheLocksPlaceStopsNobody) {
    const std::string path = world.file("a");
    world.files.createFolders(world.layout.dataFolder);
    ASSERT_EQ(mkfifo((world.layout.trashFolder + ".lock").c_str(), 0600), 0);
    EXPECT_EQ(reasonOf([&] { trash.moveToTrash({path}, "wind"); }), EINVAL);
    EXPECT_TRUE(trash.items().empty());
    EXPECT_TRUE(world.files.exists(path));
}

TEST_F(LinksInTheTrash, ALockThatIsNeverReleasedIsToldInTime) {
    const std::string path = world.file("a");
    world.files.createFolders(world.layout.dataFolder);
    const auto held = world.files.lock(world.layout.trashFolder + ".lock", false);
    EXPECT_EQ(reasonOf([&] { trash.moveToTrash({path}, "wind"); }), EWOULDBLOCK);
    EXPECT_TRUE(world.files.exists(path));
}

TEST_F(LinksInTheTrash, TheCloudFolderIsNotReachedThroughALink) {
    const std::string path = world.file("a");
    world.putLink(world.layout.cloudFolder);
    CloudFolder cloud(world.files, world.files, world.log, world.layout);
    EXPECT_THAT(cloud.moveTo({path}).failed, testing::ElementsAre(path));
    EXPECT_THAT(cloud.moveFrom({world.layout.cloudFolder + "/victim"}).moved, testing::IsEmpty());
    world.expectOutsideUntouched();
    EXPECT_TRUE(world.files.exists(path));
}

}  // namespace
}  // namespace velto
