// Deleting for good: one item, or the whole trash.

#include "TrashFixture.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct TrashDeleteTest : RefusingTrashTest {};
struct TrashEmptyTest : RefusingTrashTest {};

TEST_F(TrashDeleteTest, OneItemGoesAndTheOthersStay) {
    const Operation operation = service.moveToTrash({folder("a"), file("b")}, "wind");
    service.deletePermanently(operation.items[0].id);
    EXPECT_FALSE(exists(stored(operation.items[0])));
    EXPECT_EQ(read(stored(operation.items[1])), "content");
    EXPECT_THAT(service.items(), ElementsAre(operation.items[1]));
    EXPECT_THAT(service.operations().at(0).items, ElementsAre(operation.items[1]));
    EXPECT_EQ(readByOthers(), lists());
    service.deletePermanently(operation.items[1].id);
    EXPECT_EQ(readByOthers(), Manifest{});
    EXPECT_FALSE(exists(operationFolder(operation.id)));
}

TEST_F(TrashDeleteTest, ALinkInTheItemIsRemovedAndNotWhatItLeadsTo) {
    const std::string precious = file("precious/a", "precious");
    folder("doomed");
    link("doomed/link", home.path("precious"));
    const Operation operation = service.moveToTrash({home.path("doomed")}, "wind");
    service.deletePermanently(operation.items[0].id);
    EXPECT_EQ(read(precious), "precious");
}

TEST_F(TrashDeleteTest, AnUnknownItemIsNotFound) {
    trashed("a");
    EXPECT_EQ(refusal([&] { service.deletePermanently("it00000000"); }), Reason::notFound);
    EXPECT_EQ(service.items().size(), 1u);
}

TEST_F(TrashDeleteTest, AVanishedItemIsNotFoundAndStaysListed) {
    const TrashItem item = trashed("a");
    const Manifest before = lists();
    process.files.removeAll(stored(item));
    EXPECT_EQ(refusal([&] { service.deletePermanently(item.id); }), Reason::notFound);
    process.files.removeAll(operationFolder(item.opID));
    EXPECT_EQ(refusal([&] { service.deletePermanently(item.id); }), Reason::notFound);
    EXPECT_EQ(lists(), before);
    EXPECT_EQ(readByOthers(), before);
}

TEST_F(TrashDeleteTest, WhatResistsStaysListedAndTheErrorIsThrown) {
    const Operation operation = refusing.moveToTrash({file("a"), file("b")}, "wind");
    files.resisting = "-a";
    EXPECT_EQ(failure([&] { refusing.deletePermanently(operation.items[0].id); }), EACCES);
    // Others first: what they find must not make them go on with it.
    EXPECT_EQ(readByOthers().items, operation.items);
    EXPECT_EQ(refusing.items(), operation.items);
    EXPECT_EQ(read(stored(operation.items[0])), "content") << "somebody has deleted it later on";
    refusing.restore(operation.items[0].id);
    EXPECT_EQ(home.read("a"), "content");
}

TEST_F(TrashEmptyTest, NothingIsLeftAndTheManifestIsMadeAgain) {
    service.moveToTrash({folder("a"), file("b")}, "wind");
    service.moveToTrash({}, "wind");
    write(layout.trashFolder + "/opOld/it-forgotten", "of a manifest that was lost");
    service.emptyTrash();
    EXPECT_TRUE(service.items().empty());
    EXPECT_TRUE(service.operations().empty());
    EXPECT_THAT(process.files.list(layout.trashFolder), ElementsAre("manifest.json"));
    EXPECT_EQ(manifest(), R"({"items":[],"operations":[]})");
    EXPECT_EQ(service.totalGB(), 0);
}

TEST_F(TrashEmptyTest, HowManyItemsAreDeletedIsTold) {
    service.moveToTrash({folder("a"), file("b")}, "wind");
    service.moveToTrash({file("c")}, "wind");
    std::vector<std::pair<std::size_t, std::size_t>> told;
    service.emptyTrash([&](std::size_t done, std::size_t of) {
        told.emplace_back(done, of);
        std::size_t left = 0;
        for (const std::string& name : process.files.list(layout.trashFolder)) {
            if (name.starts_with("op"))
                left += process.files.list(layout.trashFolder + "/" + name).size();
        }
        EXPECT_EQ(left, of - done) << "after it is gone";
    });
    EXPECT_THAT(told, ElementsAre(testing::Pair(1, 3), testing::Pair(2, 3), testing::Pair(3, 3)));
}

TEST_F(TrashEmptyTest, AnEmptyTrashCanBeEmptied) {
    service.emptyTrash();
    EXPECT_EQ(manifest(), R"({"items":[],"operations":[]})");
    service.emptyTrash();
    EXPECT_EQ(manifest(), R"({"items":[],"operations":[]})");
}

TEST_F(TrashEmptyTest, AFailureLeavesTheListsAsTheyWere) {
    const Operation operation = refusing.moveToTrash({file("a"), file("b")}, "wind");
    const std::string text = manifest();
    files.resisting = "-a";
    EXPECT_EQ(failure([&] { refusing.emptyTrash(); }), EACCES);
    EXPECT_EQ(refusing.items(), operation.items);
    EXPECT_EQ(refusing.operations().size(), 1u);
    EXPECT_EQ(manifest(), text);
    EXPECT_EQ(readByOthers().items, operation.items);
    refusing.undoOperation(operation.id);
    EXPECT_EQ(home.read("a"), "content");
    EXPECT_EQ(home.read("b"), "content");
}

TEST_F(TrashEmptyTest, TheTrashGoesOnWorking) {
    trashed("a");
    service.emptyTrash();
    const TrashItem item = trashed("a", "second");
    service.restore(item.id);
    EXPECT_EQ(home.read("a"), "second");
}

}  // namespace
}  // namespace velto
