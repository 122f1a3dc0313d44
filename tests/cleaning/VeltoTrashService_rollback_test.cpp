// A move that fails in the middle: everything goes back.

#include "TrashFixture.h"

namespace velto {
namespace {

struct TrashRollbackTest : RefusingTrashTest {
    /// What the trash folder holds besides the manifest.
    std::vector<std::string> operationFolders() const {
        std::vector<std::string> names;
        if (!exists(layout.trashFolder)) return names;
        for (const std::string& name : files.list(layout.trashFolder)) {
            if (name != "manifest.json") names.push_back(name);
        }
        return names;
    }
};

TEST_F(TrashRollbackTest, WhatWasMovedBeforeGoesBackAndTheErrorOfTheMoveIsThrown) {
    const std::vector<std::string> paths{file("a", "of a"), folder("b"), file("bad", "of bad"),
                                         file("c", "of c")};
    files.refused = "-bad";
    EXPECT_EQ(failure([&] { refusing.moveToTrash(paths, "wind"); }), EBUSY);
    EXPECT_EQ(home.read("a"), "of a");
    EXPECT_EQ(home.read("b/inside"), "inside");
    EXPECT_EQ(home.read("bad"), "of bad");
    EXPECT_EQ(home.read("c"), "of c");
    EXPECT_TRUE(operationFolders().empty());
    EXPECT_TRUE(refusing.items().empty());
    EXPECT_TRUE(refusing.operations().empty());
    EXPECT_FALSE(exists(manifestPath())) << "the manifest is not changed";
    EXPECT_TRUE(log.lines().empty());
    EXPECT_FALSE(exists(layout.trashFolder + ".journal"));
}

TEST_F(TrashRollbackTest, TheManifestIsNotTouched) {
    refusing.moveToTrash({file("before")}, "wind");
    const std::string text = manifest();
    const std::vector<TrashItem> items = refusing.items();
    files.refused = "-bad";
    EXPECT_EQ(failure([&] { refusing.moveToTrash({file("a"), file("bad")}, "wind"); }), EBUSY);
    EXPECT_EQ(manifest(), text);
    EXPECT_EQ(refusing.items(), items);
    files.refused = "";
    EXPECT_EQ(refusing.moveToTrash({file("a"), file("bad")}, "wind").items.size(), 2u);
}

TEST_F(TrashRollbackTest, WhatCannotGoBackIsListed) {
    const std::string taken = file("Downloads/taken", "first");
    // Somebody takes the place while the move is under way.
    struct Files final : PosixFileManager {
        bool moveAtOnce(const FolderHandle& from, const std::string& name, const FolderHandle& to,
                        const std::string& newName) override {
            if (newName.ends_with("-bad")) {
                PosixFileManager::writeAtomically(place, "second");
                throw FileError("move", name, EIO);
            }
            return PosixFileManager::moveAtOnce(from, name, to, newName);
        }
        std::string place;
    } interfering;
    interfering.place = taken;
    VeltoTrashService interfered(interfering, interfering, clock, log, layout);
    const std::vector<std::string> paths{file("a"), taken, file("bad"), file("z")};
    const VeltoTrashService::KnownSizes sizes{{paths[0], 5}, {taken, 2}, {paths[3], 7}};
    EXPECT_EQ(failure([&] { interfered.moveToTrash(paths, "wind", sizes); }), EIO);

    EXPECT_EQ(home.read("a"), "content");
    EXPECT_EQ(home.read("bad"), "content");
    EXPECT_EQ(read(taken), "second") << "nothing is ever replaced";
    ASSERT_EQ(interfered.items().size(), 1u);
    const TrashItem item = interfered.items().front();
    EXPECT_EQ(read(stored(item)), "first");
    ASSERT_EQ(interfered.operations().size(), 1u);
    EXPECT_EQ(interfered.operations().front().gb, 2.0) << "of what is in it, not of the others";
    EXPECT_EQ(readByOthers().items, interfered.items());
    interfered.restore(item.id);
    EXPECT_EQ(home.read("Downloads/taken (restaurado 1)"), "first");
}

TEST_F(TrashRollbackTest, AFolderOfTheOperationThatCannotBeMadeIsTheErrorThrown) {
    write(layout.trashFolder, "a file where the trash should be");
    const std::string path = file("a");
    EXPECT_EQ(failure([&] { refusing.moveToTrash({path}, "wind"); }), ENOTDIR);
    EXPECT_EQ(read(path), "content");
    EXPECT_TRUE(refusing.items().empty());
}

TEST_F(TrashRollbackTest, WithoutAJournalNothingIsTouched) {
    const std::string path = file("a");
    std::filesystem::create_directories(layout.trashFolder + ".journal/in the way");
    EXPECT_NE(failure([&] { refusing.moveToTrash({path}, "wind"); }), 0);
    EXPECT_EQ(read(path), "content");
    EXPECT_TRUE(operationFolders().empty());
}

TEST_F(TrashRollbackTest, AnItemGoesBackIntoTheFolderThatFollowedIt) {
    file("outer/inside/deep", "deep");
    file("outer/beside", "beside");
    const std::vector<std::string> paths{home.path("outer/inside"), home.path("outer"),
                                         file("bad")};
    files.refused = "-bad";
    EXPECT_EQ(failure([&] { refusing.moveToTrash(paths, "wind"); }), EBUSY);
    EXPECT_EQ(home.read("outer/inside/deep"), "deep");
    EXPECT_EQ(home.read("outer/beside"), "beside");
    EXPECT_TRUE(refusing.items().empty());
    EXPECT_TRUE(operationFolders().empty());
}

}  // namespace
}  // namespace velto
