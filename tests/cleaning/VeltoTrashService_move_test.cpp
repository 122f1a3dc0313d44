// Moving into the trash.

#include <cmath>

#include "TrashFixture.h"
#include "support/volumes.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;
using testing::ElementsAre;
using testing::MatchesRegex;

struct TrashMoveTest : TrashTest {};
struct TrashMoveOnARefusingDiskTest : RefusingTrashTest {};

TEST_F(TrashMoveTest, AFileIsMovedWholeIntoTheFolderOfItsOperation) {
    const std::string path = file("Library/Caches/a", "whole content");
    const Operation operation = service.moveToTrash({path}, "wind");
    const TrashItem& item = operation.items.at(0);
    EXPECT_FALSE(exists(path));
    EXPECT_EQ(read(layout.trashFolder + "/" + operation.id + "/" + item.id + "-a"),
              "whole content");
    EXPECT_EQ(layout.trashFolder, home.path("Library/Application Support/Velto/Trash"));
}

TEST_F(TrashMoveTest, TheRecordSaysEverythingThatWasMoved) {
    clock.time = 1'234'567'890.25;
    const std::string one = file("Downloads/one.zip");
    const std::string two = folder("Downloads/two");
    const Operation operation =
        service.moveToTrash({one, two}, "my kind", {{one, 1.24}, {two, 0.31}});

    constexpr const char* hex = "[0-9A-F]";
    const std::string h4 = std::string(hex) + hex + hex + hex;
    EXPECT_THAT(operation.id,
                MatchesRegex("op" + h4 + h4 + "-" + h4 + "-" + h4 + "-" + h4 + "-" + h4 + h4 + h4));
    EXPECT_EQ(operation.id.size(), 38u);
    EXPECT_EQ(operation.ts, clock.time);
    EXPECT_EQ(operation.gb, 1.6) << "1.55, rounded to one decimal";
    EXPECT_EQ(operation.kind, "my kind");
    ASSERT_EQ(operation.items.size(), 2u);
    for (const TrashItem& item : operation.items) {
        EXPECT_THAT(item.id, MatchesRegex("it" + h4 + h4));
        EXPECT_EQ(item.opID, operation.id);
        EXPECT_EQ(item.taken, clock.time);
    }
    EXPECT_NE(operation.items[0].id, operation.items[1].id);
    EXPECT_EQ(operation.items[0].originalPath, one);
    EXPECT_EQ(operation.items[0].name, "one.zip");
    EXPECT_EQ(operation.items[0].gb, 1.24) << "what the caller knows is not rounded";
    EXPECT_EQ(operation.items[1].originalPath, two);
    EXPECT_EQ(operation.items[1].name, "two");

    EXPECT_EQ(service.items(), operation.items);
    EXPECT_THAT(service.operations(), ElementsAre(operation));
    EXPECT_DOUBLE_EQ(service.totalGB(), 1.55);
    EXPECT_EQ(readByOthers(), lists());
}

TEST_F(TrashMoveTest, ItemsAreListedOldestFirstAndOperationsNewestFirst) {
    const Operation first = service.moveToTrash({file("b"), file("a")}, "wind");
    const Operation second = service.moveToTrash({file("c")}, "wind");
    EXPECT_THAT(service.operations(), ElementsAre(second, first));
    EXPECT_THAT(service.items(),
                ElementsAre(first.items.at(0), first.items.at(1), second.items.at(0)));
    EXPECT_EQ(first.items[0].name, "b");
}

TEST_F(TrashMoveTest, ThePathIsKeptAsItWasPassedAndTheNameIsStandardised) {
    file("Downloads/a");
    const std::string spelled = home.path("Documents/.././/Downloads//a/");
    const Operation operation = service.moveToTrash({spelled}, "wind", {{spelled, 7.5}});
    const TrashItem& item = operation.items.at(0);
    EXPECT_EQ(item.originalPath, spelled);
    EXPECT_EQ(item.name, "a");
    EXPECT_EQ(item.gb, 7.5);
    service.restore(item.id);
    EXPECT_EQ(home.read("Downloads/a"), "content");
}

TEST_F(TrashMoveTest, OneBadPathInAListMovesNothingAtAll) {
    const std::string good = file("Downloads/good");
    const std::string bad[] = {home.path("gone"), home.path(), file("Mail"), layout.trashFolder,
                               link("link", "Downloads")};
    trashed("before");
    const Manifest before = lists();
    const std::string text = manifest();
    const std::vector<std::string> lines = process.log.lines();
    for (const std::string& path : bad) {
        EXPECT_TRUE(refusal([&] { service.moveToTrash({good, path}, "wind"); })) << path;
        EXPECT_EQ(read(good), "content") << path;
        EXPECT_EQ(lists(), before);
        EXPECT_EQ(manifest(), text);
    }
    const auto names = process.files.list(layout.trashFolder);
    EXPECT_EQ(names.size(), 2u) << "a folder was made for an operation that never was";
    EXPECT_EQ(process.log.lines(), lines);
}

