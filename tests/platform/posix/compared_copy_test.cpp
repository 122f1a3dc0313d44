// A copy on another volume is read again before its original goes, whatever was said of it.

#include <fcntl.h>

#include <fmt/format.h>

#include <set>
#include <string>
#include <vector>

#include "platform/posix/Descriptor.h"
#include "platform/posix/MoveWorld.h"

namespace velto {
namespace {

/// A disk that does not hold what was written to it, or a kernel that tells untruths of it.
class UntrueCalls final : public FileCalls {
public:
    using FileCalls::setTimes;

    bool copiesInKernel = true;
    bool tellsHoleWhereContentIs = false;
    bool believesHoles = true;
    bool spoilsCopy = false;  // a byte of it, on its way
    bool spoilsDisk = false;  // a byte of what is on the disk; memory still holds the right one
    std::vector<std::string> made;

    ssize_t copyRange(int from, int to, off_t offset, std::size_t size) override {
        if (!copiesInKernel) {
            errno = EXDEV;
            return -1;
        }
        const ssize_t copied = FileCalls::copyRange(from, to, offset, size);
        if (spoilsCopy && copied > 0) spoil(to, offset + copied / 2);
        return copied;
    }
    ssize_t writeAt(int file, const void* data, std::size_t size, off_t offset) override {
        const ssize_t written = FileCalls::writeAt(file, data, size, offset);
        if (spoilsCopy && written > 0) spoil(file, offset + written / 2);
        return written;
    }
    off_t seek(int file, off_t offset, int whence) override {
        if (!tellsHoleWhereContentIs) return FileCalls::seek(file, offset, whence);
        errno = ENXIO;
        return -1;
    }
    bool knowsHoles() override { return believesHoles; }
    int sync(int) override {
        made.push_back("sync");
        return 0;
    }
    int flush(int file) override { return UntrueCalls::sync(file); }
    int setTimes(int file, const struct timespec (&times)[2]) override {
        made.push_back("setTimes");
        return FileCalls::setTimes(file, times);
    }
    int copyBirthTime(int, int) override {
        made.push_back("copyBirthTime");
        return keepsBirthTimes ? 0 : -1;
    }
    int dropCache(int file) override {
        const bool isSynced = !made.empty() && made.back() == "sync";
        if (spoilsDisk && isSynced) spoil(file, 0);
        made.push_back("dropCache");
        return 0;
    }
    bool keepsBirthTimes = true;

private:
    static void spoil(int file, off_t offset) {
        char byte = 0;
        ASSERT_EQ(::pread(file, &byte, 1, offset), 1);
        byte = static_cast<char>(byte ^ 1);
        ASSERT_EQ(::pwrite(file, &byte, 1, offset), 1);
    }
};

class ComparedCopy : public MoveBetweenVolumes {
protected:
    UntrueCalls untrue;
    PosixFileManager mover{untrue};

    int moveUntruly() {
        return reasonOf([&] { mover.moveInSteps(*from, "item", *to, "moved", scratch); });
    }

    void expectRefused() {
        const std::string text = treeText(source.path("item"));
        EXPECT_EQ(moveUntruly(), EIO);
        EXPECT_EQ(treeText(source.path("item")), text);
        EXPECT_TRUE(isOnlyAtSource());
    }
};

TEST_F(ComparedCopy, ThatTheKernelSpoiledLeavesTheOriginalWhereItIs) {
    for (const bool copiesInKernel : {true, false}) {
        source.file("item", 200'000);
        untrue.copiesInKernel = copiesInKernel;
        untrue.spoilsCopy = true;
        expectRefused();
    }
}

TEST_F(ComparedCopy, ThatIsSpoiledDeepInAFolderLeavesTheWholeFolderWhereItIs) {
    source.text("item/a/b/file", "content");
    source.text("item/other", "more");
    untrue.spoilsCopy = true;
    expectRefused();
}

TEST_F(ComparedCopy, ThatIsRightInMemoryAndWrongOnTheDiskLeavesTheOriginalWhereItIs) {
    source.text("item", "content");
    untrue.spoilsDisk = true;
    expectRefused();
}

TEST_F(ComparedCopy, OfContentThatIsCalledAHoleLeavesTheOriginalWhereItIs) {
    source.file("item", 200'000);
    untrue.tellsHoleWhereContentIs = true;
    expectRefused();
}

TEST_F(ComparedCopy, HoldsAllWhereHolesAreNotBelieved) {
    source.file("item", 3'000'001);
    const std::string text = treeText(source.path("item"));
    untrue.tellsHoleWhereContentIs = true;
    untrue.believesHoles = false;
    EXPECT_EQ(moveUntruly(), 0);
    EXPECT_EQ(treeText(target.path("moved")), text);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(ComparedCopy, TakesUpNoMoreThanBeforeWhereHolesAreNotBelieved) {
    source.sparse("item", 20_MB);
    {
        const Descriptor file(open(source.path("item").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(pwrite(file.number(), "middle", 6, 10'000'000), 6);
        ASSERT_EQ(pwrite(file.number(), "end", 3, 19'999'997), 3);
    }
    const std::string text = treeText(source.path("item"));
    untrue.believesHoles = false;
    EXPECT_EQ(moveUntruly(), 0);
    EXPECT_EQ(treeText(target.path("moved")), text);
    EXPECT_LT(files.attributes(*to, "moved")->allocatedSize, 1_MB);
}

TEST_F(ComparedCopy, WasUsedWhenItsOriginalWasLastUsed) {
    source.text("item", "content");
    const timespec then{1'500'000'000, 123};
    setTimes(source.path("item"), then, {1'600'000'000, 456});
    EXPECT_EQ(moveUntruly(), 0);
    struct stat status {};
    ASSERT_EQ(lstat(target.path("moved").c_str(), &status), 0);
    EXPECT_EQ(status.st_atime, then.tv_sec);
}

/// Setting a time of modification before it may change the time at which a file was made.
TEST_F(ComparedCopy, GetsTheTimeAtWhichItWasMadeAfterItsOtherTimes) {
    for (const bool isKept : {true, false}) {  // none is worth a failure
        source.text("item/file", "content");
        untrue.made.clear();
        untrue.keepsBirthTimes = isKept;
        EXPECT_EQ(moveUntruly(), 0);
        std::erase_if(untrue.made, [](const std::string& call) {
            return call != "setTimes" && call != "copyBirthTime";
        });
        // Of the file, whose time of use is put back after the comparison, and of its folder.
        ASSERT_GE(untrue.made.size(), 4U);
        EXPECT_EQ(untrue.made[0], "setTimes");
        EXPECT_EQ(untrue.made[1], "copyBirthTime");
        EXPECT_EQ(untrue.made.back(), "copyBirthTime");
        files.removeAll(target.path("moved"));
    }
}

}  // namespace
}  // namespace velto
