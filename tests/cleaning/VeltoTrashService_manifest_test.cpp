// The file that lists the trash: its format, its damages, and others who write it too.

#include <nlohmann/json.hpp>

#include "TrashFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using Reason = TrashError::Reason;
using testing::ElementsAre;

struct TrashManifestTest : TrashTest {};
struct TrashManifestOnARefusingDiskTest : RefusingTrashTest {};

TEST_F(TrashManifestTest, TheFormatIsThisByteForByte) {
    clock.time = 1'700'000'000.5;
    const std::string a = file("a \"quoted\"");
    const Operation operation = service.moveToTrash({a}, "wind", {{a, 1.2}});
    const std::string item =
        R"({"id":")" + operation.items[0].id + R"(","opID":")" + operation.id +
        R"(","originalPath":")" + home.path() +
        R"(/a \"quoted\"","name":"a \"quoted\"","gb":1.2,"taken":1700000000.5})";
    EXPECT_EQ(manifest(), R"({"items":[)" + item + R"(],"operations":[{"id":")" + operation.id +
                              R"(","ts":1700000000.5,"gb":1.2,"items":[)" + item +
                              R"(],"kind":"wind"}]})");
}

TEST_F(TrashManifestTest, WholeNumbersAndUnknownKeysAreRead) {
    write(manifestPath(), R"({"version":2,"items":[{"id":"it1","opID":"op1","originalPath":"/a",
        "name":"a","gb":3,"taken":7,"color":"red"}],"operations":[]})");
    ASSERT_EQ(service.items().size(), 1u);
    EXPECT_EQ(service.items()[0].gb, 3.0);
    EXPECT_EQ(service.items()[0].taken, 7.0);
}

TEST_F(TrashManifestTest, AMissingOrMistypedKeyMakesTheTrashAppearEmpty) {
    trashed("a");
    const json whole = json::parse(manifest());
    const std::vector<std::string> keys{"/items",
                                        "/operations",
                                        "/items/0/id",
                                        "/items/0/opID",
                                        "/items/0/name",
                                        "/items/0/originalPath",
                                        "/items/0/gb",
                                        "/items/0/taken",
                                        "/operations/0/id",
                                        "/operations/0/ts",
                                        "/operations/0/gb",
                                        "/operations/0/items",
                                        "/operations/0/kind"};
    for (const std::string& key : keys) {
        const json::json_pointer place(key);
        json missing = whole;
        missing.at(place.parent_pointer()).erase(place.back());
        json mistyped = whole;
        mistyped.at(place) = true;
        for (const json& damaged : {missing, mistyped}) {
            write(manifestPath(), damaged.dump());
            TrashProcess other(layout, clock);
            EXPECT_TRUE(other.service.items().empty()) << damaged.dump();
            EXPECT_TRUE(other.service.operations().empty()) << damaged.dump();
        }
    }
}

TEST_F(TrashManifestTest, AListThatHoldsAnythingButRecordsIsDamaged) {
    trashed("a");
    const json whole = json::parse(manifest());
    for (const char* list : {"/items", "/operations", "/operations/0/items"}) {
        for (const json& stranger : {json(5), json("it"), json(nullptr), json::array()}) {
            json damaged = whole;
            damaged.at(json::json_pointer(list)).push_back(stranger);
            write(manifestPath(), damaged.dump());
            TrashProcess other(layout, clock);
            EXPECT_TRUE(other.service.items().empty()) << damaged.dump();
        }
    }
}

TEST_F(TrashManifestTest, ADamagedManifestIsOverwrittenByTheNextChangeAndNoFileIsTouched) {
    const TrashItem lost = trashed("lost");
    for (const char* damaged : {"", "{", "[]", "null", "\xff\xfe", "{\"items\":[]}"}) {
        write(manifestPath(), damaged);
        TrashProcess other(layout, clock);
        EXPECT_TRUE(other.service.items().empty()) << damaged;
        EXPECT_EQ(manifest(), damaged) << "reading has written";
        const Operation next = other.service.moveToTrash({file("next")}, "wind");
        EXPECT_EQ(json::parse(manifest()).at("items").size(), 1u) << damaged;
        EXPECT_EQ(read(stored(lost)), "content") << damaged;
    }
}

TEST_F(TrashManifestTest, AManifestThatOthersDamageDoesNotTakeTheListsFromThisProcess) {
    const TrashItem item = trashed("a");
    write(manifestPath(), "{");
    EXPECT_THAT(service.items(), ElementsAre(item));
    const TrashItem next = trashed("b");
    EXPECT_THAT(readByOthers().items, ElementsAre(item, next));
}

TEST_F(TrashManifestTest, AManifestThatIsGoneIsWrittenAgain) {
    const TrashItem item = trashed("a");
    process.files.removeAll(manifestPath());
    EXPECT_THAT(service.items(), ElementsAre(item));
    const TrashItem next = trashed("b");
    EXPECT_THAT(readByOthers().items, ElementsAre(item, next));
}

TEST_F(TrashManifestTest, ATrashThatOthersHaveRemovedIsEmpty) {
    trashed("a");
    process.files.removeAll(layout.trashFolder);
    EXPECT_TRUE(service.items().empty());
    EXPECT_EQ(service.totalGB(), 0);
    const TrashItem next = trashed("b");
    EXPECT_THAT(readByOthers().items, ElementsAre(next));
}

TEST_F(TrashManifestTest, WhatAnotherProcessDoesIsSeenAndNotOverwritten) {
    TrashProcess other(layout, clock);
    const TrashItem mine = trashed("mine");
    EXPECT_THAT(other.service.items(), ElementsAre(mine));
    const TrashItem theirs = other.service.moveToTrash({file("theirs")}, "wind").items.at(0);
    const TrashItem next = trashed("next");
    EXPECT_THAT(service.items(), ElementsAre(mine, theirs, next));
    EXPECT_EQ(readByOthers(), lists());
    other.service.restore(mine.id);
    EXPECT_EQ(refusal([&] { service.restore(mine.id); }), Reason::notFound);
    service.emptyTrash();
    EXPECT_TRUE(other.service.items().empty());
}

