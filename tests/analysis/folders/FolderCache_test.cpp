#include "analysis/folders/FolderCache.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/TestPlatform.h"

namespace velto {
namespace {

using Entry = FolderTreeBuilder::Entry;
constexpr std::string_view home = "/home/ana";

/// Every state, the largest numbers, names of any bytes.
MeasuredFolders family(std::string_view top = home) {
    const auto folder = [](std::uint32_t number, std::uint32_t parent, std::string_view name,
                           FolderFacts facts) {
        return Entry{.number = number, .parent = parent, .name = name, .facts = facts};
    };
    MeasuredFolders folders;
    folders.tree = std::make_shared<const FolderTree>(FolderTreeBuilder::build({
        folder(0, FolderTreeBuilder::noParent, top,
               {.inode = UINT64_MAX, .ownBytes = 4096, .latest = UINT32_MAX}),
        folder(1, FolderTreeBuilder::noParent, "/mnt/cache",
               {.inode = 2, .ownBytes = 126, .ownFiles = 127}),
        folder(2, 0, "Music", {.ownBytes = 1LL << 50, .ownFiles = UINT32_MAX, .unreadable = 128}),
        folder(3, 0, ".cache", {.state = FolderState::otherVolume}),
        folder(4, 0, "\xFF\n\x01", {.unreadable = 1, .state = FolderState::unreadable}),
        folder(5, 2, "a", {.state = FolderState::withheld}),
        folder(6, 2, "b", {.state = FolderState::excluded}),
        folder(7, 6, "deep", {.state = FolderState::own}),
        folder(8, 7, std::string_view("0\x7F"), {.state = FolderState::alreadyWalked}),
    }));
    folders.measured = 1'700'000'000.25;
    folders.hiddenBytes = 123'456'789'012;
    return folders;
}

void expectSame(const MeasuredFolders& one, const MeasuredFolders& other) {
    EXPECT_EQ(one.measured, other.measured);
    EXPECT_EQ(one.hiddenBytes, other.hiddenBytes);
    ASSERT_EQ(one.tree->size(), other.tree->size());
    ASSERT_EQ(one.tree->rootCount(), other.tree->rootCount());
    for (FolderTree::Index index = 0; index < one.tree->size(); ++index) {
        const FolderTree::Folder& left = (*one.tree)[index];
        const FolderTree::Folder& right = (*other.tree)[index];
        EXPECT_EQ(one.tree->path(index), other.tree->path(index));
        EXPECT_EQ(left.bytes, right.bytes);
        EXPECT_EQ(left.files, right.files);
        EXPECT_EQ(left.unreadable, right.unreadable);
        EXPECT_EQ(left.latest, right.latest);
        EXPECT_EQ(left.own.inode, right.own.inode);
        EXPECT_EQ(left.own.ownBytes, right.own.ownBytes);
        EXPECT_EQ(left.own.ownFiles, right.own.ownFiles);
        EXPECT_EQ(left.own.state, right.own.state);
        EXPECT_EQ(left.parent, right.parent);
        EXPECT_EQ(left.firstChild, right.firstChild);
    }
}

/// The file of `content` with the checksum that fits it, as somebody would forge it.
std::string signedAnew(std::string content) {
    content.resize(content.size() - 16);
    std::uint64_t sum = 0xCBF29CE484222325;
    for (const char byte : content)
        sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(sum));
    return content + digits;
}

TEST(FolderFile, WhatWasWrittenReadsTheSame) {
    const MeasuredFolders folders = family();
    const std::string content = folder_file::encode(folders);
    EXPECT_EQ(content.find('\0'), std::string::npos) << "no file of the program's own has one";
    const auto read = folder_file::decode(content, home);
    ASSERT_TRUE(read);
    expectSame(*read, folders);
    EXPECT_EQ(folder_file::encode(*read), content);
}

TEST(FolderFile, ATreeOfNothingReadsTheSame) {
    MeasuredFolders folders;
    folders.tree = std::make_shared<const FolderTree>();
    const auto read = folder_file::decode(folder_file::encode(folders), home);
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->tree->empty());
}

