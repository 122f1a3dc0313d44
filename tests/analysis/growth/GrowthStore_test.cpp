#include "analysis/growth/GrowthStore.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include <fmt/format.h>

#include "analysis/growth/GrowthKeeper.h"
#include "analysis/growth/MadeTree.h"
#include "analysis/growth/thinning.h"
#include "platform/posix/PosixFileManager.h"
#include "support/FullDisk.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

constexpr std::int64_t start = 1'800'000'000;

struct GrowthStoreTest : testing::Test {
    TestPlatform machine;
    GrowthStore store{*machine.platform.files, *machine.platform.mover, machine.platform.layout};
    std::string folder = machine.platform.layout.dataFolder + "/Growth";

    static GrowthSnapshot snapshot(std::int64_t moment, std::int64_t bytes = 5_MB) {
        return MadeTree().add("Movies", bytes).snapshot(moment);
    }
    std::string fileOf(std::int64_t moment) const {
        return fmt::format("{}/{:012}.growth", folder, moment);
    }
    void write(const std::string& path, const std::string& text) const {
        machine.platform.files->writeAtomically(path, text);
    }
};

TEST_F(GrowthStoreTest, KeepsWhatIsAddedAndGivesItBack) {
    EXPECT_TRUE(store.moments().empty());
    EXPECT_EQ(store.load(start), nullptr);
    store.add(snapshot(start));
    store.add(snapshot(start + 60, 7_MB));
    EXPECT_EQ(store.moments(), (std::vector<std::int64_t>{start, start + 60}));
    ASSERT_NE(store.load(start + 60), nullptr);
    EXPECT_EQ((*store.load(start + 60))[0].bytes, 7_MB);
}

TEST_F(GrowthStoreTest, WhatIsDamagedOrNotItsOwnIsSkipped) {
    store.add(snapshot(start));
    store.add(snapshot(start + 60));
    const std::string good = *snapshot(start).encoded();
    write(fileOf(start), good.substr(0, good.size() / 2));
    EXPECT_EQ(store.load(start), nullptr);
    write(fileOf(start), *snapshot(start + 1).encoded());
    EXPECT_EQ(store.load(start), nullptr) << "of another moment than its name says";
    machine.platform.files->removeAll(fileOf(start));
    ASSERT_EQ(::symlink(fileOf(start + 60).c_str(), fileOf(start).c_str()), 0);
    EXPECT_EQ(store.load(start), nullptr) << "a link";
    EXPECT_EQ(store.moments(), (std::vector<std::int64_t>{start + 60}));
    EXPECT_NE(store.load(start + 60), nullptr);
}

TEST_F(GrowthStoreTest, WhatSomebodyElseHasPutThereStays) {
    store.add(snapshot(start));
    machine.platform.files->createFolders(fileOf(start - 5));
    write(folder + "/notes.txt", "mine");
    write(folder + "/00180000000a.growth", "mine");
    store.forget();
    EXPECT_TRUE(store.moments().empty());
    EXPECT_TRUE(machine.platform.files->exists(folder + "/notes.txt"));
    EXPECT_TRUE(machine.platform.files->exists(folder + "/00180000000a.growth"));
    EXPECT_TRUE(machine.platform.files->exists(fileOf(start - 5)));
}

TEST_F(GrowthStoreTest, ALinkInThePlaceOfItsFolderIsNotFollowed) {
    const std::string elsewhere = machine.home.folder("elsewhere");
    machine.home.text("elsewhere/001800000000.growth", "mine");
    machine.platform.files->createFolders(machine.platform.layout.dataFolder);
    ASSERT_EQ(::symlink(elsewhere.c_str(), folder.c_str()), 0);
    EXPECT_THROW(store.add(snapshot(start + 60)), FileError);
    EXPECT_THROW(store.forget(), FileError);
    EXPECT_TRUE(store.moments().empty());
    EXPECT_EQ(machine.home.read("elsewhere/001800000000.growth"), "mine");
}

TEST_F(GrowthStoreTest, OnAFullDiskWhatIsStoredStays) {
    FullDisk disk;
    PosixFileManager files(disk);
    GrowthStore full(files, files, machine.platform.layout);
    full.add(snapshot(start));
    const std::string before = machine.platform.files->read(fileOf(start), ownFile(1 << 20));
    MadeTree large;  // more than one block of it
    for (int index = 0; index < 400; ++index)
        large.add(fmt::format("Movies/{}", index), 2_MB);
    for (const long long left : {0LL, FullDisk::block}) {
        disk.left = left;
        EXPECT_THROW(full.add(large.snapshot(start)), FileError);
        EXPECT_THROW(full.add(large.snapshot(start + 60)), FileError);
        EXPECT_EQ(full.moments(), std::vector<std::int64_t>{start});
        EXPECT_EQ(machine.platform.files->read(fileOf(start), ownFile(1 << 20)), before);
    }
    EXPECT_EQ(machine.platform.files->list(folder).size(), 1U) << "nothing half written is left";
}

