// On a disk without a free byte everything goes on that needs no new space, cleaning first of all.

#include <gmock/gmock.h>

#include <filesystem>

#include "TrashWorld.h"
#include "support/FullDisk.h"
#include "support/tree_text.h"

namespace velto {
namespace {

class TrashOnFullDisk : public testing::TestWithParam<int> {
protected:
    TrashOnFullDisk() {
        disk.error = GetParam();
        for (int number = 0; number < 4; ++number)
            world.home.text("d/" + std::to_string(number) + "/inside", std::string(5, 'x'));
        world.home.text("file", "small");
    }

    Operation trash(const std::vector<std::string>& relatives) {
        std::vector<std::string> paths;
        for (const std::string& relative : relatives)
            paths.push_back(world.path(relative));
        return service().moveToTrash(paths, "wind");
    }

    void fill() { disk.left = 0; }

    /// As a new process, which knows nothing that is not on the disk.
    VeltoTrashService& service() {
        services.push_back(
            std::make_unique<VeltoTrashService>(files, files, world.clock, log, world.layout));
        return *services.back();
    }

    TrashWorld world{TrashWorld::fastVolume()};
    FullDisk disk;
    PosixFileManager files{disk};
    FakeLog log;
    std::vector<std::unique_ptr<VeltoTrashService>> services;
};

TEST_P(TrashOnFullDisk, WhatNeedsNoSpaceGoesOnAndOn) {
    const Operation first = trash({"d/0"});
    fill();
    const Operation second = trash({"d/1", "file"});
    EXPECT_FALSE(world.home.exists("d/1"));
    EXPECT_EQ(service().items().size(), 3U);
    fill();
    service().undoOperation(second.id);
    EXPECT_EQ(world.home.read("file"), "small");
    EXPECT_TRUE(world.home.exists("d/1/inside"));
    fill();
    service().restore(first.items.front().id);
    EXPECT_TRUE(world.home.exists("d/0/inside"));
    EXPECT_TRUE(service().items().empty());
}

TEST_P(TrashOnFullDisk, DeletingAndEmptyingMakeRoom) {
    const Operation first = trash({"d/0", "d/1"});
    fill();
    service().deletePermanently(first.items.front().id);
    EXPECT_EQ(service().items().size(), 1U);
    fill();
    trash({"file"});
    EXPECT_EQ(service().items().size(), 2U);
    disk.left = 0;
    service().emptyTrash();
    EXPECT_TRUE(service().items().empty());
    trash({"d/2"});
    EXPECT_EQ(service().items().size(), 1U);
}

TEST_P(TrashOnFullDisk, TheReserveIsKeptAgainOnceThereIsRoom) {
    trash({"d/0"});
    for (int round = 0; round < 3; ++round) {
        disk.left = 0;
        const Operation operation = trash({"file"});
        disk.left = 1LL << 30;
        service().undoOperation(operation.id);
    }
    EXPECT_EQ(world.home.read("file"), "small");
}

TEST_P(TrashOnFullDisk, WithoutAReserveNothingIsTouchedAndTheReasonIsTold) {
    fill();
    int reason = 0;
    try {
        trash({"d/0"});
    } catch (const FileError& error) {
        reason = error.code();
    }
    EXPECT_EQ(reason, GetParam());
    EXPECT_TRUE(world.home.exists("d/0/inside"));
}

TEST(TrashReserve, AManifestOfAnImpossibleLengthReservesNoSuchSpace) {
    TrashWorld world{TrashWorld::fastVolume()};
    PosixFileManager files;
    FakeLog log;
    files.createFolders(world.layout.trashFolder);
    files.writeAtomically(world.layout.trashFolder + "/manifest.json", "");
    std::filesystem::resize_file(world.layout.trashFolder + "/manifest.json", 1LL << 40);
    VeltoTrashService trash(files, files, world.clock, log, world.layout);
    EXPECT_EQ(trash.purgeExpired(30), 0);
    const auto reserve = files.attributes(world.layout.trashFolder + ".reserve");
    ASSERT_TRUE(reserve);
    EXPECT_EQ(reserve->logicalSize, 1 << 18);
}

INSTANTIATE_TEST_SUITE_P(Of, TrashOnFullDisk, testing::Values(ENOSPC, EDQUOT),
                         [](const auto& reason) {
                             return reason.param == ENOSPC ? "NoSpace" : "NoQuota";
                         });

}  // namespace
}  // namespace velto
