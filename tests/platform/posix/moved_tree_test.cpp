// What a file or a folder is after it was moved to another volume: what it was before.

#include <fcntl.h>
#include <sys/resource.h>

#include <fmt/format.h>

#include <initializer_list>

#include "platform/posix/Descriptor.h"
#include "platform/posix/MoveWorld.h"
#include "support/exhaustive.h"
#include "support/extended_attributes.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

class MovedTree : public MoveBetweenVolumes {
protected:
    /// Moves there and back; whole and nowhere else each time.
    void expectMovesWhole() {
        const std::string text = sourceText();
        ASSERT_EQ(move(), 0);
        EXPECT_EQ(targetText(), text);
        EXPECT_TRUE(isOnlyAtTarget());
        ASSERT_EQ(moveBack(), 0);
        EXPECT_EQ(sourceText(), text);
        EXPECT_TRUE(isOnlyAtSource());
    }
    /// Of both volumes.
    bool takeAnyBytes() const {
        return takesNamesOfAnyBytes(source.path()) && takesNamesOfAnyBytes(target.path());
    }
    bool tellSpellingsApart() const {
        return tellsCaseApart(source.path()) && tellsCaseApart(target.path());
    }
};

TEST_F(MovedTree, AFileKeepsItsContent) {
    for (const std::int64_t size : {0, 1, 4096, 1'048'576, 1'048'577, 3'000'001}) {
        source.file("item", size);
        expectMovesWhole();
    }
}

