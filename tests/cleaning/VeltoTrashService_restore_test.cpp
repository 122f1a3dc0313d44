// Bringing back: single items, and whole operations.

#include <cerrno>
#include <cstring>

#include "TrashFixture.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct TrashRestoreTest : TrashTest {
    std::vector<std::string> names(const std::string& relative) const {
        return process.files.list(home.path(relative));
    }
};
struct TrashUndoTest : RefusingTrashTest {};

TEST_F(TrashRestoreTest, AnItemComesBackWhereItWas) {
    const TrashItem item = trashed("Documents/deep/a.txt", "whole");
    service.restore(item.id);
    EXPECT_EQ(home.read("Documents/deep/a.txt"), "whole");
    EXPECT_FALSE(exists(stored(item)));
    EXPECT_EQ(readByOthers(), Manifest{});
}

TEST_F(TrashRestoreTest, FoldersThatAreGoneAreMadeAgain) {
    const TrashItem item = trashed("Documents/deep/er/a.txt", "whole");
    process.files.removeAll(home.path("Documents"));
    service.restore(item.id);
    EXPECT_EQ(home.read("Documents/deep/er/a.txt"), "whole");
}

TEST_F(TrashRestoreTest, AFolderThatCannotBeMadeLeavesTheItemInTheTrash) {
    const TrashItem item = trashed("Documents/deep/a.txt");
    const Manifest before = lists();
    process.files.removeAll(home.path("Documents/deep"));
    file("Documents/deep", "a file in the way");
    EXPECT_EQ(failure([&] { service.restore(item.id); }), ENOTDIR);
    EXPECT_EQ(read(stored(item)), "content");
    EXPECT_EQ(lists(), before);
    EXPECT_EQ(readByOthers(), before);
    process.files.removeAll(home.path("Documents/deep"));
    service.restore(item.id);
    EXPECT_EQ(home.read("Documents/deep/a.txt"), "content");
}

TEST_F(TrashRestoreTest, AnUnknownItemIsNotFound) {
    trashed("a");
    EXPECT_EQ(refusal([&] { service.restore("it00000000"); }), Reason::notFound);
    EXPECT_EQ(refusal([&] { service.restore(""); }), Reason::notFound);
    EXPECT_EQ(service.items().size(), 1u);
}

TEST_F(TrashRestoreTest, AVanishedItemIsNotFoundAndStaysListed) {
    const TrashItem item = trashed("a");
    const Manifest before = lists();
    process.files.removeAll(stored(item));
    EXPECT_EQ(refusal([&] { service.restore(item.id); }), Reason::notFound);
    process.files.removeAll(operationFolder(item.opID));
    EXPECT_EQ(refusal([&] { service.restore(item.id); }), Reason::notFound);
    EXPECT_EQ(lists(), before);
    EXPECT_EQ(readByOthers(), before);
    EXPECT_FALSE(exists(home.path("a")));
}

TEST_F(TrashRestoreTest, ATakenPlaceIsLeftAloneAndTheItemComesBackBesideIt) {
    std::vector<std::string> expected{"b.txt"};
    file("a/b.txt", "0");
    for (int n = 1; n <= 12; ++n) {
        write(home.path("a/b.txt"), std::to_string(n));
        const TrashItem item = service.moveToTrash({home.path("a/b.txt")}, "wind").items.at(0);
        file("a/b.txt", "new");
        service.restore(item.id);
        const std::string name = "b (restaurado " + std::to_string(n) + ").txt";
        EXPECT_EQ(home.read("a/" + name), std::to_string(n));
        EXPECT_EQ(home.read("a/b.txt"), "new");
        expected.push_back(name);
    }
    EXPECT_THAT(names("a"), testing::UnorderedElementsAreArray(expected));
}

TEST_F(TrashRestoreTest, TheFirstFreeNumberIsTaken) {
    const TrashItem item = trashed("a/b.txt", "old");
    file("a/b.txt");
    file("a/b (restaurado 1).txt");
    file("a/b (restaurado 3).txt");
    service.restore(item.id);
    EXPECT_EQ(home.read("a/b (restaurado 2).txt"), "old");
}

TEST_F(TrashRestoreTest, TheExtensionStaysAtTheEnd) {
    constexpr std::pair<const char*, const char*> forms[] = {
        {"Informe.pdf", "Informe (restaurado 1).pdf"},
        {"a.tar.gz", "a.tar (restaurado 1).gz"},
        {"Caches", "Caches (restaurado 1)"},
        {".bashrc", ".bashrc (restaurado 1)"},
        {".config.json", ".config (restaurado 1).json"},
        {"dot at the end.", "dot at the end. (restaurado 1)"},
        {"com.example.app", "com.example (restaurado 1).app"},
        {"año.año", "año (restaurado 1).año"}};
    for (const auto& [name, restored] : forms) {
        const TrashItem item = trashed(std::string("x/") + name, name);
        file(std::string("x/") + name, "new");
        service.restore(item.id);
        EXPECT_EQ(home.read(std::string("x/") + restored), name);
    }
}

