// Somebody swaps folders for links while the trash is at work.

#include <filesystem>

#include "TrashAttackFixture.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

/// Swaps `place` for a link to the folder of others, the folder itself put beside it.
std::function<void()> swapForLink(const TrashAttackTest& test, const std::string& place,
                                  const std::string& target) {
    return [&test, place, target] {
        std::error_code ignored;
        fs::rename(test.home(place), test.home("aside"), ignored);
        if (!ignored) fs::create_symlink(test.root->path(target), test.home(place), ignored);
    };
}

TEST_F(TrashAttackTest, AFolderSwappedForALinkDoesNotLeadTheMoveOutside) {
    const std::vector<std::string> whole = contents();
    const std::pair<const char*, const char*> swaps[] = {
        {"d", "outside"}, {"d/e", "outside/e"}, {"d/victim", "outside/victim"}};
    int interrupted = 0;
    for (const auto& [place, target] : swaps) {
        for (int at = 0;; ++at) {
            SCOPED_TRACE(testing::Message() << place << ", call " << at);
            build();
            calls.count = 0;
            calls.at = at;
            calls.action = swapForLink(*this, place, target);
            try {
                service->moveToTrash({home("other"), home("d/e/victim"), home("d/victim")}, "wind");
            } catch (const TrashError&) {
            } catch (const FileError&) {
            }
            const bool wasReached = calls.count > at;
            calls.at = -1;
            EXPECT_EQ(treeText(root->path("outside")), outside) << "something outside was moved";
            EXPECT_EQ(contents(), whole) << "something of the home is lost";
            for (const TrashItem& item : service->items()) {
                EXPECT_TRUE(files.exists(layout.trashFolder + "/" + item.opID + "/" + item.id +
                                         "-" + item.name));
            }
            if (!wasReached || HasFailure()) break;
            ++interrupted;
        }
    }
    EXPECT_GT(interrupted, 60);
}

TEST_F(TrashAttackTest, ARestoreReplacesNothingWhereverItsFolderLeadsByThen) {
    const std::vector<std::string> whole = contents();
    for (int at = 0;; ++at) {
        SCOPED_TRACE(at);
        build();
        const Operation operation =
            service->moveToTrash({home("d/victim"), home("d/e/victim")}, "wind");
        calls.count = 0;
        calls.at = at;
        calls.action = swapForLink(*this, "d", "outside");
        try {
            service->undoOperation(operation.id);
        } catch (const TrashError&) {
        } catch (const FileError&) {
        }
        const bool wasReached = calls.count > at;
        calls.at = -1;
        EXPECT_EQ(root->read("outside/victim"), "of others");
        EXPECT_EQ(root->read("outside/e/victim"), "of others, deeper");
        std::size_t found = contents().size();
        for (const auto& entry : fs::recursive_directory_iterator(root->path("outside")))
            found += entry.path().filename() == "victim (restaurado 1)";
        EXPECT_EQ(found, whole.size()) << "something is lost";
        if (!wasReached || HasFailure()) break;
    }
}

TEST_F(TrashAttackTest, ATrashFolderSwappedForALinkDeletesNothingElsewhere) {
    for (int at = 0;; ++at) {
        SCOPED_TRACE(at);
        build();
        const Operation operation = service->moveToTrash({home("d")}, "wind");
        root->text("outside/" + operation.items[0].id + "-d", "of others, by that very name");
        const std::string before = treeText(root->path("outside"));
        calls.count = 0;
        calls.at = at;
        calls.action = [&] {
            const std::string folder = layout.trashFolder + "/" + operation.id;
            std::error_code ignored;
            fs::rename(folder, home("aside"), ignored);
            if (!ignored) fs::create_symlink(root->path("outside"), folder, ignored);
        };
        try {
            if (at % 2 == 0) service->deletePermanently(operation.items[0].id);
            if (at % 2 != 0) service->emptyTrash();
        } catch (const TrashError&) {
        } catch (const FileError&) {
        }
        const bool wasReached = calls.count > at;
        EXPECT_EQ(treeText(root->path("outside")), before);
        if (!wasReached || HasFailure()) break;
    }
}

}  // namespace
}  // namespace velto
