#include "platform/walk/TreeWalk.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <stdexcept>

#include <gmock/gmock.h>

#include "support/FakeDirectoryReader.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

/// Lists the files it meets.
class Lister final : public TreeVisitor {
public:
    bool enter(WalkedFolder& folder) override {
        if (onEnter) return onEnter(folder);
        return true;
    }
    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place*) override {
        paths.push_back(folder.pathOf(entry.name));
        marks.push_back(folder.mark);
        if (onFile) onFile(paths.back());
    }

    void other(const WalkedFolder& folder, const DirectoryEntry& entry) override {
        others.push_back(folder.pathOf(entry.name) + " " + std::to_string(entry.logicalSize));
    }

    std::function<bool(WalkedFolder&)> onEnter;
    std::function<void(const std::string&)> onFile;
    std::vector<std::string> paths;
    std::vector<std::string> others;
    std::vector<std::uint32_t> marks;
};

struct TreeWalkTest : testing::Test {
    /// Walks with that many workers and gathers what they met, sorted.
    TreeWalk::Result walk(const std::vector<WalkRoot>& roots, std::size_t threads = 3) {
        std::vector<std::unique_ptr<Lister>> listers;
        std::vector<TreeVisitor*> visitors;
        for (std::size_t index = 0; index < threads; ++index) {
            visitors.push_back(listers.emplace_back(std::make_unique<Lister>()).get());
            listers.back()->onEnter = onEnter;
            listers.back()->onFile = onFile;
        }
        const TreeWalk::Result result =
            TreeWalk(reader).run(roots, visitors, options, cancelled, tick);
        for (const auto& lister : listers) {
            paths.insert(paths.end(), lister->paths.begin(), lister->paths.end());
            marks.insert(marks.end(), lister->marks.begin(), lister->marks.end());
            others.insert(others.end(), lister->others.begin(), lister->others.end());
        }
        std::ranges::sort(paths);
        std::ranges::sort(others);
        return result;
    }

    FakeDirectoryReader reader;
    PlaceTable places;
    WalkOptions options;
    CancellationFlag cancelled;
    TreeWalk::Tick tick;
    std::function<bool(WalkedFolder&)> onEnter;
    std::function<void(const std::string&)> onFile;
    std::vector<std::string> paths;
    std::vector<std::string> others;
    std::vector<std::uint32_t> marks;
};

TEST_F(TreeWalkTest, EveryFileOfEveryRootIsMetOnceUnderItsWholePath) {
    reader.file("/a/1", 1);
    reader.file("/a/b/c/2", 1);
    reader.file("/a/b/3", 1);
    reader.file("/z/4", 1);
    reader.folder("/a/empty");
    const TreeWalk::Result result = walk({{.path = "/a"}, {.path = "/z"}});
    EXPECT_THAT(paths, ElementsAre("/a/1", "/a/b/3", "/a/b/c/2", "/z/4"));
    EXPECT_THAT(reader.readFolders(), ElementsAre("/a", "/a/b", "/a/b/c", "/a/empty", "/z"));
    EXPECT_EQ(result.unreadable, 0);
    EXPECT_THAT(result.rootErrors, ElementsAre(0, 0));
    EXPECT_FALSE(result.cancelled);
    EXPECT_EQ(reader.openNow(), 0);
}

TEST_F(TreeWalkTest, ARootThatIsTheTopOfTheFileSystemGetsNoSecondSlash) {
    reader.file("/1", 1);
    reader.file("/a/2", 1);
    walk({{.path = "/"}});
    EXPECT_THAT(paths, ElementsAre("/1", "/a/2"));
}

TEST_F(TreeWalkTest, LinksAndDevicesAreNeitherHandedOutNorEntered) {
    reader.file("/a/real", 1);
    reader.entry("/a/link", EntryKind::symbolicLink);
    reader.file("/a/link/beyond", 1);
    reader.entry("/a/pipe", EntryKind::other);
    EXPECT_EQ(walk({{.path = "/a"}}).unreadable, 0);
    EXPECT_THAT(paths, ElementsAre("/a/real"));
}

TEST_F(TreeWalkTest, AFolderThatBecomesALinkBeforeItIsOpenedIsNotFollowed) {
    reader.folder("/a/swapped").isLinkMeanwhile = true;
    reader.file("/a/swapped/beyond", 1);
    EXPECT_EQ(walk({{.path = "/a"}}).unreadable, 1);
    EXPECT_THAT(paths, IsEmpty());
}

TEST_F(TreeWalkTest, HiddenNamesAreLeftOutOnlyWhenAsked) {
    reader.file("/a/.hidden/1", 1);
    reader.file("/a/.2", 1);
    reader.file("/a/shown", 1);
    walk({{.path = "/a"}});
    EXPECT_THAT(paths, SizeIs(3));
    paths.clear();
    options.skipHidden = true;
    walk({{.path = "/a"}});
    EXPECT_THAT(paths, ElementsAre("/a/shown"));
}

TEST_F(TreeWalkTest, AFlaggedFolderIsWalkedWhenThePlacesKeepIt) {
    reader.folder("/a/Library").hiddenFlag = true;
    reader.folder("/a/Secret").hiddenFlag = true;
    reader.file("/a/Library/1", 1);
    reader.file("/a/Secret/2", 1);
    // The same name further down is not the one that was named.
    reader.folder("/a/b/Library").hiddenFlag = true;
    reader.file("/a/b/Library/3", 1);
    places.keepFlagged("/a/Library");
    options = {.skipHidden = true, .places = &places};
    walk({{.path = "/a"}});
    EXPECT_THAT(paths, ElementsAre("/a/Library/1"));
}