TEST_F(TrashMoveTest, TheFirstFailingPathDecidesTheError) {
    const std::string gone = home.path("gone");
    const std::string outside = "/etc/hosts";
    EXPECT_EQ(refusal([&] { service.moveToTrash({gone, outside}, "wind"); }), Reason::notFound);
    EXPECT_EQ(refusal([&] { service.moveToTrash({outside, gone}, "wind"); }), Reason::outsideHome);
}

TEST_F(TrashMoveTest, ThePathGivenTwiceIsMovedOnce) {
    const std::string a = file("a");
    const std::string b = file("b");
    const Operation operation = service.moveToTrash({b, a, b, a, b}, "wind");
    ASSERT_EQ(operation.items.size(), 2u);
    EXPECT_EQ(operation.items[0].originalPath, b) << "the first occurrence counts";
    EXPECT_EQ(operation.items[1].originalPath, a);
}

TEST_F(TrashMoveTest, TheSameFileSpelledInTwoWaysGoesBackToItsPlace) {
    const std::string path = file("Downloads/a");
    EXPECT_EQ(refusal([&] {
                  service.moveToTrash({path, home.path("Downloads//a")}, "wind");
              }),
              Reason::notFound);
    EXPECT_EQ(read(path), "content");
    EXPECT_TRUE(service.items().empty());
}

TEST_F(TrashMoveTest, AFolderAndAFileInItGoBackTogether) {
    const std::string outer = folder("Downloads/outer");
    EXPECT_EQ(refusal([&] {
                  service.moveToTrash({outer, outer + "/inside"}, "wind");
              }),
              Reason::notFound);
    EXPECT_EQ(read(outer + "/inside"), "inside");
    EXPECT_TRUE(service.items().empty());
    // The other way round both can be moved, and come back in order.
    const Operation both = service.moveToTrash({outer + "/inside", outer}, "wind");
    EXPECT_EQ(both.items.size(), 2u);
    service.undoOperation(both.id);
    EXPECT_TRUE(exists(outer));
}

TEST_F(TrashMoveTest, AnEmptyListIsRecorded) {
    const Operation operation = service.moveToTrash({}, "wind");
    EXPECT_TRUE(operation.items.empty());
    EXPECT_EQ(operation.gb, 0);
    EXPECT_TRUE(process.files.list(operationFolder(operation.id)).empty());
    EXPECT_THAT(readByOthers().operations, ElementsAre(operation));
    EXPECT_THAT(process.log.lines(),
                ElementsAre("Velto ▶ Papelera de Velto: 0 elementos, 0.0 GB (wind)"));
}

