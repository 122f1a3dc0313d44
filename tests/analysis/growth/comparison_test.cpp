#include "analysis/growth/comparison.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "analysis/growth/MadeTree.h"
#include "support/TempHome.h"

namespace velto {
namespace {

constexpr std::int64_t operator""_GB(unsigned long long count) {
    return static_cast<std::int64_t>(count) * 1'000'000'000;
}

Growth compared(const MadeTree& before, const MadeTree& after) {
    return compareGrowth(before.snapshot(1), after.snapshot(2));
}

/// "new Movies/Boda 300 MB", one a line, as they come.
std::string text(const std::vector<GrowthChange>& changes) {
    constexpr std::string_view kinds[] = {"grown", "new", "shrunk", "gone"};
    std::string lines;
    for (const GrowthChange& change : changes) {
        const std::string below = change.path.substr(std::string(MadeTree::home).size());
        lines += fmt::format("{} ~{} {} MB\n", kinds[static_cast<int>(change.kind)], below,
                             change.bytes / 1'000'000);
    }
    return lines;
}

std::string text(const std::vector<GrowthRename>& renames) {
    std::string lines;
    for (const GrowthRename& rename : renames) {
        const auto below = [](const std::string& path) {
            return path.substr(std::string(MadeTree::home).size());
        };
        lines += fmt::format("~{} -> ~{} {} MB\n", below(rename.from), below(rename.to),
                             rename.bytes / 1'000'000);
    }
    return lines;
}

TEST(GrowthComparison, TheDeepestFolderThatExplainsTheChangeTellsIt) {
    MadeTree before;
    before.add("Movies/Lanzarote", 4_GB).add("Movies/Boda", 9_GB).add("Documents", 2_GB);
    MadeTree after;
    after.add("Movies/Lanzarote", 18_GB).add("Movies/Boda", 9_GB).add("Documents", 2_GB);
    const Growth growth = compared(before, after);
    EXPECT_EQ(text(growth.grown), "grown ~/Movies/Lanzarote 14000 MB\n");
    EXPECT_EQ(text(growth.shrunk), "");
    EXPECT_EQ(growth.bytes, 14_GB);
    EXPECT_EQ(growth.since, 1);
    EXPECT_EQ(growth.until, 2);
}

TEST(GrowthComparison, AParentTellsOnlyWhatItsFoldersDoNot) {
    MadeTree before;
    before.add("Movies", 1_GB).add("Movies/Lanzarote", 4_GB);
    MadeTree after;
    after.add("Movies", 3_GB).add("Movies/Lanzarote", 18_GB);
    EXPECT_EQ(text(compared(before, after).grown),
              "grown ~/Movies/Lanzarote 14000 MB\ngrown ~/Movies 2000 MB\n");
}

TEST(GrowthComparison, ManySmallPartsAreToldByTheFolderThatHoldsThem) {
    MadeTree before;
    MadeTree after;
    for (int app = 0; app < 60; ++app) {
        before.add(fmt::format("Library/Caches/app{}", app), 100_MB);
        after.add(fmt::format("Library/Caches/app{}", app), 150_MB);
    }
    before.add("Library/Preferences", 5_MB);
    after.add("Library/Preferences", 5_MB);
    EXPECT_EQ(text(compared(before, after).grown), "grown ~/Library/Caches 3000 MB\n");
}

TEST(GrowthComparison, TheTopmostFolderThatIsNewOrGoneTellsForAllBelow) {
    MadeTree before;
    before.add("Downloads", 50_MB).add("Old/a/b", 700_MB).add("Old/c", 100_MB);
    MadeTree after;
    after.add("Downloads", 50_MB).add("Movies/2026/Boda", 300_MB).add("Movies/2026", 200_MB);
    const Growth growth = compared(before, after);
    EXPECT_EQ(text(growth.grown), "new ~/Movies 500 MB\n");
    EXPECT_EQ(text(growth.shrunk), "gone ~/Old -800 MB\n");
    EXPECT_EQ(growth.bytes, -300_MB);
}

TEST(GrowthComparison, WhatCrossesTheSmallestSizeIsNoNewFolder) {
    MadeTree before;
    before.add("Mail", 50_MB);
    MadeTree after;
    after.add("Mail", 50_MB);
    for (int box = 0; box < 40; ++box) {
        before.add(fmt::format("Mail/box{}", box), 900_KB);
        after.add(fmt::format("Mail/box{}", box), 1100_KB);
    }
    const Growth growth = compared(before, after);
    EXPECT_EQ(text(growth.grown), "") << "8 MB in all are not worth telling";
    EXPECT_EQ(text(growth.shrunk), "");
    EXPECT_EQ(growth.bytes, 8_MB);
}

TEST(GrowthComparison, WhatGrowsFromUnderTheSmallestSizeMakesItsParentNoSmaller) {
    MadeTree before;
    MadeTree after;
    for (int box = 0; box < 15; ++box) {
        before.add(fmt::format("Mail/box{}", box), 900_KB);
        after.add(fmt::format("Mail/box{}", box), 20_MB);
    }
    const Growth growth = compared(before, after);
    EXPECT_EQ(growth.grown.size(), 15U);
    EXPECT_EQ(text(growth.shrunk), "") << "the 13.5 MB that the boxes had are no loss of Mail";
    EXPECT_EQ(growth.bytes, 286'500'000);
}

TEST(GrowthComparison, AFolderOfTheSameInodeIsRenamedAndItsOwnChangeIsToldApart) {
    MadeTree before;
    before.add("Movies/Viaje", 4_GB, 77).add("Movies/Viaje/Raw", 2_GB, 78).add("Music", 1_GB);
    MadeTree after;
    after.add("Archive", 20_MB)
        .add("Archive/Lanzarote", 4_GB, 77)
        .add("Archive/Lanzarote/Raw", 5_GB, 78)
        .add("Music", 1_GB)
        .add("Movies", 0);
    const Growth growth = compared(before, after);
    EXPECT_EQ(text(growth.renamed), "~/Movies/Viaje -> ~/Archive/Lanzarote 9000 MB\n");
    EXPECT_EQ(text(growth.grown), "grown ~/Archive/Lanzarote/Raw 3000 MB\nnew ~/Archive 20 MB\n");
    EXPECT_EQ(text(growth.shrunk), "");
    EXPECT_EQ(growth.bytes, 3'020'000'000);
}

TEST(GrowthComparison, AParentAndWhatItHeldMayBothHaveMoved) {
    MadeTree before;
    before.add("a/b", 2_GB, 70).add("a/b/c/d", 3_GB, 71).add("a/b/e", 1_GB, 72);
    MadeTree after;
    after.add("d", 3_GB, 71).add("x/y/b", 2_GB, 70).add("x/y/b/e", 2_GB, 72).add("x/y/b/c", 0);
    const Growth growth = compared(before, after);
    EXPECT_EQ(text(growth.renamed), "~/a/b -> ~/x/y/b 4000 MB\n~/a/b/c/d -> ~/d 3000 MB\n");
    EXPECT_EQ(text(growth.grown), "grown ~/x/y/b/e 1000 MB\n");
    EXPECT_EQ(text(growth.shrunk), "");
    EXPECT_EQ(growth.bytes, 1_GB);
}

TEST(GrowthComparison, AnInodeThatWasGivenAwayAgainMakesNoRename) {
    MadeTree before;
    before.add("Cache/1841", 2_GB, 77);
    MadeTree after;
    after.add("Cache/1902", 300_MB, 77);
    const Growth growth = compared(before, after);
    EXPECT_EQ(text(growth.renamed), "");
    EXPECT_EQ(text(growth.grown), "new ~/Cache/1902 300 MB\n");
    EXPECT_EQ(text(growth.shrunk), "gone ~/Cache/1841 -2000 MB\n");
}

TEST(GrowthComparison, OnAnotherVolumeAnInodeSaysNothing) {
    MadeTree before;
    before.add("a", 2_GB, 77);
    MadeTree after;
    after.add("b", 2_GB, 77);
    EXPECT_EQ(text(compared(before, after).renamed), "~/a -> ~/b 2000 MB\n");
    for (const auto& volumes : {std::vector<std::string>{"other"}, {""}, {}}) {
        const auto moved =
            GrowthSnapshot::of(after.tree(), {.moment = 2, .leftOut = {}, .volumes = volumes});
        EXPECT_EQ(text(compareGrowth(before.snapshot(1), moved).renamed), "");
    }
}

TEST(GrowthComparison, WhatWasLeftOutOfOneOfThemHasNeitherGrownNorShrunk) {
    const FolderState states[] = {FolderState::unreadable,  FolderState::withheld,
                                  FolderState::excluded,    FolderState::own,
                                  FolderState::otherVolume, FolderState::alreadyWalked};
    for (const FolderState state : states) {
        MadeTree whole;
        whole.add("Movies/Raw/2025", 40_GB).add("Movies", 1_GB).add("Music", 1_GB);
        MadeTree part;
        part.add("Movies", 2_GB).add("Music", 1_GB).state("Movies/Raw", state);
        const Growth before = compared(whole, part);
        EXPECT_EQ(text(before.grown), "grown ~/Movies 1000 MB\n");
        EXPECT_EQ(text(before.shrunk), "");
        EXPECT_EQ(before.bytes, 1_GB);
        const Growth after = compared(part, whole);
        EXPECT_EQ(text(after.grown), "");
        EXPECT_EQ(text(after.shrunk), "shrunk ~/Movies -1000 MB\n");
    }
}

TEST(GrowthComparison, APathThatWasExcludedInBetweenIsNotCompared) {
    MadeTree whole;
    whole.add("Movies/Raw/2025", 40_GB).add("Movies", 13_GB).add("Music", 1_GB);
    MadeTree part;
    part.add("Movies", 1_GB).add("Music", 2_GB);
    // The tree of the walk may not have it, and a file is in no tree.
    const std::vector<std::string> leftOut = {"/home/ana/Movies/Raw", "/home/ana/Movies/a.mov"};
    const Growth growth = compareGrowth(whole.snapshot(1), part.snapshot(2, leftOut));
    EXPECT_EQ(text(growth.shrunk), "");
    EXPECT_EQ(text(growth.grown), "grown ~/Music 1000 MB\n");
    EXPECT_EQ(growth.bytes, 1_GB);
    const Growth back = compareGrowth(part.snapshot(1, leftOut), whole.snapshot(2));
    EXPECT_EQ(text(back.grown), "");
    EXPECT_EQ(back.bytes, -1_GB);
    MadeTree less = part;
    less.add("Movies", 3_GB);
    EXPECT_EQ(text(compareGrowth(part.snapshot(1, leftOut), less.snapshot(2, leftOut)).grown),
              "grown ~/Movies 3000 MB\n")
        << "left out of both, all else can be compared";
}

TEST(GrowthComparison, EntriesThatCouldBeReadInOneOfThemOnlyAreNoChange) {
    MadeTree before;
    before.add("Documents", 1_GB);
    before.facts("Documents").unreadable = 2;
    MadeTree after;
    after.add("Documents", 3_GB).add("Documents/Tesis", 1_GB);
    EXPECT_EQ(text(compared(before, after).grown), "new ~/Documents/Tesis 1000 MB\n");
}

TEST(GrowthComparison, OnlyTheMostAreTold) {
    MadeTree before;
    MadeTree after;
    for (int index = 0; index < 30; ++index) {
        before.add(fmt::format("d{}/x", index), 100_MB);
        after.add(fmt::format("d{}/x", index), 100_MB + (index + 1) * 20_MB);
    }
    const Growth growth = compared(before, after);
    ASSERT_EQ(growth.grown.size(), 20U);
    EXPECT_EQ(growth.grown.front().path, "/home/ana/d29/x");
    EXPECT_EQ(growth.grown.back().path, "/home/ana/d10/x");
    EXPECT_EQ(growth.bytes, 20_MB * 30 * 31 / 2);
}

TEST(GrowthComparison, AHomeThatLiesElsewhereIsStillTheHome) {
    MadeTree made;
    made.add("Music", 1_GB);
    const GrowthSnapshot one = made.snapshot(1);
    std::vector<FolderTreeBuilder::Entry> entries = {
        {.number = 0, .parent = FolderTreeBuilder::noParent, .name = "/srv/ana", .facts = {}},
        {.number = 1, .parent = 0, .name = "Music", .facts = {.ownBytes = 3_GB}}};
    const auto other = GrowthSnapshot::of(FolderTreeBuilder::build(entries), {.moment = 2});
    const Growth growth = compareGrowth(one, other);
    ASSERT_EQ(growth.grown.size(), 1U);
    EXPECT_EQ(growth.grown[0].path, "/srv/ana/Music");
    EXPECT_EQ(growth.bytes, 2_GB);
}

TEST(GrowthInside, TellsOfTheFoldersOfOneFolder) {
    MadeTree before;
    before.add("Movies/a", 1_GB).add("Movies/b/x", 1_GB).add("Movies/c", 1_GB);
    before.add("Movies/small", 5_MB).add("Movies/f", 1_GB);
    MadeTree after;
    after.add("Movies/a", 1_GB).add("Movies/b/x", 3_GB).add("Movies/d", 2_GB);
    after.state("Movies/f", FolderState::excluded);
    const auto inside = growthInside(before.snapshot(1), after.snapshot(2), "/home/ana/Movies");
    EXPECT_EQ(inside, (std::map<std::string, std::int64_t>{
                          {"a", 0}, {"b", 2_GB}, {"c", -1_GB}, {"d", 2_GB}}));
    EXPECT_TRUE(growthInside(before.snapshot(1), after.snapshot(2), "/home/ana/Nothing").empty());
}

}  // namespace
}  // namespace velto
