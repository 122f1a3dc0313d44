#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "analysis/growth/MadeTree.h"
#include "analysis/growth/comparison.h"

namespace velto {
namespace {

constexpr GrowthLimits all{.most = 100'000, .worthTelling = 10'000'000};

/// Made anew from its number alone.
struct MadePair {
    MadeTree before;
    MadeTree after;

    explicit MadePair(unsigned number) : random(number) {
        for (std::size_t left = 1 + pick(120); left > 0; --left) {
            const std::string path = somePath();
            const std::int64_t bytes = someBytes();
            if (pick(8) != 0) before.add(path, bytes);
            if (pick(8) != 0) after.add(path, pick(3) == 0 ? someBytes() : bytes);
        }
    }

    void leaveOut() {
        constexpr FolderState states[] = {FolderState::excluded, FolderState::unreadable};
        for (std::size_t left = 1 + pick(3); left > 0; --left) {
            MadeTree& tree = pick(2) == 0 ? before : after;
            const std::string path = somePath();
            tree.state(path, states[pick(2)]);
        }
    }

    /// Folders that are new get the inodes of folders that are gone.
    void move() {
        std::vector<std::uint64_t> inodes;
        for (const auto& [path, facts] : before.folders()) {
            if (!after.folders().contains(path)) inodes.push_back(facts.inode);
        }
        std::ranges::shuffle(inodes, random);
        for (const auto& [path, facts] : std::map(after.folders())) {
            const bool isNew = !before.folders().contains(path);
            if (!isNew || inodes.empty()) continue;
            after.facts(path).inode = inodes.back();
            inodes.pop_back();
        }
    }

private:
    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    }
    std::string somePath() {
        std::string path;
        for (std::size_t depth = 1 + pick(4); depth > 0; --depth)
            path += (path.empty() ? "" : "/") + std::string(1, static_cast<char>('a' + pick(5)));
        return path;
    }
    std::int64_t someBytes() {
        constexpr std::int64_t scales[] = {300'000, 4'000'000, 60'000'000, 3'000'000'000};
        return std::uniform_int_distribution<std::int64_t>(0, scales[pick(4)])(random);
    }

    std::mt19937 random;
};

bool isLeftOut(const MadePair& pair, const std::string& path) {
    for (std::string at = path;; at = MadeTree::above(at)) {
        for (const MadeTree* tree : {&pair.before, &pair.after}) {
            const auto found = tree->folders().find(at);
            const bool isThere = found != tree->folders().end();
            if (isThere && found->second.state != FolderState::measured) return true;
        }
        if (at.empty()) return false;
    }
}

/// What lies at or below a path, straight from what the trees were made of.
std::int64_t changeBelow(const MadePair& pair, const std::string& path) {
    const auto sum = [&](const MadeTree& tree) {
        std::int64_t bytes = 0;
        for (const auto& [folder, facts] : tree.folders()) {
            const bool isBelow = path.empty() || isAtOrBelow(folder, path);
            if (isBelow && !isLeftOut(pair, folder)) bytes += facts.ownBytes;
        }
        return bytes;
    };
    return sum(pair.after) - sum(pair.before);
}

std::map<std::string, std::int64_t> toldBy(const Growth& growth) {
    std::map<std::string, std::int64_t> told;
    for (const auto* changes : {&growth.grown, &growth.shrunk}) {
        for (const GrowthChange& change : *changes) {
            const std::string home = MadeTree::home;
            const std::string path = change.path == home ? "" : change.path.substr(home.size() + 1);
            EXPECT_TRUE(told.emplace(path, change.bytes).second) << path << " is told twice";
        }
    }
    return told;
}

/// Each told folder tells its whole change but for what told folders below it tell.
void expectNoByteTwice(const MadePair& pair, const std::map<std::string, std::int64_t>& told) {
    for (const auto& [path, bytes] : told) {
        std::int64_t left = changeBelow(pair, path);
        for (const auto& [below, ofBelow] : told) {
            const bool isBelow = below != path && (path.empty() || isAtOrBelow(below, path));
            if (isBelow) left -= ofBelow;
        }
        EXPECT_EQ(bytes, left) << path;
    }
}

/// A snapshot of so small folders leaves none out, so that every figure is exact.
GrowthSnapshot exact(const MadeTree& tree, std::int64_t moment) {
    return GrowthSnapshot::of(
        tree.tree(), {.moment = moment, .leftOut = {}, .volumes = {"disk"}, .smallest = 0});
}

TEST(GrowthProperties, WhatIsToldNeverOverlapsAndWithTheRestIsTheWholeChange) {
    for (unsigned number = 0; number < 300; ++number) {
        SCOPED_TRACE(number);
        MadePair pair(number);
        if (number % 2 == 0) pair.leaveOut();
        const Growth growth = compareGrowth(exact(pair.before, 1), exact(pair.after, 2), all);
        EXPECT_EQ(growth.bytes, changeBelow(pair, ""));
        EXPECT_TRUE(growth.renamed.empty());
        expectNoByteTwice(pair, toldBy(growth));
    }
}

TEST(GrowthProperties, FoldersThatASnapshotLeavesOutChangeNoTotal) {
    for (unsigned number = 0; number < 300; ++number) {
        SCOPED_TRACE(number);
        MadePair pair(number);
        const Growth growth = compareGrowth(pair.before.snapshot(1), pair.after.snapshot(2), all);
        EXPECT_EQ(growth.bytes, changeBelow(pair, ""));
        for (const auto& [path, bytes] : toldBy(growth))
            EXPECT_GE(std::abs(bytes), all.worthTelling) << path;
    }
}

TEST(GrowthProperties, WhateverWasMovedTheTotalIsTheSame) {
    std::size_t moved = 0;
    for (unsigned number = 0; number < 300; ++number) {
        SCOPED_TRACE(number);
        MadePair pair(number);
        pair.move();
        const Growth growth = compareGrowth(exact(pair.before, 1), exact(pair.after, 2), all);
        EXPECT_EQ(growth.bytes, changeBelow(pair, ""));
        std::set<std::string> seen;
        for (const GrowthRename& rename : growth.renamed) {
            EXPECT_NE(rename.from, rename.to);
            EXPECT_TRUE(seen.insert("from " + rename.from).second);
            EXPECT_TRUE(seen.insert("to " + rename.to).second);
        }
        moved += growth.renamed.size();
        toldBy(growth);
    }
    EXPECT_GT(moved, 50U);
}

}  // namespace
}  // namespace velto