TEST_F(TrashManifestTest, AnIdReadOffTheListsCountsWhenOthersHaveChangedThemMeanwhile) {
    service.moveToTrash({file("a")}, "wind");
    TrashProcess other(layout, clock);
    const std::string& id = service.operations().front().id;
    other.service.moveToTrash({file("b")}, "wind");
    service.undoOperation(id);
    EXPECT_EQ(home.read("a"), "content");
    const std::string& itemID = service.items().front().id;
    other.service.moveToTrash({file("c")}, "wind");
    service.restore(itemID);
    EXPECT_EQ(home.read("b"), "content");
    const std::string& doomed = service.items().front().id;
    other.service.moveToTrash({file("d")}, "wind");
    service.deletePermanently(doomed);
    EXPECT_EQ(service.items().size(), 1u);
}

TEST_F(TrashManifestTest, ReadingMakesNothing) {
    EXPECT_TRUE(service.items().empty());
    EXPECT_TRUE(service.operations().empty());
    EXPECT_EQ(service.totalGB(), 0);
    EXPECT_FALSE(exists(layout.dataFolder));
}

TEST_F(TrashManifestOnARefusingDiskTest, WithoutASaveTheListsInMemoryStayInForce) {
    const TrashItem first = refusing.moveToTrash({file("a")}, "wind").items.at(0);
    files.unwritable = "manifest.json";
    const TrashItem second = refusing.moveToTrash({file("b")}, "wind").items.at(0);
    EXPECT_THAT(refusing.items(), ElementsAre(first, second));
    EXPECT_EQ(read(stored(second)), "content");
    // Others learn of it by the journal.
    EXPECT_THAT(readByOthers().items, ElementsAre(first, second));
}

TEST_F(TrashManifestOnARefusingDiskTest, TheNextChangeSavesWhatTheLastOneCouldNot) {
    const Operation both = refusing.moveToTrash({file("a"), file("b")}, "wind");
    files.unwritable = "manifest.json";
    refusing.deletePermanently(both.items[0].id);
    files.unwritable = "";
    refusing.undoOperation(both.id);
    EXPECT_EQ(home.read("b"), "content");
    EXPECT_FALSE(exists(home.path("a")));
    EXPECT_EQ(readByOthers(), Manifest{});
}

TEST_F(TrashManifestOnARefusingDiskTest, WhatCannotBeReadIsNotWrittenOver) {
    const TrashItem first = refusing.moveToTrash({file("a")}, "wind").items.at(0);
    const TrashItem theirs = trashed("theirs");
    files.unreadable = "manifest.json";
    EXPECT_EQ(failure([&] { refusing.moveToTrash({file("b")}, "wind"); }), EIO);
    EXPECT_EQ(home.read("b"), "content");
    EXPECT_EQ(failure([&] { refusing.emptyTrash(); }), EIO);
    EXPECT_EQ(refusing.purgeExpired(-1), 0);
    EXPECT_THAT(readByOthers().items, ElementsAre(first, theirs));
}

struct Tampering {
    const char* what;
    const char* opID;
    const char* id;
    const char* name;
};

struct TamperedTrashTest : TrashTest, testing::WithParamInterface<Tampering> {};

TEST_P(TamperedTrashTest, NothingOutsideTheTrashIsTouched) {
    const std::string precious = file("precious", "precious");
    file("Library/Application Support/Velto/-precious", "precious");
    file("Library/Application Support/Velto/Trash/it-precious", "precious");
    const auto& [what, opID, id, name] = GetParam();
    const TrashItem item{.id = id,
                         .opID = opID,
                         .originalPath = home.path("out"),
                         .name = name,
                         .gb = 1,
                         .taken = 1};
    const Manifest tampered{
        .items = {item},
        .operations = {{.id = opID, .ts = 1, .gb = 1, .items = {item}, .kind = "wind"}}};
    for (int action = 0; action < 4; ++action) {
        write(manifestPath(), encodeManifest(tampered));
        const auto act = [&] {
            if (action == 0) service.restore(item.id);
            if (action == 1) service.undoOperation(item.opID);
            if (action == 2) service.deletePermanently(item.id);
            if (action == 3) service.purgeExpired(1);
        };
        EXPECT_EQ(refusal(act), action == 3 ? std::nullopt : std::optional(Reason::notFound));
        EXPECT_EQ(read(precious), "precious") << action;
        EXPECT_EQ(home.read("Library/Application Support/Velto/-precious"), "precious") << action;
        EXPECT_EQ(home.read("Library/Application Support/Velto/Trash/it-precious"), "precious")
            << action;
        EXPECT_FALSE(exists(home.path("out"))) << action;
    }
}

INSTANTIATE_TEST_SUITE_P(Manifests, TamperedTrashTest,
                         testing::Values(Tampering{"FolderAbove", "../../../..", "", "precious"},
                                         Tampering{"FolderAboveAlone", "..", "", "precious"},
                                         Tampering{"TheTrashItself", ".", "it", "precious"},
                                         Tampering{"NoFolder", "", "it", "precious"},
                                         Tampering{"SlashInTheName", "op1", "it",
                                                   "/../../../precious"},
                                         Tampering{"SlashInTheId", "op1", "../", "precious"},
                                         Tampering{"NothingAtAll", "op1", "", ""}),
                         [](const auto& tampering) { return tampering.param.what; });

}  // namespace
}  // namespace velto