TEST(FolderFile, AnyByteThatIsNotAsItWasMakesTheFileAbsent) {
    const std::string content = folder_file::encode(family());
    for (std::size_t place = 0; place < content.size(); ++place) {
        for (const int change : {0x01, 0x80, 0xFF}) {
            std::string damaged = content;
            damaged[place] = static_cast<char>(damaged[place] ^ change);
            EXPECT_FALSE(folder_file::decode(damaged, home)) << "byte " << place;
        }
    }
}

TEST(FolderFile, AFileOfAnyOtherLengthIsAbsent) {
    const std::string content = folder_file::encode(family());
    for (std::size_t length = 0; length < content.size(); ++length)
        EXPECT_FALSE(folder_file::decode(content.substr(0, length), home)) << length;
    EXPECT_FALSE(folder_file::decode(content + "0", home));
    EXPECT_FALSE(folder_file::decode(content + content, home));
}

/// The checksum tells damage, not intent: what fits it is judged all the same.
TEST(FolderFile, AForgedFileEitherReadsAsATreeOrIsAbsent) {
    const std::string content = folder_file::encode(family());
    int absent = 0;
    for (std::size_t place = 16; place + 16 < content.size(); ++place) {
        const auto stored = static_cast<unsigned char>(content[place]);
        for (const int byte :
             {stored + 1, stored - 1, stored ^ 0x80, 0x00, 0x01, 0x7F, 0xFF, 0x2F}) {
            std::string forged = content;
            forged[place] = static_cast<char>(byte);
            const auto read = folder_file::decode(signedAnew(forged), home);
            if (!read) {
                ++absent;
                continue;
            }
            const FolderTree& tree = *read->tree;
            for (FolderTree::Index index = tree.rootCount(); index < tree.size(); ++index) {
                const std::string_view name = tree.name(index);
                ASSERT_TRUE(!name.empty() && name != "." && name != ".." &&
                            name.find('/') == std::string_view::npos)
                    << place << ' ' << byte;
                ASSERT_LT(tree[index].parent, index);
                ASSERT_EQ(tree.find(tree.path(index)), index) << place << ' ' << byte;
            }
            ASSERT_LE(static_cast<int>(tree[0].own.state), 6);
        }
    }
    EXPECT_GT(absent, 500) << "most of it is not to be changed";
    for (std::size_t length = 16; length < content.size(); ++length)
        EXPECT_FALSE(folder_file::decode(signedAnew(content.substr(0, length)), home)) << length;
}

TEST(FolderFile, TheFoldersOfAnotherHomeAreAbsent) {
    EXPECT_FALSE(folder_file::decode(folder_file::encode(family("/home/eva")), home));
}

struct FolderCacheTest : testing::Test {
    TestPlatform machine;
    FolderCache cache{*machine.platform.files, machine.platform.layout};
    const std::string path = "Library/Application Support/Velto/folders.bin";
};

TEST_F(FolderCacheTest, WhatWasSavedComesBack) {
    EXPECT_FALSE(cache.load());
    const MeasuredFolders folders = family(machine.home.path());
    cache.save(family(machine.home.path()));
    cache.save(folders);
    ASSERT_TRUE(cache.load());
    expectSame(*cache.load(), folders);
    EXPECT_EQ(machine.platform.files->list(machine.platform.layout.dataFolder).size(), 1U);
}

TEST_F(FolderCacheTest, WhatIsNoFileOfFoldersIsAbsent) {
    for (const char* content :
         {"", "{}", "Velto folders 1\n", "Velto folders 2\nxxxxxxxxxxxxxxxx"}) {
        machine.home.text(path, content);
        EXPECT_FALSE(cache.load()) << content;
    }
    machine.home.sparse(path, 4'000'000'000);
    EXPECT_FALSE(cache.load());
    machine.platform.files->removeAll(machine.home.path(path));
    cache.save(family(machine.home.path()));
    const std::string elsewhere = machine.home.path("elsewhere");
    ASSERT_EQ(::rename(machine.home.path(path).c_str(), elsewhere.c_str()), 0);
    machine.home.link(path, elsewhere);
    EXPECT_FALSE(cache.load()) << "a link is refused";
}

TEST_F(FolderCacheTest, AFolderOutOfReachIsSilent) {
    machine.home.text("Library/Application Support", "a file where the folder should be");
    cache.save(family(machine.home.path()));
    EXPECT_FALSE(cache.load());
}

}  // namespace
}  // namespace velto