TEST_F(MovedTree, AFileKeepsItsContentWhereTheKernelCopiesPieces) {
    // Within one volume the kernel copies; cut in pieces as on a volume that takes few at once.
    class InPieces final : public FileCalls {
    public:
        ssize_t copyRange(int from, int to, off_t offset, std::size_t size) override {
            if (++pieces > 3) return FileCalls::readAt(from, nullptr, 0, offset);  // no more
            return FileCalls::copyRange(from, to, offset, std::min<std::size_t>(size, 70'001));
        }
        int rename(int, const char*, int, const char*) override { return fail(); }
        int addName(int folder, const char* from, int other, const char* to) override {
            return folder == other ? FileCalls::addName(folder, from, other, to) : fail();
        }
        int pieces = 0;

    private:
        static int fail() {
            errno = EXDEV;
            return -1;
        }
    } pieces;
    PosixFileManager mover(pieces);
    source.file("item", 500'000);
    source.folder("there");
    const std::string text = sourceText();
    const auto there = mover.openFolder(source.path("there"), FolderPath::withoutLinks);
    mover.moveInSteps(*from, "item", *there, "item", scratch);
    EXPECT_GE(pieces.pieces, 3);
    EXPECT_EQ(treeText(source.path("there/item"), TreeDetail::everything), text);
}

TEST_F(MovedTree, ASparseFileTakesUpNoMoreThanBefore) {
    source.sparse("item", 200_MB);
    {
        const Descriptor file(open(source.path("item").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(pwrite(file.number(), "start", 5, 0), 5);
        ASSERT_EQ(pwrite(file.number(), "middle", 6, 100'000'000), 6);
    }
    const auto before = files.attributes(*from, "item");
    ASSERT_LT(before->allocatedSize, 1_MB);
    ASSERT_EQ(move(), 0);
    const auto after = files.attributes(*to, "moved");
    EXPECT_EQ(after->logicalSize, 200_MB);
    EXPECT_LT(after->allocatedSize, 1_MB);
    const Descriptor file(open(target.path("moved").c_str(), O_RDONLY | O_CLOEXEC));
    char found[6];
    ASSERT_EQ(pread(file.number(), found, 6, 100'000'000), 6);
    EXPECT_EQ(std::string(found, 6), "middle");
    ASSERT_EQ(pread(file.number(), found, 6, 100'000'006), 6);
    EXPECT_EQ(std::string(found, 6), std::string(6, '\0'));
}

TEST_F(MovedTree, AFileThatIsAllHoleStaysOne) {
    source.sparse("item", 300_MB);
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(files.attributes(*to, "moved")->logicalSize, 300_MB);
    EXPECT_LT(files.attributes(*to, "moved")->allocatedSize, 1_MB);
}

TEST_F(MovedTree, PermissionsStayBitForBit) {
    for (const auto mode : std::initializer_list<mode_t>{0777, 0000, 0400, 0200, 0111, 01755, 02755,
                                                         04755, 06711, 07777}) {
        source.text(fmt::format("item/file{:o}", mode), "content");
        setMode(source.path(fmt::format("item/file{:o}", mode)), mode);
        source.text(fmt::format("item/folder{:o}/inside", mode), "content");
        if (geteuid() == 0 || (mode & 0700) == 0700) {
            setMode(source.path(fmt::format("item/folder{:o}", mode)), mode);
        }
    }
    setMode(source.path("item"), 03750);
    if (geteuid() != 0) {
        for (const auto unreadable : std::initializer_list<mode_t>{0000, 0200, 0111})
            fs::remove(source.path(fmt::format("item/file{:o}", unreadable)));
    }
    expectMovesWhole();
}

TEST_F(MovedTree, TimesStayToTheNanosecond) {
    source.text("item/inner/file", "content");
    source.link("item/link", "file");
    source.folder("item/empty");
    // Before 1970 and after 2038, too; every volume here keeps both.
    setTimes(source.path("item/inner/file"), {1'500'000'000, 123'456'789}, {-86'400, 987'654'321});
    setTimes(source.path("item/link"), {1'400'000'000, 1}, {1'300'000'000, 999'999'999});
    setTimes(source.path("item/empty"), {4'000'000'000, 17}, {4'100'000'000, 18});
    setTimes(source.path("item/inner"), {1'200'000'000, 5}, {1'100'000'000, 7});
    setTimes(source.path("item"), {1'000'000'000, 3}, {900'000'000, 11});
    expectMovesWhole();
}

TEST_F(MovedTree, LinksStayLinksAndWhatTheyLeadToStays) {
    source.text("elsewhere/file", "kept");
    const std::string text = treeText(source.path("elsewhere"), TreeDetail::everything);
    source.link("item/dangling", "no such thing");
    source.link("item/absolute", source.path("elsewhere/file"));
    source.link("item/to a folder", source.path("elsewhere"));
    source.link("item/relative", "../elsewhere");
    source.link("item/itself", "itself");
    source.link("item/long", std::string(3'000, 'l'));
    source.link("item/inner/up", "..");
    const std::string item = sourceText();
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(targetText(), item);
    EXPECT_FALSE(source.exists("item"));
    EXPECT_EQ(treeText(source.path("elsewhere"), TreeDetail::everything), text);
}

TEST_F(MovedTree, ALinkByItselfIsMovedAsALink) {
    source.text("elsewhere", "kept");
    source.link("item", source.path("elsewhere"));
    const std::string text = sourceText();
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(targetText(), text);
    EXPECT_EQ(source.read("elsewhere"), "kept");
}

TEST_F(MovedTree, EmptyFoldersStay) {
    source.folder("item/a/b/c");
    source.folder("item/d");
    expectMovesWhole();
}

TEST_F(MovedTree, HardLinksBecomeFilesOfTheirOwn) {
    source.text("item/one", "content");
    source.text("outside", "kept");
    fs::create_hard_link(source.path("item/one"), source.path("item/two"));
    fs::create_hard_link(source.path("outside"), source.path("item/three"));
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(target.read("moved/one"), "content");
    EXPECT_EQ(target.read("moved/two"), "content");
    EXPECT_EQ(target.read("moved/three"), "kept");
    EXPECT_EQ(source.read("outside"), "kept");
    EXPECT_FALSE(source.exists("item"));
}

TEST_F(MovedTree, NamesOfEveryKindStayByteForByte) {
    const std::string longest(255, 'n');
    std::vector<std::string> names{"line\nbreak", " ",        "-rf",      "...",
                                   "\\",          "\x01\x7f", "\xc3\xa9", longest};
    if (tellSpellingsApart()) names.push_back("e\xcc\x81");  // looks like the one above
    if (takeAnyBytes()) {
        names.insert(names.end(), {"\xff\xfe not text", longest.substr(1) + "\xc3"});
    }
    for (const std::string& name : names) {
        source.text("item/" + name, "content of " + name);
        source.text("item/folder/" + name + "/" + name, "below " + name);
    }
    expectMovesWhole();
    // And as the name of what is moved.
    const std::string last = longest.substr(1) + (takeAnyBytes() ? "\xff" : "m");
    source.text(longest, "long");
    files.moveInSteps(*from, longest, *to, last, scratch);
    EXPECT_EQ(target.read(last), "long");
}

TEST_F(MovedTree, ManyFilesInOneFolderAllArrive) {
    const int count = isExhaustive() ? 20'000 : 2'000;
    source.folder("item");
    for (int index = 0; index < count; ++index) {
        const std::string path = source.path(fmt::format("item/{}", index));
        const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_EQ(write(file.number(), &index, sizeof index), ssize_t{sizeof index});
    }
    const std::string text = sourceText();
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(targetText(), text);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(MovedTree, AttributesStayWithTheirFilesAndFolders) {
    source.text("item/file", "content");
    source.folder("item/folder");
    const auto set = [&](const std::string& place, const std::string& name,
                         const std::string& value) {
        return setExtendedAttribute(source.path(place), name, value);
    };
    if (!set("item/file", "user.note", "important")) GTEST_SKIP() << "no attributes on this volume";
    ASSERT_TRUE(set("item/file", "user.empty", ""));
    ASSERT_TRUE(set("item/file", "user.binary", std::string("\0\xff\n", 3)));
    ASSERT_TRUE(set("item/file", "user.long", std::string(1'500, 'v')));
    ASSERT_TRUE(set("item/folder", "user.note", "of the folder"));
    ASSERT_TRUE(set("item", "user.note", "of the whole"));
    setMode(source.path("item/file"), 0444);
    expectMovesWhole();
}

TEST_F(MovedTree, AFileGetsNoAccessListFromTheFolderThatItIsMovedTo) {
    // Version 2; then tag, permissions and id: owner, user 1000, group, mask: all; others none.
    const auto entry = [](char tag, char rights, const std::string& id) {
        return std::string{tag, 0, rights, 0} + id;
    };
    const std::string noId(4, '\xff');
    const std::string list = std::string("\x02\0\0\0", 4) + entry(1, 7, noId) +
                             entry(2, 7, std::string("\xe8\x03\0\0", 4)) + entry(4, 7, noId) +
                             entry(16, 7, noId) + entry(32, 0, noId);
    if (!setExtendedAttribute(target.path(), "system.posix_acl_default", list)) {
        GTEST_SKIP() << "no access lists on this volume";
    }
    source.text("item/inner/file", "content");
    source.text("item/file", "content");
    setMode(source.path("item/file"), 0640);
    const std::string text = sourceText();
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(targetText(), text);
}

TEST_F(MovedTree, ATreeDeeperThanDescriptorsGoArrivesWhole) {
    const int levels = isExhaustive() ? 2'000 : 500;
    const auto descend = [levels](const std::string& home, const char* root, auto at) {
        Descriptor folder(open(home.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const char* name = root;
        for (int level = 0; level < levels && folder.isOpen(); ++level) {
            at(folder.number(), name, level);
            folder = Descriptor(openat(folder.number(), name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            name = "deeper";
        }
        return folder.isOpen();
    };
    ASSERT_TRUE(descend(source.path(), "item", [](int folder, const char* name, int level) {
        mkdirat(folder, name, 0700);
        const std::string beside = fmt::format("beside {}", level);
        if (level > 0) close(openat(folder, beside.c_str(), O_CREAT | O_CLOEXEC | O_WRONLY, 0600));
    }));
    rlimit old{};
    getrlimit(RLIMIT_NOFILE, &old);
    const rlimit few{.rlim_cur = 128, .rlim_max = old.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    const int reason = move();
    setrlimit(RLIMIT_NOFILE, &old);
    EXPECT_EQ(reason, 0);
    EXPECT_TRUE(isOnlyAtTarget());
    int found = 0;
    EXPECT_TRUE(descend(target.path(), "moved", [&](int folder, const char*, int level) {
        const std::string beside = fmt::format("beside {}", level);
        if (faccessat(folder, beside.c_str(), F_OK, 0) == 0) ++found;
    }));
    EXPECT_EQ(found, levels - 1);
    files.removeAll(*to, "moved");
}

TEST_F(MovedTree, AnAttributeThatCannotBeKeptKeepsTheFileWhereItIs) {
    class WithoutAttributes final : public FileCalls {
    public:
        int copyAttributes(int, int) override {
            errno = ENOSPC;
            return -1;
        }
    } without;
    PosixFileManager mover(without);
    source.text("item", "content");
    EXPECT_EQ(reasonOf([&] { mover.moveInSteps(*from, "item", *to, "moved", scratch); }), ENOSPC);
    EXPECT_TRUE(isOnlyAtSource());
}

}  // namespace
}  // namespace velto
