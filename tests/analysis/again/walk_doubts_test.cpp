// Whatever could make a walk by an earlier one differ from a walk of everything leads to the
// latter.

#include <algorithm>
#include <utility>

#include <gmock/gmock.h>

#include "analysis/again/AgainFixture.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using testing::ElementsAre;

constexpr double day = 86'400;

struct WalkDoubts : testing::Test {
    WalkDoubts() {
        machine.grantAccess();
        for (const char* path : {"Documents/a/b", "Documents/c", "Movies"}) {
            for (std::string folder = made.at(path); folder != made.home;
                 folder = parentFolder(folder))
                made.reader.folder(folder).modified = clock - 10 * day;
        }
        file("Documents/a/report.pdf", 2'000'000);
        file("Documents/a/b/notes.txt", 5'000);
        file("Documents/c/photo.jpg", 3'000'000);
        made.scan();
        clock += day;
        machine.changes.event += 10;
    }

    FakeDirectoryReader::Node& file(std::string_view path, std::int64_t size) {
        auto& node = made.reader.file(made.at(path), size, size);
        node.modified = clock - 10 * day;
        return node;
    }
    void tell(std::vector<FolderChange> changes) { machine.changes.changes = std::move(changes); }
    std::string keptFile() const { return machine.platform.layout.dataFolder + "/walk.bin"; }
    std::string kept() const { return machine.platform.files->read(keptFile(), ownFile(1 << 20)); }

    AgainMachine made;
    TestPlatform& machine = made.machine;
    double& clock = machine.clock.time;
};

TEST_F(WalkDoubts, WithoutOneOnlyWhatHasChangedIsRead) {
    file("Documents/a/new.zip", 1'200'000);
    tell({{made.at("Documents/a")}});
    const auto again = made.scan();
    EXPECT_EQ(again.doubt, WalkDoubt::none);
    EXPECT_THAT(again.read, ElementsAre(made.home, made.at("Documents"), made.at("Documents/a"),
                                        made.at("Documents/a/b")));
    expectEqual(again.result, made.wholeScan());
    EXPECT_EQ(again.result.files, 4);
}

TEST_F(WalkDoubts, WhatIsWalkedAnewWithAllBelowIsReadOnce) {
    file("Documents/a/b/new.zip", 1'200'000);
    tell({{made.at("Documents/a"), true}, {made.at("Documents/a/b")}});
    const auto again = made.scan();
    EXPECT_EQ(again.doubt, WalkDoubt::none);
    EXPECT_EQ(std::ranges::count(again.read, made.at("Documents/a/b")), 1);
    expectEqual(again.result, made.wholeScan());
}

TEST_F(WalkDoubts, WhereFilesComeAndGoWithoutAWordAllIsRead) {
    machine.platform.layout.providedFiles = {made.at("Documents/c")};
    made.scan();
    clock += day;
    file("Documents/c/came.zip", 1'200'000);
    tell({});
    const auto again = made.scan();
    EXPECT_EQ(again.doubt, WalkDoubt::none);
    EXPECT_EQ(std::ranges::count(again.read, made.at("Documents/c")), 1);
    expectEqual(again.result, made.wholeScan());
}

TEST_F(WalkDoubts, TheHistoryIsAskedSinceTheMomentBeforeTheLastWalk) {
    made.scan();
    EXPECT_THAT(machine.changes.asked, ElementsAre(ChangeMark{"volume", 1}));
    made.scan();
    EXPECT_EQ(machine.changes.asked.back().event, 11U);
}

TEST_F(WalkDoubts, WithoutAHistoryNothingIsNotedAndNothingIsLookedUp) {
    machine.changes.hasHistory = false;
    ScannerService scanner(machine.platform, made.permissions, 2);
    scanner.scan({}, CancellationFlag(), nullptr);
    EXPECT_EQ(scanner.doubt(), WalkDoubt::nothingTold);
    EXPECT_EQ(scanner.keptWalk(), nullptr);
    EXPECT_TRUE(machine.changes.asked.empty());
}

TEST_F(WalkDoubts, LostEvents) {
    machine.changes.changes.reset();
    EXPECT_EQ(made.scan().doubt, WalkDoubt::changesUntold);
    machine.changes.changes.emplace();
    EXPECT_EQ(made.scan().doubt, WalkDoubt::none) << "what that walk has kept is as good";
}

TEST_F(WalkDoubts, AnotherVolumeOrAHistoryBegunAnew) {
    machine.changes.volume = "another";
    EXPECT_EQ(made.scan().doubt, WalkDoubt::otherHistory);
}

TEST_F(WalkDoubts, AMomentThatIsStillToCome) {
    machine.changes.event = 0;
    EXPECT_EQ(made.scan().doubt, WalkDoubt::otherHistory);
}

TEST_F(WalkDoubts, AClockThatHasGoneBack) {
    clock -= 2 * day;
    EXPECT_EQ(made.scan().doubt, WalkDoubt::clock);
}

TEST_F(WalkDoubts, TooLongSinceEveryFolderWasRead) {
    for (int days = 1; days < 7; ++days, clock += day)
        EXPECT_EQ(made.scan().doubt, WalkDoubt::none) << days;
    clock += day;
    EXPECT_EQ(made.scan().doubt, WalkDoubt::tooOld);
    EXPECT_EQ(made.scan().doubt, WalkDoubt::none) << "every folder was read";
}

TEST_F(WalkDoubts, OtherExclusions) {
    EXPECT_EQ(made.scan({made.at("Movies")}).doubt, WalkDoubt::otherConditions);
    EXPECT_EQ(made.scan({made.at("Movies")}).doubt, WalkDoubt::none);
    EXPECT_EQ(made.scan().doubt, WalkDoubt::otherConditions);
}

TEST_F(WalkDoubts, OtherAccess) {
    machine.platform.files->removeAll(machine.home.path("Library/Safari"));
    EXPECT_EQ(made.scan().doubt, WalkDoubt::otherConditions);
}

TEST_F(WalkDoubts, ADiskThatWasMountedInTheHome) {
    machine.volumes.volumes = {{made.at("Movies"), std::nullopt}};
    EXPECT_EQ(made.scan().doubt, WalkDoubt::otherConditions);
}

TEST_F(WalkDoubts, FoldersOfAnotherRole) {
    machine.platform.layout.music = made.at("Documents/c");
    EXPECT_EQ(made.scan().doubt, WalkDoubt::otherConditions);
}

TEST_F(WalkDoubts, AnotherFolderInThePlaceOfTheHome) {
    made.reader.nodeAt(made.home)->inode = 77'777;
    EXPECT_EQ(made.scan().doubt, WalkDoubt::notOneWalk);
}

TEST_F(WalkDoubts, AHomeOfWhichAllMayHaveChanged) {
    tell({{made.home, true}});
    EXPECT_EQ(made.scan().doubt, WalkDoubt::tooManyChanges);
    tell({{"/", true}});
    EXPECT_EQ(made.scan().doubt, WalkDoubt::tooManyChanges);
    tell({{"/", false}, {"/elsewhere", true}});
    EXPECT_EQ(made.scan().doubt, WalkDoubt::none);
}

TEST_F(WalkDoubts, ANewNameOfAFileOfWhichTheOtherWasNotRead) {
    auto& old = *made.reader.nodeAt(made.at("Documents/c/photo.jpg"));
    auto& other = file("Documents/a/photo.jpg", 3'000'000);
    other.inode = old.inode;
    other.links = old.links = 2;
    tell({{made.at("Documents/a")}});
    const auto again = made.scan();
    EXPECT_EQ(again.doubt, WalkDoubt::notOneWalk);
    expectEqual(again.result, made.wholeScan());
}

TEST_F(WalkDoubts, AFolderThatIsAnotherOneByTheTimeItIsRead) {
    tell({{made.at("Documents/a/b")}, {made.at("Documents/c")}});
    bool hasChanged = false;
    made.reader.beforeRead = [&](const FakeDirectoryReader::Node& folder) {
        // With one thread: after "a" was read, which holds "b", and before "b" itself.
        if (std::exchange(hasChanged, hasChanged || folder.name == "c")) return;
        if (hasChanged) made.reader.nodeAt(made.at("Documents/a/b"))->inode = 88'888;
    };
    ScannerService scanner(machine.platform, made.permissions, 1);
    scanner.scan({}, CancellationFlag(), nullptr);
    EXPECT_TRUE(hasChanged);
    EXPECT_EQ(scanner.doubt(), WalkDoubt::notOneWalk);
    EXPECT_EQ(scanner.filesScanned, 3);
}

TEST_F(WalkDoubts, ADamagedRecordIsNone) {
    const std::string whole = kept();
    for (std::size_t at = 0; at < whole.size(); at += 7) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x01);
        if (damaged[at] == '\0') continue;
        EXPECT_FALSE(kept_walk_text::decode(damaged)) << at;
        EXPECT_FALSE(kept_walk_text::decode(std::string_view(whole).substr(0, at))) << at;
    }
    ASSERT_TRUE(kept_walk_text::decode(whole));
    EXPECT_EQ(whole.find('\0'), std::string::npos);
    machine.platform.files->writeAtomically(keptFile(), whole.substr(0, whole.size() - 20));
    EXPECT_EQ(made.scan().doubt, WalkDoubt::nothingKept);
    EXPECT_EQ(made.scan().doubt, WalkDoubt::none) << "it was replaced";
    machine.platform.files->removeAll(keptFile());
    EXPECT_EQ(made.scan().doubt, WalkDoubt::nothingKept);
}

