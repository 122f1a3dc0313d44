// Where an item goes when its own place is not what it was, and to a folder of the user's choice.

#include <sys/wait.h>
#include <unistd.h>

#include "TrashFixture.h"
#include "cleaning/restored_name.h"
#include "support/tree_text.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using Reason = TrashError::Reason;
using testing::IsEmpty;

struct TrashReturnTest : TrashTest {
    /// The obstacle that `action` names; empty when it did not fail for one.
    static std::string obstacle(const std::function<void()>& action, const std::string& name,
                                int code = ELOOP) {
        try {
            action();
        } catch (const ReturnBlocked& error) {
            EXPECT_EQ(error.item().name, name);
            EXPECT_EQ(error.code(), code);
            return error.path();
        }
        return "";
    }

    void expectStillThere(const TrashItem& item) {
        EXPECT_EQ(read(stored(item)), "content");
        EXPECT_EQ(readByOthers().items, std::vector{item});
        EXPECT_EQ(service.items(), std::vector{item});
        EXPECT_FALSE(exists(layout.trashFolder + ".journal"));
    }
};

TEST_F(TrashReturnTest, ALinkInTheFormerFoldersPlaceIsNamedAndNotFollowed) {
    const TrashItem item = trashed("Shared/team/a.desktop");
    home.folder("Library/LaunchAgents");
    for (const char* place : {"Shared/team", "Shared"}) {
        fs::remove_all(home.path(place));
        link(place, home.path("Library/LaunchAgents"));
        EXPECT_EQ(obstacle([&] { service.restore(item.id); }, "a.desktop"), home.path(place));
        EXPECT_EQ(obstacle([&] { service.undoOperation(item.opID); }, "a.desktop"),
                  home.path(place));
        expectStillThere(item);
        EXPECT_THAT(process.files.list(home.path("Library/LaunchAgents")), IsEmpty());
        fs::remove(home.path(place));
    }
    service.restore(item.id);
    EXPECT_EQ(home.read("Shared/team/a.desktop"), "content");
}

TEST_F(TrashReturnTest, AFileInTheFormerFoldersPlaceIsNamed) {
    const TrashItem item = trashed("Documents/deep/a.txt");
    fs::remove(home.path("Documents/deep"));
    file("Documents/deep", "in the way");
    EXPECT_EQ(obstacle([&] { service.restore(item.id); }, "a.txt", ENOTDIR),
              home.path("Documents/deep"));
    expectStillThere(item);
}

TEST_F(TrashReturnTest, AnUndoStopsAtTheBlockedItemAndWhatCameBackBeforeStays) {
    const Operation operation = service.moveToTrash({file("a"), file("d/b"), file("c")}, "wind");
    fs::remove_all(home.path("d"));
    home.folder("elsewhere");
    link("d", home.path("elsewhere"));
    EXPECT_EQ(obstacle([&] { service.undoOperation(operation.id); }, "b"), home.path("d"));
    EXPECT_EQ(home.read("a"), "content");
    EXPECT_EQ(service.items(), std::vector(operation.items.begin() + 1, operation.items.end()));
    EXPECT_THAT(process.files.list(home.path("elsewhere")), IsEmpty());
}

TEST_F(TrashReturnTest, TheUsersFolderTakesIt) {
    const TrashItem item = trashed("d/a.txt");
    home.folder("Desktop/here");
    service.restoreTo(item.id, home.path("Desktop/here"));
    EXPECT_EQ(home.read("Desktop/here/a.txt"), "content");
    EXPECT_EQ(readByOthers(), Manifest{});
    EXPECT_FALSE(exists(operationFolder(item.opID)));
    const TrashItem second = trashed("d/a.txt", "second");
    service.restoreTo(second.id, home.path("Desktop/here/"));
    EXPECT_EQ(home.read("Desktop/here/a (restaurado 1).txt"), "second");
    const TrashItem third = trashed("d/a.txt", "third");
    service.restoreTo(third.id, home.path());
    EXPECT_EQ(home.read("a.txt"), "third");
}