TEST_F(TrashRestoreTest, AFolderComesBackBesideAnother) {
    const Operation operation = service.moveToTrash({folder("Library/Caches")}, "wind");
    file("Library/Caches/new", "new");
    service.undoOperation(operation.id);
    EXPECT_EQ(home.read("Library/Caches (restaurado 1)/inside"), "inside");
    EXPECT_THAT(names("Library/Caches"), ElementsAre("new"));
}

TEST_F(TrashRestoreTest, AFileIsNotRestoredThroughALinkInItsPlace) {
    const TrashItem item = trashed("Documents/a.txt", "mine");
    const std::string other = file("other", "other");
    link("Documents/a.txt", other);
    service.restore(item.id);
    EXPECT_EQ(read(other), "other");
    EXPECT_EQ(home.read("Documents/a (restaurado 1).txt"), "mine");
    const TrashItem second = trashed("Documents/b.txt", "mine");
    link("Documents/b.txt", "nowhere");
    service.restore(second.id);
    EXPECT_EQ(home.read("Documents/b (restaurado 1).txt"), "mine");
    EXPECT_FALSE(exists(home.path("Documents/nowhere")));
}

TEST_F(TrashRestoreTest, TheLastItemOfAnOperationTakesItAndItsFolderAlong) {
    const Operation first = service.moveToTrash({file("a"), file("b")}, "wind");
    const Operation other = service.moveToTrash({file("c")}, "wind");
    service.restore(first.items[0].id);
    ASSERT_EQ(service.operations().size(), 2u);
    EXPECT_THAT(service.operations()[1].items, ElementsAre(first.items[1]));
    EXPECT_EQ(service.operations()[1].gb, first.gb) << "what the user was told of stays";
    EXPECT_TRUE(exists(operationFolder(first.id)));
    service.restore(first.items[1].id);
    EXPECT_THAT(service.operations(), ElementsAre(other));
    EXPECT_THAT(service.items(), ElementsAre(other.items[0]));
    EXPECT_FALSE(exists(operationFolder(first.id)));
    EXPECT_EQ(readByOthers(), lists());
}

TEST_F(TrashRestoreTest, AnOperationFolderThatHoldsMoreStays) {
    const TrashItem item = trashed("a");
    write(operationFolder(item.opID) + "/stray", "somebody's");
    service.restore(item.id);
    EXPECT_TRUE(service.operations().empty());
    EXPECT_EQ(read(operationFolder(item.opID) + "/stray"), "somebody's");
}

TEST_F(TrashUndoTest, EverythingOfTheOperationComesBackAndNothingElse) {
    const Operation first =
        service.moveToTrash({file("a", "1"), folder("b"), file("c/d", "2")}, "wind");
    const Operation second = service.moveToTrash({file("a", "3")}, "wind");
    service.undoOperation(first.id);
    EXPECT_EQ(home.read("a"), "1");
    EXPECT_EQ(home.read("b/inside"), "inside");
    EXPECT_EQ(home.read("c/d"), "2");
    EXPECT_THAT(service.operations(), ElementsAre(second));
    service.undoOperation(second.id);
    EXPECT_EQ(home.read("a (restaurado 1)"), "3");
    EXPECT_EQ(readByOthers(), Manifest{});
}

TEST_F(TrashUndoTest, AnOperationThatIsNotThereDoesNothing) {
    trashed("a");
    const Manifest before = lists();
    service.undoOperation("op");
    service.undoOperation("");
    EXPECT_EQ(lists(), before);
    const Operation empty = service.moveToTrash({}, "wind");
    service.undoOperation(empty.id);
    EXPECT_EQ(service.operations().size(), 2u) << "an operation without items does nothing";
}

