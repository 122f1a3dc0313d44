// What the model says of a loss of power, rule by rule.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/ModelCrash.h"
#include "support/ModelFileCalls.h"

namespace velto {
namespace {

/// A disk on which one thing is done, and all that a loss of power may leave of it.
class Losses : public testing::TestWithParam<Durability> {
protected:
    Losses() {
        put("/from/file", "content");
        calls.makeFolder(AT_FDCWD, "/from/folder", 0700);
        calls.makeFolder(AT_FDCWD, "/to", 0700);
        disk.settle();
    }

    void put(const std::string& path, const std::string& content) {
        calls.makeFolder(AT_FDCWD, path.substr(0, path.rfind('/')).c_str(), 0700);
        const Descriptor file(
            calls.open(AT_FDCWD, path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600));
        calls.write(file.number(), content.data(), content.size());
    }
    void sync(const std::string& path) {
        const Descriptor file(calls.open(AT_FDCWD, path.c_str(), O_RDONLY, 0));
        ASSERT_EQ(calls.sync(file.number()), 0) << path;
    }
    int rename(const std::string& from, const std::string& to) {
        return calls.replace(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str());
    }

    /// Which of these paths may be there together, as "1 0", and with what content.
    std::set<std::string> outcomes(const std::vector<std::string>& paths) const {
        std::set<std::string> found;
        std::mt19937_64 random(1);
        const ModelCrash crash(disk, disk.log().size(), GetParam());
        EXPECT_TRUE(crash.run(4'096, random, [&](const ModelCrash::State& state) {
            const ModelImage image = crash.image(state);
            std::string text;
            for (const std::string& path : paths) {
                const auto number = image.find(path);
                const bool isFile = number != 0 && !image.at(number).isFolder();
                text += number == 0 ? "-" : isFile ? *image.at(number).content : "folder";
                text += "|";
            }
            found.insert(text);
        }));
        return found;
    }
    bool isPosix() const { return GetParam() == Durability::posix; }

    ModelDisk disk;
    ModelFileCalls calls{disk};
};

TEST_P(Losses, ARenamedFileIsNeverNowhere) {
    ASSERT_EQ(rename("/from/file", "/to/file"), 0);
    std::set<std::string> expected{"content|-|", "-|content|"};
    if (isPosix()) expected.insert("content|content|");
    EXPECT_EQ(outcomes({"/from/file", "/to/file"}), expected);
}

TEST_P(Losses, ARenamedFolderIsInOnePlace) {
    ASSERT_EQ(rename("/from/folder", "/to/folder"), 0);
    EXPECT_EQ(outcomes({"/from/folder", "/to/folder"}),
              (std::set<std::string>{"folder|-|", "-|folder|"}));
}

TEST_P(Losses, ASyncOfEitherFolderFixesARename) {
    ASSERT_EQ(rename("/from/folder", "/to/folder"), 0);
    sync("/from");
    EXPECT_EQ(outcomes({"/from/folder", "/to/folder"}), (std::set<std::string>{"-|folder|"}));
}

TEST_P(Losses, AFileInAFolderWhoseOwnNameIsLostIsLostWithIt) {
    put("/new/file", "new");
    ASSERT_EQ(rename("/from/file", "/new/moved"), 0);
    sync("/new");
    const auto found = outcomes({"/from/file", "/new/moved"});
    EXPECT_EQ(found.contains("-|-|"), isPosix()) << "only a journal keeps the order";
    EXPECT_TRUE(found.contains("-|content|"));
}

TEST_P(Losses, ANewNameIsNotTheSameAsItsContent) {
    put("/to/new", "text");
    std::set<std::string> expected{"-|", "|", "te|", "text|"};
    if (isPosix()) expected.insert(std::string(4, '\0') + "|");
    EXPECT_EQ(outcomes({"/to/new"}), expected);
}

TEST_P(Losses, ASyncedFileKeepsItsContentAndWithAJournalItsName) {
    put("/to/new", "text");
    sync("/to/new");
    std::set<std::string> expected{"text|"};
    if (isPosix()) expected.insert("-|");
    EXPECT_EQ(outcomes({"/to/new"}), expected);
}

TEST_P(Losses, TwoNamesGoInAnyOrderUnlessThereIsAJournal) {
    ASSERT_EQ(calls.addName(AT_FDCWD, "/from/file", AT_FDCWD, "/to/file"), 0);
    ASSERT_EQ(calls.remove(AT_FDCWD, "/from/file", 0), 0);
    std::set<std::string> expected{"content|-|", "content|content|", "-|content|"};
    if (isPosix()) expected.insert("-|-|");
    EXPECT_EQ(outcomes({"/from/file", "/to/file"}), expected);
}

TEST_P(Losses, AReplacedNameIsTheOldFileOrTheNewOne) {
    put("/to/new", "new");
    sync("/to/new");
    ASSERT_EQ(rename("/to/new", "/from/file"), 0);
    EXPECT_EQ(outcomes({"/from/file"}), (std::set<std::string>{"content|", "new|"}));
}

INSTANTIATE_TEST_SUITE_P(Rules, Losses, testing::Values(Durability::posix, Durability::ext4Ordered),
                         [](const auto& one) {
                             return one.param == Durability::posix ? "posix" : "ext4";
                         });

TEST(ModelFileCalls, TheOwnersPermissionsCount) {
    ModelDisk disk;
    ModelFileCalls calls(disk);
    ASSERT_EQ(calls.makeFolder(AT_FDCWD, "/closed", 0), 0);
    EXPECT_EQ(calls.open(AT_FDCWD, "/closed", O_RDONLY | O_DIRECTORY, 0), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(calls.makeFolder(AT_FDCWD, "/closed/in", 0700), -1);
    EXPECT_EQ(errno, EACCES);
}

TEST(ModelFileCalls, TwoVolumesAreTwo) {
    ModelDisk disk;
    ModelFileCalls calls(disk);
    ASSERT_EQ(calls.makeFolder(AT_FDCWD, "/other", 0700), 0);
    ASSERT_EQ(calls.makeFolder(AT_FDCWD, "/folder", 0700), 0);
    disk.mount("/other");
    EXPECT_EQ(calls.rename(AT_FDCWD, "/folder", AT_FDCWD, "/other/folder"), -1);
    EXPECT_EQ(errno, EXDEV);
    struct stat here, there;
    ASSERT_EQ(calls.stat(AT_FDCWD, "/folder", here), 0);
    ASSERT_EQ(calls.stat(AT_FDCWD, "/other", there), 0);
    EXPECT_NE(here.st_dev, there.st_dev);
    std::string real;
    ASSERT_EQ(calls.makeFolder(AT_FDCWD, "/other/in", 0700), 0);
    ASSERT_EQ(calls.resolve("/other/in/../in", real), 0);
    EXPECT_EQ(real, "/other/in");
}

}  // namespace
}  // namespace velto
