#include "platform/walk/WalkQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace velto {
namespace {

class NoFolder final : public OpenFolder {};

/// Workers at one queue, all on this thread: none asks for a folder while another would have to
/// find it first.
struct WalkQueueTest : testing::Test {
    struct Worker {
        WalkQueue::Seat seat;
        WalkQueue::Item item;
        WalkQueue::Listed listed;
    };

    WalkQueueTest() {
        queue.join(one.seat);
        queue.join(other.seat);
    }

    void roots(const std::vector<std::string>& names) {
        std::vector<FolderReference> roots;
        for (const std::string& name : names)
            roots.push_back(FolderReference::root(name, roots.size(), 0, nullptr));
        queue.addRoots(std::move(roots));
    }

    /// What the worker has found in the folder whose turn it is.
    static void finds(Worker& worker, const std::vector<std::string>& names) {
        worker.listed.handle = std::make_shared<NoFolder>();
        for (const std::string& name : names)
            worker.listed.children.push_back(
                FolderReference::inside(worker.item.folder, name, nullptr));
    }

    /// The name of the folder that a worker comes to next, empty at the end of the walk.
    std::string next(Worker& worker) {
        return queue.next(worker.seat, worker.item, worker.listed) ? worker.item.folder->name()
                                                                   : "";
    }

    static constexpr std::size_t openFolders = 8;
    WalkQueue queue{openFolders};
    Worker one;
    Worker other;
};

TEST_F(WalkQueueTest, AWorkerComesToWhatItHasFoundLastFoundFirst) {
    roots({"/root"});
    EXPECT_EQ(next(one), "/root");
    finds(one, {"a", "b"});
    EXPECT_EQ(next(one), "b");
    finds(one, {"inside b"});
    EXPECT_EQ(next(one), "inside b");
    EXPECT_EQ(next(one), "a");
    EXPECT_EQ(next(one), "");
}

TEST_F(WalkQueueTest, RootsAreHandedOutInTheirOrderBeforeAnythingIsTakenFromAnotherWorker) {
    roots({"/first", "/second"});
    EXPECT_EQ(next(one), "/first");
    finds(one, {"a", "b"});
    EXPECT_EQ(next(one), "b");
    EXPECT_EQ(next(other), "/second");
    EXPECT_EQ(next(other), "a");
}

TEST_F(WalkQueueTest, AWorkerWithoutFoldersTakesTheHalfThatAnotherFoundFirst) {
    roots({"/root"});
    EXPECT_EQ(next(one), "/root");
    finds(one, {"a", "b", "c", "d", "e", "f"});
    EXPECT_EQ(next(one), "f");
    EXPECT_EQ(next(other), "c");  // of a, b, c
    EXPECT_EQ(next(one), "e");
    finds(other, {"inside c"});
    EXPECT_EQ(next(other), "inside c");
    EXPECT_EQ(next(other), "b");
    EXPECT_EQ(next(other), "a");
    EXPECT_EQ(next(other), "d");
}

TEST_F(WalkQueueTest, AFolderIsOpenedThroughTheOneAboveWhoeverComesToIt) {
    roots({"/root"});
    EXPECT_EQ(next(one), "/root");
    finds(one, {"a"});
    EXPECT_EQ(next(one), "a");
    finds(one, {"b", "c"});
    const auto above = one.listed.handle;
    EXPECT_EQ(next(one), "c");
    EXPECT_EQ(next(other), "b");
    EXPECT_EQ(one.item.parent, above);
    EXPECT_EQ(other.item.parent, above);
}

TEST_F(WalkQueueTest, WhatAWorkerLeavesWhenItEndsIsTheOthers) {
    roots({"/root"});
    EXPECT_EQ(next(one), "/root");
    finds(one, {"a", "b", "c"});
    EXPECT_EQ(next(one), "c");
    // Its thread ends here, with an exception: what it had to read is lost, nothing else is.
    EXPECT_EQ(next(other), "a");
    EXPECT_EQ(next(other), "b");
}

}  // namespace
}  // namespace velto