TEST_F(GrowthStoreTest, TwoAddForgetAndLookAtTheSameTime) {
    const auto work = [&](std::int64_t first) {
        GrowthStore one(*machine.platform.files, *machine.platform.mover, machine.platform.layout);
        for (int round = 0; round < 20; ++round) {
            one.add(snapshot(first + round));
            for (const std::int64_t moment : one.moments()) {
                const auto read = one.load(moment);
                EXPECT_TRUE(read == nullptr || read->facts().moment == moment);
            }
            if (round % 7 == 6) one.forget();
        }
    };
    std::thread other(work, start + 1'000);
    work(start);
    other.join();
    store.add(snapshot(start + 2'000));
    EXPECT_NE(store.load(start + 2'000), nullptr);
    for (const std::string& name : machine.platform.files->list(folder))
        EXPECT_TRUE(name.ends_with(".growth")) << name;
}

TEST_F(GrowthStoreTest, WhatOneProcessAddsAnotherForgets) {
    GrowthStore other(*machine.platform.files, *machine.platform.mover, machine.platform.layout);
    store.add(snapshot(start));
    other.add(snapshot(start + 1));
    store.add(snapshot(start + 2));
    EXPECT_EQ(store.moments(), (std::vector<std::int64_t>{start, start + 1, start + 2}));
    other.forget();
    EXPECT_TRUE(store.moments().empty());
    EXPECT_EQ(store.load(start), nullptr);
    store.forget();
    store.add(snapshot(start + 3));
    EXPECT_EQ(other.moments(), (std::vector<std::int64_t>{start + 3}));
}

TEST_F(GrowthStoreTest, AClockThatWasWrongTakesNothingAway) {
    store.add(snapshot(start + 1000));
    store.add(snapshot(start));
    EXPECT_EQ(store.moments(), (std::vector<std::int64_t>{start, start + 1000}));
}

TEST_F(GrowthStoreTest, TheKeeperSaysWhyItKeepsNothing) {
    const GrowthKeeper keeper(machine.platform);
    const FolderTree tree = MadeTree().add("Movies", 5_MB).tree();
    EXPECT_FALSE(keeper.keep(FolderTree(), start, {}));
    EXPECT_FALSE(keeper.keep(tree, 86'400, {})) << "a clock that was never set";
    EXPECT_TRUE(machine.log.holds("Velto ▶ crecimiento: este análisis no se guarda para comparar"));
    EXPECT_TRUE(store.moments().empty());
    EXPECT_TRUE(keeper.keep(tree, start + 0.7, {"/home/ana/Music"}));
    ASSERT_NE(store.load(start), nullptr);
    EXPECT_EQ(store.load(start)->facts().leftOut, std::vector<std::string>{"/home/ana/Music"});
    machine.platform.files->removeAll(folder);
    write(folder, "in the way");
    EXPECT_FALSE(keeper.keep(tree, start, {}));
}

TEST_F(GrowthStoreTest, AHomeOfTooManyFoldersIsKeptWithTheLargerOnes) {
    std::vector<std::string> names;
    for (int index = 0; index < 75'000; ++index)
        names.push_back(fmt::format("{:06}-{}", index, std::string(240, 'x')));
    std::vector<FolderTreeBuilder::Entry> entries = {
        {.number = 0, .parent = FolderTreeBuilder::noParent, .name = "/home/ana", .facts = {}}};
    for (std::uint32_t index = 0; index < names.size(); ++index)
        entries.push_back({.number = index + 1,
                           .parent = 0,
                           .name = names[index],
                           .facts = {.ownBytes = 1'000'000 + index * 40}});
    const FolderTree tree = FolderTreeBuilder::build(entries);
    EXPECT_TRUE(GrowthKeeper(machine.platform).keep(tree, start, {}));
    const auto kept = store.load(start);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->facts().smallest, 2'000'000);
    EXPECT_EQ(kept->size(), 50'001U);
    EXPECT_EQ((*kept)[0].bytes, tree[0].bytes);
}

}  // namespace
}  // namespace velto