TEST_F(TrashMoveOnARefusingDiskTest, SizesAreRoundedToTenthsOfAGigabyte) {
    constexpr std::pair<std::int64_t, double> sizes[] = {{1'049'999'999, 1.0},
                                                         {1'050'000'000, 1.1},
                                                         {49'999'999, 0.0},
                                                         {50'000'000, 0.1},
                                                         {0, 0.0},
                                                         {123'456'789'012, 123.5}};
    for (const auto& [bytes, gb] : sizes) {
        files.bytes = bytes;
        const Operation operation = refusing.moveToTrash({file("a")}, "wind");
        EXPECT_EQ(operation.items.at(0).gb, gb) << bytes;
        EXPECT_EQ(operation.gb, gb) << bytes;
    }
}

TEST_F(TrashMoveOnARefusingDiskTest, TheSizeThatTheCallerKnowsWins) {
    files.bytes = 5'000'000'000;
    const std::string a = file("a");
    const std::string b = folder("b");
    const Operation operation =
        refusing.moveToTrash({a, b}, "wind", {{b, 12.345}, {home.path("/b"), 99}});
    EXPECT_EQ(operation.items.at(0).gb, 5.0);
    EXPECT_EQ(operation.items.at(1).gb, 12.345);
    EXPECT_EQ(operation.gb, 17.3);
}

TEST_F(TrashMoveTest, AFolderOfUnknownSizeCountsNothing) {
    EXPECT_EQ(service.moveToTrash({folder("a")}, "wind").items.at(0).gb, 0.0);
}

TEST_F(TrashMoveTest, ASizeThatIsNoNumberIsNotRecorded) {
    const std::string path = file("a");
    for (const double unknown : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        const Operation operation = service.moveToTrash({path}, "wind", {{path, unknown}});
        EXPECT_EQ(operation.items.at(0).gb, 0.0);
        EXPECT_EQ(readByOthers(), lists()) << "the manifest cannot be read any more";
        service.undoOperation(operation.id);
    }
}

TEST_F(TrashMoveTest, OneLineIsLogged) {
    const std::string a = file("a");
    const std::string b = file("b");
    service.moveToTrash({a, b}, "deleteFiles", {{a, 1.0}, {b, 0.2}});
    service.moveToTrash({file("c")}, "wind", {{home.path("c"), 12}});
    EXPECT_THAT(process.log.lines(),
                ElementsAre("Velto ▶ Papelera de Velto: 2 elementos, 1.2 GB (deleteFiles)",
                            "Velto ▶ Papelera de Velto: 1 elementos, 12.0 GB (wind)"));
}

TEST_F(TrashMoveTest, NamesOfAllKindsComeBack) {
    const std::string names[] = {"two\nlines",
                                 "\"quoted\" 'twice'",
                                 "back\\slash",
                                 "año – ñandú",
                                 "\u202Ecod.exe",
                                 " ",
                                 "-rf",
                                 "a:b*c?",
                                 std::string(255, 'x'),
                                 "manifest.json",
                                 "é decomposed e\u0301"};
    std::vector<std::string> paths;
    for (const std::string& name : names)
        paths.push_back(file("names/" + name, "of " + name));
    const Operation operation = service.moveToTrash(paths, "wind");
    EXPECT_TRUE(process.files.list(home.path("names")).empty());
    EXPECT_EQ(readByOthers(), lists());
    service.undoOperation(operation.id);
    for (const std::string& name : names) {
        EXPECT_EQ(home.read("names/" + name), "of " + name);
    }
}

TEST_F(TrashMoveTest, ALongNameIsCutBetweenCharactersInTheTrashAndWholeInItsPlace) {
    std::string name;
    while (name.size() < 250)
        name += "ñ";
    const TrashItem item = trashed(name);
    EXPECT_EQ(item.name, name);
    const auto names = process.files.list(operationFolder(item.opID));
    ASSERT_EQ(names.size(), 1u);
    EXPECT_LE(names[0].size(), 255u);
    EXPECT_TRUE(names[0].starts_with(item.id + "-ññ"));
    EXPECT_TRUE(names[0].ends_with("ñ"));
    service.restore(item.id);
    EXPECT_EQ(home.read(name), "content");
}

TEST_F(TrashMoveTest, ANameThatIsNoTextIsMovedAndRestoredLikeAnyOther) {
    if (!takesNamesOfAnyBytes(home.path())) GTEST_SKIP() << "no such names here";
    const std::string path = home.path("bad \xff name");
    write(path, "content");
    service.moveToTrash({path}, "wind");
    EXPECT_FALSE(process.files.exists(path));
    EXPECT_EQ(readByOthers(), lists());
    EXPECT_EQ(service.items().at(0).originalPath, path);
    service.restore(service.items().at(0).id);
    EXPECT_EQ(read(path), "content");
}

TEST_F(TrashMoveTest, ALongNameThatIsNoTextIsCutAndRestoredWhole) {
    if (!takesNamesOfAnyBytes(home.path())) GTEST_SKIP() << "no such names here";
    // With the id before it the cut comes after 244 of its bytes.
    const std::string middle = "\xff日é\xe2\x82\xf0";
    for (std::size_t before = 0; before <= middle.size(); ++before) {
        std::string name = std::string(244 - before, '\xfe') + middle;
        name.resize(255, 'x');
        write(home.path(name), "content");
        service.moveToTrash({home.path(name)}, "wind");
        const TrashItem item = service.items().at(0);
        const auto names = process.files.list(operationFolder(item.opID));
        ASSERT_EQ(names.size(), 1u);
        const std::string& stored = names[0];
        EXPECT_GE(stored.size(), 253u) << "no more is cut than has to be";
        EXPECT_LE(stored.size(), 255u);
        EXPECT_TRUE((item.id + "-" + name).starts_with(stored));
        const std::size_t cut = stored.size() - item.id.size() - 1;
        EXPECT_THAT(cut - (244 - before), testing::Not(testing::AnyOf(2, 3, 5)))
            << "within a character";
        service.restore(item.id);
        EXPECT_EQ(read(home.path(name)), "content");
    }
}

TEST_F(TrashMoveTest, AKindThatIsNoTextDoesNotSpoilTheManifest) {
    service.moveToTrash({file("a")}, "bad \xff kind");
    EXPECT_EQ(readByOthers(), lists());
    EXPECT_EQ(service.operations().at(0).kind, "bad \uFFFD kind");
}

}  // namespace
}  // namespace velto
