#include "analysis/growth/GrowthSnapshot.h"

#include <gtest/gtest.h>

#include <random>

#include "analysis/growth/MadeTree.h"
#include "platform/Digest.h"
#include "support/TempHome.h"

namespace velto {
namespace {

MadeTree someTree() {
    MadeTree made;
    made.add("Movies/Boda", 300_MB).add("Movies", 2_MB).add("Music/a/b", 5_MB).add("tiny", 900_KB);
    made.add("caf\xe9", 3_MB).add("locked/in/here", 0);
    made.state("locked/in/here", FolderState::unreadable);
    made.facts("Movies").unreadable = 3;
    return made;
}

std::vector<std::string> pathsOf(const GrowthSnapshot& snapshot) {
    std::vector<std::string> paths;
    for (GrowthSnapshot::Index index = 0; index < snapshot.size(); ++index)
        paths.push_back(snapshot.path(index).substr(std::string(MadeTree::home).size()));
    return paths;
}

/// With the checksum that goes with it.
std::string sealed(const std::string& body) {
    const auto digest = makeDigest(DigestKind::sha256);
    digest->update(std::as_bytes(std::span(body)));
    return "velto-growth 1 " + digest->finish() + "\n" + body;
}
std::string bodyOf(const std::string& text) { return text.substr(text.find('\n') + 1); }

TEST(GrowthSnapshot, KeepsLargeFoldersAndWhatWasNotMeasured) {
    const GrowthSnapshot snapshot = someTree().snapshot();
    EXPECT_EQ(pathsOf(snapshot), (std::vector<std::string>{
                                     "", "/Movies", "/Music", "/caf\xe9", "/locked", "/Movies/Boda",
                                     "/Music/a", "/locked/in", "/Music/a/b", "/locked/in/here"}));
    EXPECT_EQ(snapshot[0].bytes, 310'900'000) << "small folders count to what holds them";
    EXPECT_EQ(snapshot.ownBytes(0), 900'000);
    EXPECT_EQ(snapshot.find("/home/ana/tiny"), GrowthSnapshot::none);
    EXPECT_EQ(snapshot[snapshot.find("/home/ana/locked/in/here")].state, FolderState::unreadable);
}

TEST(GrowthSnapshot, WhatWasReadInPartIsNoSmallFolder) {
    MadeTree made;
    made.add("Backup", 4096).add("Media/a", 5_MB).facts("Backup").unreadable = 1;
    made.facts("Media").unreadable = 1;
    made.facts("Media").isListedWhole = false;
    const GrowthSnapshot snapshot = made.snapshot();
    const auto backup = snapshot.find("/home/ana/Backup");
    ASSERT_NE(backup, GrowthSnapshot::none);
    EXPECT_EQ(snapshot[backup].state, FolderState::measured);
    const auto media = snapshot.find("/home/ana/Media");
    EXPECT_EQ(snapshot[media].state, FolderState::unreadable)
        << "nobody knows what is gone from it";
}

TEST(GrowthSnapshot, SizesThatNoDiskHoldsAreNotWritten) {
    EXPECT_FALSE(MadeTree().add("a", INT64_MAX).snapshot().encoded());
    const MadeTree made = MadeTree().add("a", 5_MB);
    const GrowthFacts facts{.moment = 1, .leftOut = {}, .volumes = {}, .smallest = INT64_MAX / 4};
    const auto text = GrowthSnapshot::of(made.tree(), facts).encoded();
    ASSERT_TRUE(text);
    EXPECT_FALSE(GrowthSnapshot::decoded(*text)) << "ten times as much would wrap";
}

TEST(GrowthSnapshot, ReadsBackWhatItHasWritten) {
    const GrowthSnapshot snapshot =
        someTree().snapshot(1'800'000'123, {"/home/ana/Films", "/home/ana/x\xff"});
    const auto text = snapshot.encoded();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->find('\0'), std::string::npos);
    const auto read = GrowthSnapshot::decoded(*text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->encoded(), text);
    EXPECT_EQ(pathsOf(*read), pathsOf(snapshot));
    EXPECT_EQ(read->facts().moment, 1'800'000'123);
    EXPECT_EQ(read->facts().leftOut, snapshot.facts().leftOut);
    EXPECT_EQ(read->facts().volumes, std::vector<std::string>{"disk"});
    const auto movies = read->find("/home/ana/Movies");
    EXPECT_EQ((*read)[movies].unreadable, 3U);
    EXPECT_EQ((*read)[movies].inode, snapshot[snapshot.find("/home/ana/Movies")].inode);
    EXPECT_EQ((*read)[movies].parent, 0U);
}

TEST(GrowthSnapshot, ADamagedTextIsNoSnapshot) {
    const std::string text = *someTree().snapshot().encoded();
    for (std::size_t index = 0; index < text.size(); ++index) {
        std::string damaged = text;
        damaged[index] = static_cast<char>(damaged[index] ^ 0x11);
        EXPECT_FALSE(GrowthSnapshot::decoded(damaged)) << index;
        EXPECT_FALSE(GrowthSnapshot::decoded(text.substr(0, index))) << index;
    }
    EXPECT_FALSE(GrowthSnapshot::decoded(text + "\x01"));
    EXPECT_FALSE(GrowthSnapshot::decoded(""));
}

TEST(GrowthSnapshot, AWrongClaimWithARightChecksumIsRefusedOrIsATree) {
    const std::string body = bodyOf(*someTree().snapshot(1, {"/home/ana/Films"}).encoded());
    ASSERT_TRUE(GrowthSnapshot::decoded(sealed(body)));
    std::mt19937 random(7);
    int refused = 0;
    for (int round = 0; round < 3'000; ++round) {
        std::string changed = body;
        for (std::size_t count = 1 + random() % 4; count > 0; --count)
            changed[random() % changed.size()] = static_cast<char>(random() % 256);
        const auto read = GrowthSnapshot::decoded(sealed(changed));
        if (!read) {
            ++refused;
            continue;
        }
        for (GrowthSnapshot::Index index = 0; index < read->size(); ++index) {
            ASSERT_GE(read->ownBytes(index), 0);
            ASSERT_EQ(read->find(read->path(index)), index);
        }
    }
    EXPECT_GT(refused, 1'500);
}

TEST(GrowthSnapshot, ClaimsOfMoreThanThereIsTakeNoMemory) {
    // moment, smallest, nothing left out, one root without a volume, and a million folders
    const std::string million = "\xC1\x84\x3D";
    EXPECT_FALSE(GrowthSnapshot::decoded(sealed(std::string("\x02\x02\x01\x02\x01") + million)));
    EXPECT_FALSE(
        GrowthSnapshot::decoded(sealed("\x02\x02\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F")));
}

TEST(GrowthSnapshot, ATreeOfNothingButTheHomeIsKept) {
    const auto text = MadeTree().snapshot().encoded();
    ASSERT_TRUE(text);
    EXPECT_EQ(GrowthSnapshot::decoded(*text)->size(), 1U);
}

}  // namespace
}  // namespace velto
