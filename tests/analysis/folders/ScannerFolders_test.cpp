#include <algorithm>
#include <cerrno>

#include "../ScannerFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

/// The tree that a walk makes, over folders of the test's making: those take up nothing unless the
/// test says so.
struct ScannerFolders : ScannerFixture {
    void useFreeDesktop() {
        machine.platform.layout = HomeLayout::freedesktop(
            home, [](const std::string&) { return std::nullopt; }, "");
    }

    const FolderTree& tree() const { return *scanner.folders(); }
    const FolderTree::Folder& measured(std::string_view path) const {
        const auto index = tree().find(path.empty() ? home : at(path));
        if (index != FolderTree::none) return tree()[index];
        ADD_FAILURE() << path << " is not in the tree";
        return tree()[0];
    }
    std::int64_t bytes(std::string_view path) const { return measured(path).bytes; }
    FolderState state(std::string_view path) const { return measured(path).own.state; }

    /// Another name of a file that is there.
    void link(FakeDirectoryReader::Node& node, std::string_view path) {
        FakeDirectoryReader::Node& other = file(path, node.allocatedSize);
        other.inode = node.inode;
        node.links = other.links = std::max(node.links, 1U) + 1;
    }
};

TEST_F(ScannerFolders, EveryFolderHoldsWhatLiesInItAndBelow) {
    folder("Music").allocatedSize = 4096;
    folder("Music/albums/one").allocatedSize = 8192;
    file("Music/a.mp3", 100);
    file("Music/empty", 0);
    file("Music/albums/one/b.mp3", 1'000);
    file("notes", -1, 7);
    reader.entry(at("Music/link"), EntryKind::symbolicLink).allocatedSize = 50;
    scan();
    EXPECT_EQ(bytes(""), 4096 + 8192 + 100 + 1'000 + 7 + 50);
    EXPECT_EQ(bytes("Music"), 4096 + 8192 + 100 + 1'000 + 50);
    EXPECT_EQ(measured("Music").own.ownBytes, 4096 + 100 + 50);
    EXPECT_EQ(measured("Music").own.ownFiles, 2U);
    EXPECT_EQ(measured("Music").files, 3U) << "those without bytes too, links not";
    EXPECT_EQ(bytes("Music/albums/one"), 8192 + 1'000);
    EXPECT_EQ(measured("Music").own.inode, folder("Music").inode);
}

TEST_F(ScannerFolders, TheLastChangeIsThatOfTheFolderOrOfAnythingInIt) {
    folder("Music").modified = 1'000.9;
    file("Music/a", 1).modified = 2'000.9;
    folder("Music/below").modified = 5'000;
    folder("Films").modified = 3'000;
    file("Films/a", 1).modified = -5;
    file("Films/b", 1).modified = 1e18;
    scan();
    EXPECT_EQ(measured("Music").own.latest, 2'000U);
    EXPECT_EQ(measured("Music").latest, 5'000U);
    EXPECT_EQ(measured("Films").own.latest, UINT32_MAX);
}

TEST_F(ScannerFolders, AMacsHiddenFilesAreMeasuredAndBelongToNoCategory) {
    file("Music/a", 1);
    file(".profile", 10);
    file(".config/a", 100);
    file(".config/deep/a", 400'000'000);
    folder("Music/flagged").hiddenFlag = true;
    file("Music/flagged/a", 10'000);
    folder("Library").hiddenFlag = true;
    file("Library/Caches/a", 100'000);
    folder(".closed").openError = EACCES;
    reader.entry(at("Music/.gone"), EntryKind::unreadable);
    scan();
    EXPECT_EQ(scanner.filesScanned, 2);
    EXPECT_EQ(scanner.bytesScanned, 100'001);
    EXPECT_THAT(scanner.catBytes, ElementsAre(Pair("apps", 100'000), Pair("musica", 1)));
    EXPECT_THAT(scanner.fileList, IsEmpty());
    EXPECT_THAT(scanner.catTop, IsEmpty());
    EXPECT_EQ(scanner.hiddenBytes(), 400'010'110);
    EXPECT_EQ(bytes(""), 400'110'111);
    EXPECT_EQ(bytes(".config"), 400'000'100);
    EXPECT_EQ(measured("").unreadable, 2U);
    for (const std::string& line : machine.log.lines())
        EXPECT_EQ(line.find("no legibles"), std::string::npos) << "what counts was all read";
}

TEST_F(ScannerFolders, AFreeDesktopsHiddenFoldersAreLibrariesInWhichAllCounts) {
    useFreeDesktop();
    file(".cargo/registry/a", 1);
    file(".cargo/.crates", 10);
    file(".cargo/registry/.index/a", 100);
    file(".cache/.thumbs/a.png", 1'000);
    file(".bashrc", 10'000);
    file("Projects/.git/a", 100'000);
    file("Projects/.git/deep/a.mp3", 1'000'000);
    file("Projects/code.mp3", 10'000'000);
    scan();
    EXPECT_THAT(scanner.catBytes, ElementsAre(Pair("apps", 1'111), Pair("musica", 10'000'000)));
    EXPECT_EQ(scanner.filesScanned, 5);
    EXPECT_EQ(scanner.hiddenBytes(), 1'110'000);
    EXPECT_EQ(bytes(""), 11'111'111);
}

TEST_F(ScannerFolders, ALibraryBelowSomethingHiddenCounts) {
    machine.platform.layout = HomeLayout::freedesktop(
        home,
        [&](const std::string& name) {
            return name == "XDG_CACHE_HOME" ? std::optional(at("Projects/.keep/cache"))
                                            : std::nullopt;
        },
        "");
    file("Projects/.keep/cache/a", 1);
    file("Projects/.keep/other", 10);
    scan();
    EXPECT_THAT(scanner.catBytes, ElementsAre(Pair("apps", 1)));
}

TEST_F(ScannerFolders, WhatIsLeftOutIsNamedWithItsReason) {
    file("Desktop/a", 1);
    file("Music/Old.musiclibrary/a", 1);
    file("Movies/kept/a", 1);
    file("Movies/excluded.txt", 1);
    file("Library/Application Support/Velto/Trash/a", 1);
    folder("Movies/closed").openError = EACCES;
    folder("Movies/closed").allocatedSize = 4096;
    folder("Movies/broken").listError = EIO;
    file("Movies/broken/a", 5);
    reader.entry(at("Movies/gone"), EntryKind::unreadable);
    scan({at("Movies/kept"), at("Movies/excluded.txt"), at("Desktop")});
    EXPECT_EQ(state("Desktop"), FolderState::excluded) << "what the user has said comes first";
    EXPECT_EQ(state("Music/Old.musiclibrary"), FolderState::withheld);
    EXPECT_EQ(state("Movies/kept"), FolderState::excluded);
    EXPECT_EQ(state("Library/Application Support/Velto"), FolderState::own);
    EXPECT_EQ(state("Movies/closed"), FolderState::unreadable);
    EXPECT_EQ(bytes("Movies/closed"), 4096) << "its listing is known";
    EXPECT_EQ(state("Movies/broken"), FolderState::measured);
    EXPECT_FALSE(measured("Movies/broken").own.isListedWhole);
    EXPECT_TRUE(measured("Movies").own.isListedWhole);
    EXPECT_EQ(bytes("Movies/broken"), 5);
    EXPECT_EQ(measured("Movies/broken").unreadable, 1U);
    EXPECT_EQ(measured("Movies").unreadable, 3U);
    EXPECT_EQ(tree().find(at("Movies/excluded.txt")), FolderTree::none) << "no folder";
    EXPECT_EQ(bytes(""), 4096 + 5);
}

TEST_F(ScannerFolders, AFolderThatIsRemovedDuringTheWalkIsNeitherThereNorUnreadable) {
    file("Movies/a", 5);
    folder("Movies/gone").openError = ENOENT;
    folder("Movies/gone").allocatedSize = 4096;
    folder("Movies/gone").modified = 9'000;
    file("Movies/next/b", 7);
    scan();
    EXPECT_EQ(tree().find(at("Movies/gone")), FolderTree::none);
    EXPECT_EQ(bytes(""), 12) << "no other folder has taken over what was known of it";
    EXPECT_EQ(measured("").unreadable, 0U);
    EXPECT_EQ(measured("Movies").latest, 0U);
}

TEST_F(ScannerFolders, AnotherVolumeIsNamedAndNotEntered) {
    file("projects/own", 1);
    folder("projects/disk").device = 7;
    folder("projects/disk").allocatedSize = 4096;
    file("projects/disk/deep/a", 10);
    scan();
    EXPECT_EQ(state("projects/disk"), FolderState::otherVolume);
    EXPECT_EQ(bytes(""), 1);
    EXPECT_EQ(scanner.filesScanned, 1);
    EXPECT_THAT(reader.readFolders(), testing::Not(testing::Contains(at("projects/disk"))));
}

TEST_F(ScannerFolders, ALibraryOnAnotherVolumeIsARootOfItsOwn) {
    useFreeDesktop();
    file("projects/own", 1);
    folder(".cache").device = 7;
    folder(".cache").allocatedSize = 4096;
    file(".cache/app/a", 10);
    scan();
    EXPECT_EQ(scanner.catBytes["apps"], 10);
    EXPECT_EQ(bytes(""), 1) << "the home's volume alone";
    EXPECT_EQ(bytes(".cache"), 4096 + 10);
    EXPECT_EQ(state(".cache"), FolderState::measured);
    const auto [first, last] = tree().children(0);
    ASSERT_EQ(last - first, 2U);
    EXPECT_EQ(tree().name(first), ".cache");
    EXPECT_EQ(tree()[first].own.state, FolderState::otherVolume);
}

TEST_F(ScannerFolders, AFolderBoundToASecondPlaceIsWalkedAtItsFirstOne) {
    file("z/real/deep/a", 1);
    FakeDirectoryReader::Node& bound = folder("a/bound");
    bound.mount = 9;
    bound.inode = folder("z/real").inode;
    file("a/bound/deep/a", 1);
    for (int run = 0; run < 8; ++run) {
        scan();
        EXPECT_EQ(state("a/bound"), FolderState::alreadyWalked);
        EXPECT_EQ(bytes(""), 1);
        EXPECT_EQ(scanner.filesScanned, 1);
    }
}

TEST_F(ScannerFolders, OfTwoPlacesOfAFolderFromElsewhereTheFirstIsWalked) {
    for (const char* path : {"b/bound", "a/bound"}) {
        folder(path).mount = path[0];
        folder(path).inode = 77'777;
        folder(path).allocatedSize = 4096;
        file(std::string(path) + "/below/a.mp3", 10);
        file(std::string(path) + "/.hidden", 100);
    }
    for (int run = 0; run < 8; ++run) {
        scan();
        EXPECT_EQ(state("a/bound"), FolderState::measured);
        EXPECT_EQ(state("b/bound"), FolderState::alreadyWalked);
        EXPECT_EQ(bytes("a/bound"), 4096 + 110);
        EXPECT_EQ(bytes("a"), 4096 + 110);
        EXPECT_EQ(bytes(""), 4096 + 110);
        EXPECT_THAT(scanner.catBytes, ElementsAre(Pair("musica", 10)));
    }
}

TEST_F(ScannerFolders, AMountThatHoldsTheHomeDoesNotLeadAroundInACircle) {
    file("projects/a", 1);
    FakeDirectoryReader::Node& top = folder("projects/top");
    top.mount = 9;
    top.inode = 77'777;
    file("projects/top/other", 10);
    folder("projects/top/home").inode = reader.folder(home).inode;
    file("projects/top/home/projects/a", 1);
    scan();
    EXPECT_EQ(state("projects/top/home"), FolderState::alreadyWalked);
    EXPECT_EQ(bytes(""), 11);
    EXPECT_EQ(scanner.filesScanned, 2);
}

TEST_F(ScannerFolders, AMountInsideABoundFolderIsFoundToo) {
    folder("a/bound").mount = 8;
    file("a/bound/x", 1);
    folder("a/bound/inner").mount = 9;
    file("a/bound/inner/y", 10);
    folder("a/bound/disk").device = 3;
    file("a/bound/disk/z", 100);
    scan();
    EXPECT_EQ(bytes("a/bound"), 11);
    EXPECT_EQ(bytes("a/bound/inner"), 10);
    EXPECT_EQ(state("a/bound/disk"), FolderState::otherVolume);
}

TEST_F(ScannerFolders, ABoundFolderThatCannotBeOpenedIsNamed) {
    folder("a/bound").mount = 8;
    folder("a/bound").openError = EACCES;
    scan();
    EXPECT_EQ(state("a/bound"), FolderState::unreadable);
    EXPECT_TRUE(machine.log.holds("Velto escáner: 1 elementos no legibles (omitidos)"));
}

TEST_F(ScannerFolders, AFileWithSeveralNamesCountsOnceForTheFirstInTheOrderOfPaths) {
    // "b-/" stands before "b/", and what lies below "a/b" before "a/z".
    link(file("b/x", 1), "b-/y");
    link(file("a/z", 10), "a/b/c");
    link(file("c/one", 100), "c/other");
    FakeDirectoryReader::Node& three = file("e/1", 1'000);
    link(three, "d/deep/down/2");
    link(three, "f");
    for (int run = 0; run < 8; ++run) {
        scan();
        EXPECT_EQ(bytes(""), 1'111);
        EXPECT_EQ(measured("").files, 4U);
        EXPECT_EQ(bytes("b"), 0);
        EXPECT_EQ(bytes("b-"), 1);
        EXPECT_EQ(measured("a").own.ownBytes, 0);
        EXPECT_EQ(bytes("a/b"), 10);
        EXPECT_EQ(bytes("c"), 100);
        EXPECT_EQ(measured("c").own.ownFiles, 1U);
        EXPECT_EQ(bytes("d/deep/down"), 1'000);
        EXPECT_EQ(scanner.filesScanned, 9) << "the categories count each name";
    }
}

TEST_F(ScannerFolders, AFileOfWhichOneNameIsHiddenIsNotHidden) {
    link(file("Music/a", 10), ".backup/a");
    link(file(".backup/b", 100), ".other/b");
    scan();
    EXPECT_EQ(scanner.hiddenBytes(), 100);
}

TEST_F(ScannerFolders, SizesThatNoDiskHoldsDoNotWrap) {
    file(".hidden/a", INT64_MAX);
    file(".hidden/b", INT64_MAX);
    link(file(".hidden/c", INT64_MAX), ".hidden/d");
    file(".other/a", INT64_MAX);
    scan();
    EXPECT_EQ(bytes(".hidden"), INT64_MAX);
    EXPECT_EQ(bytes(""), INT64_MAX);
    EXPECT_EQ(scanner.hiddenBytes(), INT64_MAX);
}

TEST_F(ScannerFolders, ACancelledWalkHasNoTree) {
    file("a", 1);
    scan();
    ASSERT_TRUE(scanner.folders());
    cancelled.cancel();
    EXPECT_THROW(scan(), CancellationError);
    EXPECT_FALSE(scanner.folders());
}

TEST_F(ScannerFolders, AnExcludedHomeHasNoFolders) {
    file("a", 1);
    scan({home});
    ASSERT_TRUE(scanner.folders());
    EXPECT_TRUE(tree().empty());
}

}  // namespace
}  // namespace velto