TEST_F(WalkDoubts, WhatIsReadIsWhatWasWritten) {
    const std::string text = kept();
    const auto decoded = kept_walk_text::decode(text);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(kept_walk_text::encode(decoded->stamp, decoded->walk), text);
    EXPECT_EQ(decoded->walk.folders.front().name, made.home);
}

TEST_F(WalkDoubts, ACancelledWalkLeavesNothingForTheNext) {
    ScannerService scanner(machine.platform, made.permissions, 2);
    CancellationFlag cancelled;
    made.reader.beforeRead = [&](const auto&) { cancelled.cancel(); };
    EXPECT_THROW(scanner.scan({}, cancelled, nullptr), CancellationError);
    EXPECT_EQ(scanner.keptWalk(), nullptr);
    EXPECT_EQ(scanner.folders(), nullptr);
}

struct ToldPaths : WalkDoubts {
    bool reads(const std::string& told, const std::string& folder) {
        tell({{told}});
        const auto again = made.scan();
        EXPECT_EQ(again.doubt, WalkDoubt::none) << told;
        return std::ranges::find(again.read, folder) != again.read.end();
    }
};

TEST_F(ToldPaths, AreKnownOnTheDataVolumeToo) {
    EXPECT_TRUE(reads("/System/Volumes/Data" + made.at("Documents/c"), made.at("Documents/c")));
}

TEST_F(ToldPaths, AreKnownInOtherLetters) {
    EXPECT_TRUE(reads(made.at("documents/C"), made.at("Documents/c")));
}

TEST_F(ToldPaths, OfNewFoldersConcernTheOneThatHoldsThem) {
    file("Documents/c/new/deep/x.txt", 10);
    EXPECT_TRUE(reads(made.at("Documents/c/new/deep"), made.at("Documents/c/new/deep")));
}

TEST_F(ToldPaths, ConcernNothingElse) {
    EXPECT_FALSE(reads(made.at("Documents/c"), made.at("Documents/a")));
    EXPECT_FALSE(reads("/elsewhere", made.at("Documents")));
}

}  // namespace
}  // namespace velto
