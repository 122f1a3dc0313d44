#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "platform/walk/TreeWalk.h"
#include "support/FakeDirectoryReader.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::Le;

constexpr int depth = 10'000;

/// Counts files and remembers the longest path.
class Counter final : public TreeVisitor {
public:
    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        ++files;
        if (entry.name == "bottom") bottomLength = folder.pathOf(entry.name).size();
    }

    int files = 0;
    std::size_t bottomLength = 0;
};

struct TreeWalkDepth : testing::Test {
    TreeWalk::Result walk(std::size_t threads) {
        std::vector<std::unique_ptr<Counter>> counters;
        std::vector<TreeVisitor*> visitors;
        for (std::size_t index = 0; index < threads; ++index) {
            visitors.push_back(counters.emplace_back(std::make_unique<Counter>()).get());
        }
        const auto result = TreeWalk(reader).run({{.path = "/home"}}, visitors, options);
        for (const auto& counter : counters) {
            files += counter->files;
            bottomLength = std::max(bottomLength, counter->bottomLength);
        }
        return result;
    }

    /// Nested folders "n"; beside each, twice as many folders as asked for that hold one file.
    void nest(int others, int levels = depth) {
        FakeDirectoryReader::Node* node = &reader.folder("/home");
        for (int level = 0; level < levels; ++level) {
            for (int other = 0; other < others; ++other) {
                reader.fileIn(reader.folderIn(*node, "m" + std::to_string(other)), "file");
                // On either side of "n" in the order of names.
                reader.fileIn(reader.folderIn(*node, "o" + std::to_string(other)), "file");
            }
            node = &reader.folderIn(*node, "n");
        }
        reader.fileIn(*node, "bottom");
    }

    FakeDirectoryReader reader;
    WalkOptions options;
    int files = 0;
    std::size_t bottomLength = 0;
};

TEST_F(TreeWalkDepth, AFolderTenThousandLevelsDownIsReachedWithFewFoldersOpen) {
    nest(0);
    EXPECT_EQ(walk(2).unreadable, 0);
    EXPECT_EQ(files, 1);
    EXPECT_EQ(bottomLength,
              std::string("/home").size() + 2 * depth + std::string("/bottom").size());
    EXPECT_EQ(reader.openNow(), 0);
    EXPECT_THAT(reader.mostOpen(), Le(8));
    EXPECT_EQ(reader.opened(), depth + 1);
}

TEST_F(TreeWalkDepth, FoldersThatWaitOnEveryLevelKeepNoMoreOpenThanTheBound) {
    constexpr int levels = 3'000;
    nest(1, levels);
    options.maxOpenFolders = 32;
    constexpr std::size_t threads = 3;
    EXPECT_EQ(walk(threads).unreadable, 0);
    EXPECT_EQ(files, 2 * levels + 1);
    EXPECT_EQ(reader.openNow(), 0);
    // The kept ones, the root, and what each worker has in its hands.
    EXPECT_THAT(reader.mostOpen(), Le(32 + 1 + 2 * static_cast<int>(threads) + 1));
}

TEST_F(TreeWalkDepth, OpeningAnewStaysFarFromOneWholeWayPerFolder) {
    constexpr int levels = 2'000;
    constexpr int bound = 64;
    nest(1, levels);
    options.maxOpenFolders = bound;
    walk(1);
    // Each folder once, and one way down, half of the depth on average, for as many as are kept.
    EXPECT_THAT(reader.opened(), Le(3 * levels + 2 * (levels / bound) * (levels / 2)));
}

TEST_F(TreeWalkDepth, AFolderThatWasSwappedForALinkIsNotReopenedThroughIt) {
    constexpr int levels = 1'000;
    nest(1, levels);
    options.maxOpenFolders = 4;
    // Once the bottom has been read, a folder high above it turns into a link; it is closed by
    // then, and everything that still waits below it can only be reached through it.
    FakeDirectoryReader::Node& swapped = reader.folder("/home/n/n/n/n");
    reader.beforeRead = [&](const FakeDirectoryReader::Node& folder) {
        if (folder.children.contains("bottom")) swapped.isLinkMeanwhile = true;
    };
    const TreeWalk::Result result = walk(1);
    EXPECT_GT(result.unreadable, levels / 2);
    EXPECT_EQ(files + result.unreadable, 2 * levels + 1);
}

}  // namespace
}  // namespace velto