TEST_F(TreeWalkTest, LeftOutFoldersAreNotOpenedAndLeftOutFilesNotHandedOut) {
    reader.file("/a/Music/1", 1);
    reader.file("/a/Musicals/2", 1);
    reader.file("/a/b/file", 1);
    reader.file("/a/b/file2", 1);
    places.leaveOut("/a/Music");
    places.leaveOut("/a/b/file");
    options.places = &places;
    walk({{.path = "/a"}});
    EXPECT_THAT(paths, ElementsAre("/a/Musicals/2", "/a/b/file2"));
    EXPECT_THAT(reader.readFolders(), ElementsAre("/a", "/a/Musicals", "/a/b"));
}

TEST_F(TreeWalkTest, WhatTheVisitorRefusesIsNotOpened) {
    reader.file("/a/keep/1", 1);
    reader.file("/a/drop/2", 1);
    onEnter = [](WalkedFolder& folder) { return folder.name() != "drop"; };
    walk({{.path = "/a"}});
    EXPECT_THAT(paths, ElementsAre("/a/keep/1"));
    EXPECT_THAT(reader.readFolders(), ElementsAre("/a", "/a/keep"));
}

TEST_F(TreeWalkTest, AMarkIsPassedDownUntilAVisitorChangesIt) {
    reader.file("/a/b/c/file", 1);
    onEnter = [](WalkedFolder& folder) {
        if (folder.name() == "b") folder.mark += 5;
        return true;
    };
    walk({{.path = "/a", .mark = 2}});
    EXPECT_THAT(marks, ElementsAre(7));
}

TEST_F(TreeWalkTest, WhatCannotBeReadIsCountedAndTheRestIsWalked) {
    reader.folder("/a/closed").openError = EACCES;
    reader.file("/a/closed/1", 1);
    reader.entry("/a/broken", EntryKind::unreadable);
    reader.file("/a/half/2", 1);
    reader.folder("/a/half").listError = EIO;
    reader.file("/a/3", 1);
    EXPECT_EQ(walk({{.path = "/a"}}).unreadable, 3);
    EXPECT_THAT(paths, ElementsAre("/a/3", "/a/half/2"));
}

TEST_F(TreeWalkTest, WhatIsNoFileIsMetWithItsOwnSizeWhenItIsAskedFor) {
    reader.folder("/a/folder").logicalSize = 96;
    reader.entry("/a/folder/link", EntryKind::symbolicLink).logicalSize = 7;
    reader.entry("/a/pipe", EntryKind::other);
    walk({{.path = "/a"}});
    EXPECT_THAT(others, ElementsAre("/a/folder 0", "/a/folder/link 0", "/a/pipe 0"));
    others.clear();
    options.sizeEveryEntry = true;
    walk({{.path = "/a"}});
    EXPECT_THAT(others, ElementsAre("/a/folder 96", "/a/folder/link 7", "/a/pipe 0"));
}

TEST_F(TreeWalkTest, ARootThatCannotBeOpenedSaysWhy) {
    reader.file("/a/1", 1);
    reader.folder("/closed").openError = EACCES;
    const TreeWalk::Result result =
        walk({{.path = "/missing"}, {.path = "/a"}, {.path = "/closed"}});
    EXPECT_THAT(result.rootErrors, ElementsAre(ENOENT, 0, EACCES));
    EXPECT_EQ(result.unreadable, 0);
    EXPECT_THAT(paths, ElementsAre("/a/1"));
}

TEST_F(TreeWalkTest, ALinkOnTheWayFromTheResolvedFolderToARootIsRefused) {
    reader.file("/home/.cache/1", 1);
    reader.entry("/home/.local", EntryKind::symbolicLink);
    reader.file("/home/.local/share/2", 1);
    const TreeWalk::Result result = walk({{.path = "/home/.cache", .resolved = "/home"},
                                          {.path = "/home/.local/share", .resolved = "/home"}});
    EXPECT_THAT(result.rootErrors, ElementsAre(0, ELOOP));
    EXPECT_THAT(paths, ElementsAre("/home/.cache/1"));
}

TEST_F(TreeWalkTest, TheFlagEndsTheWalkAtTheNextEntry) {
    for (int index = 0; index < 100; ++index) {
        reader.file("/a/" + std::to_string(index), 1);
    }
    onFile = [&](const std::string&) { cancelled.cancel(); };
    const TreeWalk::Result result = walk({{.path = "/a"}}, 1);
    EXPECT_TRUE(result.cancelled);
    EXPECT_THAT(paths, SizeIs(1));
    EXPECT_EQ(reader.openNow(), 0);
}

TEST_F(TreeWalkTest, AFlagSetBeforehandOpensNothing) {
    reader.file("/a/1", 1);
    cancelled.cancel();
    EXPECT_TRUE(walk({{.path = "/a"}}).cancelled);
    EXPECT_EQ(reader.opened(), 0);
}

TEST_F(TreeWalkTest, WhatAVisitorThrowsReachesTheCaller) {
    for (int index = 0; index < 50; ++index) {
        reader.file("/a/" + std::to_string(index) + "/file", 1);
    }
    onFile = [](const std::string& path) {
        if (path == "/a/31/file") throw std::runtime_error("full");
    };
    EXPECT_THROW(walk({{.path = "/a"}}), std::runtime_error);
    EXPECT_EQ(reader.openNow(), 0);
}

TEST_F(TreeWalkTest, WhatTheTickThrowsEndsTheWalk) {
    reader.file("/a/1", 1);
    std::atomic<bool> ticked = false;
    reader.beforeRead = [&](const FakeDirectoryReader::Node&) { ticked.wait(false); };
    tick = [&] {
        ticked = true;
        ticked.notify_all();
        throw std::runtime_error("page gone");
    };
    EXPECT_THROW(walk({{.path = "/a"}}), std::runtime_error);
}

}  // namespace
}  // namespace velto
