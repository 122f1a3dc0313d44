// The program is killed while it deletes, often because somebody wants to stop it: what is half
// deleted is finished by the next start, what stands whole stays.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TrashWorld.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using Deletion = std::function<void(VeltoTrashService& service)>;

class StoppedDeletion : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        for (const char* folder : {"one", "two", "three"}) {
            for (const char* name : {"a", "b", "c"})
                world.home.text(std::string(folder) + "/" + name, name);
            texts[folder] = treeText(world.path(folder));
        }
        const auto process = world.process();
        for (const char* folder : {"one", "two", "three"})
            process->service.moveToTrash({world.path(folder)}, "wind");
    }

    /// Dies before the n-th removal of a file inside an item.
    void stopAt(int removal, const Deletion& deletion) {
        const pid_t child = fork();
        if (child == 0) {
            const auto process = world.process();
            process->calls.knowsExclusiveRename = GetParam();
            process->service.items();
            int count = 0;
            process->calls.before = [&](const char* call, const char* name) {
                const bool isInside = std::string_view(call) == "remove" && name[1] == '\0';
                if (isInside && ++count == removal) _exit(WatchedFileCalls::died);
            };
            deletion(process->service);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == WatchedFileCalls::died);
    }

    std::set<std::string> listed() {
        const auto process = world.process();
        std::set<std::string> names;
        for (const TrashItem& item : process->service.items()) {
            const std::string stored =
                world.trashPath() + "/" + item.opID + "/" + item.id + "-" + item.name;
            EXPECT_EQ(treeText(stored), texts[item.name]) << item.name << " is listed in part";
            names.insert(item.name);
        }
        return names;
    }

    TrashWorld world{TrashWorld::fastVolume()};
    std::map<std::string, std::string> texts;
};

TEST_P(StoppedDeletion, AnEmptyingThatIsStoppedLeavesWhatItHadNotBegun) {
    stopAt(2, [](VeltoTrashService& service) { service.emptyTrash(); });
    EXPECT_EQ(listed().size(), 2U) << "one was half deleted";
    EXPECT_EQ(listed().size(), 2U) << "and so it stays";
    for (const std::string& leaf : leavesBelow(world.trashPath()))
        EXPECT_FALSE(leaf.ends_with("/a") && listed().size() != 2U);
    const auto process = world.process();
    for (const TrashItem& item : std::vector(process->service.items())) {
        process->service.restore(item.id);
        EXPECT_EQ(treeText(world.path(item.name)), texts[item.name]);
    }
}

TEST_P(StoppedDeletion, AnEmptyingThatIsStoppedLaterHasDeletedMore) {
    stopAt(4, [](VeltoTrashService& service) { service.emptyTrash(); });
    EXPECT_EQ(listed().size(), 1U) << "one is gone, one was half deleted";
}

TEST_P(StoppedDeletion, APurgeThatIsStoppedLeavesTheRestToTheNext) {
    world.clock.time += 31_days;
    stopAt(1, [](VeltoTrashService& service) { service.purgeExpired(30); });
    EXPECT_GE(listed().size(), 2U);
    world.process()->service.purgeExpired(30);
    EXPECT_TRUE(listed().empty());
}

INSTANTIATE_TEST_SUITE_P(Of, StoppedDeletion, testing::Bool(), [](const auto& way) {
    return way.param ? "exclusiveRename" : "renamingMayReplace";
});

}  // namespace
}  // namespace velto
