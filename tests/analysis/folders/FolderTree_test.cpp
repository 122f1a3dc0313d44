#include "analysis/folders/FolderTree.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace velto {
namespace {

using Entry = FolderTreeBuilder::Entry;
constexpr auto noParent = FolderTreeBuilder::noParent;

Entry folder(std::uint32_t number, std::uint32_t parent, std::string_view name,
             std::int64_t bytes = 0, std::uint32_t files = 0) {
    Entry entry{.number = number, .parent = parent, .name = name, .facts = {}};
    entry.facts.ownBytes = bytes;
    entry.facts.ownFiles = files;
    return entry;
}

/// Given in an order in which no walk would find them.
FolderTree smallTree() {
    return FolderTreeBuilder::build({
        folder(4, 1, "b", 40, 4),
        folder(0, noParent, "/home/ana", 1, 1),
        folder(3, 1, "a", 30, 3),
        folder(2, noParent, "/mnt/data", 2, 2),
        folder(1, 0, "Movies", 10, 1),
        folder(5, 0, ".cache", 50, 5),
        folder(6, 4, "deep", 60, 6),
    });
}

std::vector<std::string> childNames(const FolderTree& tree, FolderTree::Index index) {
    std::vector<std::string> names;
    const auto [first, last] = tree.children(index);
    for (FolderTree::Index child = first; child < last; ++child)
        names.emplace_back(tree.name(child));
    return names;
}

TEST(FolderTree, EachFolderHoldsWhatLiesBelowIt) {
    const FolderTree tree = smallTree();
    ASSERT_EQ(tree.size(), 7U);
    EXPECT_EQ(tree[tree.find("/home/ana")].bytes, 191);
    EXPECT_EQ(tree[tree.find("/home/ana")].files, 20U);
    EXPECT_EQ(tree[tree.find("/home/ana/Movies")].bytes, 140);
    EXPECT_EQ(tree[tree.find("/home/ana/Movies/b")].bytes, 100);
    EXPECT_EQ(tree[tree.find("/home/ana/Movies/b")].own.ownBytes, 40);
    EXPECT_EQ(tree[tree.find("/mnt/data")].bytes, 2);
}

TEST(FolderTree, FoldersOfAFolderStandInTheOrderOfTheirNames) {
    const FolderTree tree = smallTree();
    ASSERT_EQ(tree.rootCount(), 2U);
    EXPECT_EQ(tree.name(0), "/home/ana");
    EXPECT_EQ(tree.name(1), "/mnt/data");
    EXPECT_EQ(childNames(tree, 0), (std::vector<std::string>{".cache", "Movies"}));
    EXPECT_EQ(childNames(tree, tree.find("/home/ana/Movies")),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(childNames(tree, tree.find("/home/ana/Movies/b/deep")).empty());
    EXPECT_TRUE(childNames(tree, 1).empty());
}

TEST(FolderTree, APathIsFoundAgain) {
    const FolderTree tree = smallTree();
    for (FolderTree::Index index = 0; index < tree.size(); ++index)
        EXPECT_EQ(tree.find(tree.path(index)), index) << tree.path(index);
    EXPECT_EQ(tree.find("/home/ana/Movie"), FolderTree::none);
    EXPECT_EQ(tree.find("/home/ana/Movies/c"), FolderTree::none);
    EXPECT_EQ(tree.find("/home/an"), FolderTree::none);
    EXPECT_EQ(tree.find("/home/ana2"), FolderTree::none);
    EXPECT_EQ(tree.find(""), FolderTree::none);
}

TEST(FolderTree, TheRootOfTheDiskHasNoSlashTooMany) {
    const FolderTree tree =
        FolderTreeBuilder::build({folder(0, noParent, "/"), folder(1, 0, "srv")});
    EXPECT_EQ(tree.path(1), "/srv");
    EXPECT_EQ(tree.find("/srv"), 1U);
    EXPECT_EQ(tree.find("/"), 0U);
}

TEST(FolderTree, WhatCouldNotBeReadIsCountedUpwards) {
    std::vector<Entry> entries{folder(0, noParent, "/h"), folder(1, 0, "a"),
                               folder(2, 1, "locked")};
    entries[1].facts.unreadable = 3;
    entries[2].facts.state = FolderState::unreadable;
    entries[2].facts.latest = 7;
    const FolderTree tree = FolderTreeBuilder::build(entries);
    EXPECT_EQ(tree[0].unreadable, 4U);
    EXPECT_EQ(tree[tree.find("/h/a/locked")].unreadable, 1U);
    EXPECT_EQ(tree[0].latest, 7U);
    EXPECT_EQ(tree[0].own.latest, 0U);
}

TEST(FolderTree, AFolderWithoutItsParentIsLeftOut) {
    const FolderTree tree = FolderTreeBuilder::build(
        {folder(0, noParent, "/h"), folder(1, 7, "lost", 5), folder(2, 1, "below", 5)});
    EXPECT_EQ(tree.size(), 1U);
    EXPECT_EQ(tree[0].bytes, 0);
}

TEST(FolderTree, AFolderThatWasListedTwiceIsThereOnce) {
    const FolderTree tree = FolderTreeBuilder::build(
        {folder(0, noParent, "/h"), folder(1, 0, "a", 5), folder(2, 0, "a", 7),
         folder(3, 1, "x", 10), folder(4, 2, "x", 10), folder(5, 0, "b", 1)});
    ASSERT_EQ(tree.size(), 4U);
    EXPECT_EQ(childNames(tree, 0), (std::vector<std::string>{"a", "b"}));
    const std::int64_t a = tree[tree.find("/h/a")].bytes;
    EXPECT_TRUE(a == 15 || a == 17) << a;
    EXPECT_EQ(tree[0].bytes, a + 1);
}

TEST(FolderTree, NothingIsATreeToo) {
    const FolderTree tree = FolderTreeBuilder::build({});
    EXPECT_TRUE(tree.empty());
    EXPECT_EQ(tree.find("/h"), FolderTree::none);
}

}  // namespace
}  // namespace velto