TEST_F(TrashUndoTest, TheFirstFailureEndsItAndWhatCameBackBeforeStays) {
    const Operation operation =
        refusing.moveToTrash({file("a"), file("b"), file("c"), file("d")}, "wind");
    files.refused = "-c";
    EXPECT_EQ(failure([&] { refusing.undoOperation(operation.id); }), EBUSY);
    EXPECT_EQ(home.read("a"), "content");
    EXPECT_EQ(home.read("b"), "content");
    EXPECT_THAT(refusing.items(), ElementsAre(operation.items[2], operation.items[3]));
    ASSERT_EQ(refusing.operations().size(), 1u);
    EXPECT_THAT(refusing.operations()[0].items,
                ElementsAre(operation.items[2], operation.items[3]));
    EXPECT_EQ(readByOthers().items, refusing.items());
    files.refused = "";
    refusing.undoOperation(operation.id);
    EXPECT_EQ(home.read("c"), "content");
    EXPECT_EQ(home.read("d"), "content");
}

TEST_F(TrashUndoTest, AVanishedItemEndsIt) {
    const Operation operation = service.moveToTrash({file("a"), file("b"), file("c")}, "wind");
    process.files.removeAll(stored(operation.items[1]));
    EXPECT_EQ(refusal([&] { service.undoOperation(operation.id); }), Reason::notFound);
    EXPECT_EQ(home.read("a"), "content");
    EXPECT_THAT(service.items(), ElementsAre(operation.items[1], operation.items[2]));
}

TEST_F(TrashUndoTest, ItemsThatWereRestoredBeforeAreLeftOut) {
    const Operation operation = service.moveToTrash({file("a"), file("b"), file("c")}, "wind");
    service.restore(operation.items[1].id);
    service.deletePermanently(operation.items[2].id);
    service.undoOperation(operation.id);
    EXPECT_THAT(process.files.list(home.path()), UnorderedElementsAre("Library", "a", "b"));
    EXPECT_TRUE(service.items().empty());
}

TEST_F(TrashUndoTest, NothingIsLogged) {
    const Operation operation = service.moveToTrash({file("a")}, "wind");
    process.log.clear();
    service.undoOperation(operation.id);
    EXPECT_TRUE(process.log.lines().empty());
}

TEST_F(TrashRestoreTest, ALongNameIsShortenedWhereItsPlaceIsTaken) {
    for (const std::string& name :
         {std::string(240, 'n') + ".pdf", std::string(255, 'n'), std::string(251, 'n') + ".pdf",
          "é" + std::string(120, 'x') + std::string(60, 'y') + "ññññññññññññññññññññññññññññññññ",
          "a." + std::string(253, 'e')}) {
        SCOPED_TRACE(name);
        ASSERT_LE(name.size(), 255U);
        for (const char* content : {"first", "second"}) {
            const TrashItem item = trashed("long/" + name, content);
            file("long/" + name, "taken");
            service.restore(item.id);
        }
        std::vector<std::string> contents;
        for (const std::string& one : process.files.list(home.path("long"))) {
            EXPECT_TRUE(isValidUtf8(one)) << one;
            contents.push_back(read(home.path("long/" + one)));
        }
        EXPECT_THAT(contents, testing::UnorderedElementsAre("taken", "first", "second"));
        process.files.removeAll(home.path("long"));
    }
}

TEST_F(TrashRestoreTest, AVolumeMayTakeShorterNamesThanItSays) {
    const std::string name = std::string(140, 'n') + ".pdf";
    const TrashItem item = trashed("long/" + name, "mine");
    file("long/" + name, "taken");
    process.calls.refuses = [](const char*, const char* about) {
        return std::strlen(about) > 143 + 1 && !std::string_view(about).contains('/') &&
                       !std::string_view(about).starts_with("it")
                   ? ENAMETOOLONG
                   : 0;
    };
    service.restore(item.id);
    process.calls.refuses = nullptr;
    std::vector<std::string> contents;
    for (const std::string& one : process.files.list(home.path("long")))
        contents.push_back(read(home.path("long/" + one)));
    EXPECT_THAT(contents, testing::UnorderedElementsAre("taken", "mine"));
}

TEST_F(TrashRestoreTest, AnItemAndTheFolderThatHeldItComeBackAsTheyWere) {
    file("outer/inside/deep", "deep");
    file("outer/inside/more/deeper", "deeper");
    file("outer/beside", "beside");
    const Operation operation =
        service.moveToTrash({home.path("outer/inside/more"), home.path("outer/inside"),
                             file("else"), home.path("outer")},
                            "wind");
    service.undoOperation(operation.id);
    EXPECT_EQ(home.read("outer/inside/deep"), "deep");
    EXPECT_EQ(home.read("outer/inside/more/deeper"), "deeper");
    EXPECT_EQ(home.read("outer/beside"), "beside");
    EXPECT_EQ(home.read("else"), "content");
    EXPECT_FALSE(home.exists("outer (restaurado 1)"));
    EXPECT_TRUE(service.items().empty());
}

}  // namespace
}  // namespace velto