TEST_F(TrashReturnTest, AFolderThatWillNotDoIsRefusedAndTheItemStays) {
    const TrashItem item = trashed("d/a.txt");
    TempHome outside{TrashWorld::fastVolume()};
    home.folder("Library/Mail");
    home.folder("real");
    link("link", home.path("real"));
    file("file");
    const auto to = [&](const std::string& folder) {
        return [this, item, folder] { service.restoreTo(item.id, folder); };
    };
    EXPECT_EQ(refusal(to(outside.path())), Reason::outsideHome);
    EXPECT_EQ(refusal(to("/")), Reason::outsideHome);
    EXPECT_EQ(refusal(to("")), Reason::outsideHome);
    EXPECT_EQ(refusal(to("relative")), Reason::outsideHome);
    EXPECT_EQ(refusal(to(home.path("real/../.."))), Reason::outsideHome);
    EXPECT_EQ(refusal(to(home.path("Library/Mail"))), Reason::protected_);
    EXPECT_EQ(refusal(to(layout.dataFolder)), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(to(layout.trashFolder)), Reason::alreadyInTrash);
    EXPECT_EQ(refusal(to(operationFolder(item.opID))), Reason::alreadyInTrash);
    EXPECT_EQ(obstacle(to(home.path("link")), "a.txt"), home.path("link"));
    EXPECT_EQ(obstacle(to(home.path("file")), "a.txt", ENOTDIR), home.path("file"));
    EXPECT_EQ(failure(to(home.path("missing"))), ENOENT);
    EXPECT_FALSE(home.exists("missing")) << "a chosen folder is there";
    EXPECT_TRUE(fs::is_empty(outside.path()));
    EXPECT_TRUE(fs::is_empty(home.path("real")));
    expectStillThere(item);
    EXPECT_EQ(refusal([&] { service.restoreTo("it00000000", home.path()); }), Reason::notFound);
}

TEST_F(TrashReturnTest, AMoveToTheUsersFolderThatWasCutOffBetweenVolumesIsFinished) {
    if (!TrashWorld::hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    for (int at = 0;; ++at) {
        SCOPED_TRACE(at);
        TrashWorld world(TrashWorld::fastVolume(), buildVolume());
        world.keepMany();
        world.home.folder("chosen");
        const auto process = world.process();
        const std::string path = world.path("Library/Caches/com.example.app");
        const std::string text = treeText(path);
        const std::string id = process->service.moveToTrash({path}, "wind").items.front().id;
        const pid_t child = fork();
        if (child == 0) {
            const auto dying = world.process();
            dying->service.items();
            dying->calls.count = 0;
            dying->calls.at = at;
            dying->calls.action = WatchedFileCalls::Action::dieAfter;
            dying->service.restoreTo(id, world.path("chosen"));
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        const bool isComplete = WEXITSTATUS(status) == 0;
        const auto next = world.process();
        const bool isInTrash = !next->service.items().empty();
        const std::string chosen = world.path("chosen/com.example.app");
        EXPECT_NE(isInTrash, next->files.exists(chosen)) << "in one place alone";
        EXPECT_TRUE(!isComplete || !isInTrash);
        if (isInTrash) next->service.restoreTo(id, world.path("chosen"));
        EXPECT_EQ(treeText(chosen), text);
        EXPECT_EQ(leavesBelow(world.path("chosen")).size(), leavesBelow(chosen).size());
        if (isComplete || HasFailure()) break;
        at += isExhaustive() ? 0 : 8;
    }
}

TEST(RestoredName, IsKnownAgain) {
    for (const char* name :
         {"a.txt", "a", ".hidden", "x (restaurado 1).txt", "año.año", "a.tar.gz"}) {
        EXPECT_TRUE(isRestoredName(name, name));
        for (const int number : {1, 2, 10, 1234})
            EXPECT_TRUE(isRestoredName(restoredName(name, number, 255), name)) << name;
    }
    for (const std::size_t longest : {255U, 143U, 100U}) {
        for (const std::string& name :
             {std::string(longest - 4, 'n') + ".pdf", std::string(longest, 'n'),
              "a." + std::string(longest - 2, 'e'), std::string(longest / 2, 'n') + "ñññññ.pdf"}) {
            for (const int number : {1, 12}) {
                const std::string restored = restoredName(name, number, longest);
                EXPECT_LE(restored.size(), longest);
                EXPECT_TRUE(isRestoredName(restored, name)) << restored;
            }
        }
    }
    for (const char* other :
         {"b.txt", "a (restaurado ).txt", "a (restaurado x).txt", "a (restaurado 1)", "",
          "a (restaurado 1).txt/..", "a (restaurado 1).txtx", "a.txt.txt"}) {
        EXPECT_FALSE(isRestoredName(other, "a.txt")) << other;
    }
}

}  // namespace
}  // namespace velto
