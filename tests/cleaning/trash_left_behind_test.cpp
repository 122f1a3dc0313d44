// Between two volumes an item is copied and its original removed. What goes wrong with that removal
// costs nobody anything: neither the item nor a trash that works.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "TrashWorld.h"

namespace velto {
namespace {

constexpr const char* leftFolder = "Library/Caches/com.example.app";
constexpr const char* leftFile = "Downloads/año nuevo.pdf";

class TrashLeftBehind : public testing::Test {
protected:
    void SetUp() override {
        if (!TrashWorld::hasTwoVolumes())
            GTEST_SKIP() << "memory and build folder are one volume here";
    }

    static TrashWorld makeWorld() { return TrashWorld(TrashWorld::fastVolume(), buildVolume()); }

    static bool isRemovalOf(const char* name, const char* call, const char* about) {
        return std::strcmp(call, "remove") == 0 && std::strcmp(name, about) == 0;
    }
};

TEST_F(TrashLeftBehind, TheOriginalGoesEvenWhenItIsMissedForAMoment) {
    // Each call once the copy is in its place, or a share of them, is told that nothing is there.
    const int step = isExhaustive() ? 1 : 3;
    for (int at = 0;; at += step) {
        TrashWorld world = makeWorld();
        world.keepMany();
        const auto process = world.process();
        int calls = -1;
        process->calls.refuses = [&](const char* call, const char* name) {
            const bool putsInPlace =
                std::strcmp(call, "rename") == 0 && std::string(name).ends_with("-com.example.app");
            if (calls < 0 && !putsInPlace) return 0;
            return calls++ == at ? ENOENT : 0;
        };
        try {
            process->service.moveToTrash({world.path(leftFolder)}, "wind");
        } catch (const FileError&) {
            // Then it is where it was, which `prove` looks at.
        }
        process->calls.refuses = nullptr;
        world.prove();
        world.proveTrashWorks();
        ASSERT_FALSE(HasFailure()) << "call " << at;
        ASSERT_GE(calls, 0) << "the copy was never put in its place";
        if (calls <= at) break;
    }
}

TEST_F(TrashLeftBehind, AnItemWhoseOriginalResistsCanBeRestoredAndThrownAwayAgain) {
    TrashWorld world = makeWorld();
    world.keepMany();
    world.allowsLeftovers = true;
    const auto process = world.process();
    process->calls.refuses = [](const char* call, const char* name) {
        return isRemovalOf("notes.txt", call, name) ? EPERM : 0;
    };
    VeltoTrashService& service = process->service;
    const Operation operation = service.moveToTrash({world.path(leftFolder)}, "wind");
    EXPECT_EQ(world.prove().trash, std::set<std::string>{leftFolder});
    service.restore(operation.items.front().id);
    EXPECT_TRUE(world.prove().trash.empty());
    EXPECT_TRUE(service.items().empty());
    service.undoOperation(service.moveToTrash({world.path(leftFolder)}, "wind").id);
    EXPECT_TRUE(world.prove().trash.empty());
    world.proveTrashWorks();
}

TEST_F(TrashLeftBehind, AMoveThatFailsLaterBringsItBackAndTheTrashGoesOn) {
    TrashWorld world = makeWorld();
    world.keepMany();
    world.allowsLeftovers = true;
    ASSERT_EQ(mkfifo(world.path("pipe").c_str(), 0600), 0);
    const auto process = world.process();
    process->calls.refuses = [](const char* call, const char* name) {
        return isRemovalOf("notes.txt", call, name) ? EPERM : 0;
    };
    int reason = 0;
    try {
        process->service.moveToTrash({world.path(leftFolder), world.path("pipe")}, "wind");
    } catch (const FileError& error) {
        reason = error.code();
    }
    EXPECT_EQ(reason, EOPNOTSUPP) << "a pipe cannot be copied";
    process->service.moveToTrash({world.path(leftFile)}, "wind");
    EXPECT_EQ(world.prove().trash, std::set<std::string>{leftFile});
    world.proveTrashWorks();
}

/// A move into the trash was cut off, and the folder that the item came from is gone since.
class TrashAdoption : public testing::TestWithParam<bool> {
protected:
    TrashAdoption() {
        process->calls.knowsExclusiveRename = GetParam();
        process->files.createFolders(folder);
        TrashJournal(process->files, world.layout)
            .write({.kind = JournalEntry::Kind::move,
                    .operation = {.id = "opX", .ts = 1, .gb = 0, .items = {item}, .kind = "wind"},
                    .itemIDs = {},
                    .steps = {}});
    }

    void put(const std::string& name) {
        process->files.createFolders(folder + "/" + name);
        process->files.writeAtomically(folder + "/" + name + "/file", "content");
    }

    void expectListedAndWhole() {
        ASSERT_EQ(process->service.items(), std::vector{item});
        EXPECT_EQ(process->files.list(folder), std::vector<std::string>{"it1-thing"});
        process->service.restore("it1");
        EXPECT_EQ(world.home.read("gone/thing/file"), "content");
        EXPECT_FALSE(process->files.exists(folder));
    }

    TrashWorld world{TrashWorld::fastVolume()};
    TrashItem item{.id = "it1",
                   .opID = "opX",
                   .originalPath = world.path("gone/thing"),
                   .name = "thing",
                   .gb = 0,
                   .taken = 1};
    std::string folder = world.trashPath() + "/opX";
    std::unique_ptr<TrashProcess> process = world.process();
};

TEST_P(TrashAdoption, TheCopyTakesItsNameOverFromTheFolderThatHoldsIt) {
    put(".velto-it1");
    process->files.createFolders(folder + "/it1-thing");
    expectListedAndWhole();
}

TEST_P(TrashAdoption, TheCopyIsTheItem) {
    put(".velto-it1");
    expectListedAndWhole();
}

TEST_P(TrashAdoption, WhatHasArrivedStaysTheItem) {
    put("it1-thing");
    expectListedAndWhole();
}

INSTANTIATE_TEST_SUITE_P(Of, TrashAdoption, testing::Bool(), [](const auto& way) {
    return way.param ? "exclusiveRename" : "renamingMayReplace";
});

}  // namespace
}  // namespace velto
