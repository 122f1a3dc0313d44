// What is left of an item where it no longer belongs: it goes, and where it cannot go it is in
// nobody's way.

#include <fcntl.h>

#include <cstring>

#include "platform/posix/MoveWorld.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

class Removal : public MoveWithinVolume {
protected:
    void makeItem() {
        source.text("item/folder/file", "content");
        source.link("item/link", "nowhere");
        source.folder("item/empty");
    }
};

TEST_F(Removal, WhatIsNotReportedIsGoneWhicheverCallFails) {
    for (const int reason : {ENOENT, ENAMETOOLONG, EACCES, EIO, EBUSY}) {
        for (int call = 0;; ++call) {
            makeItem();
            calls.action = WatchedFileCalls::Action::fail;
            calls.countsAll = true;
            calls.count = 0;
            calls.at = call;
            calls.error = reason;
            const int reported = reasonOf([&] { files.removeAll(*from, "item"); });
            const bool wasReached = calls.count > call;
            calls.action = WatchedFileCalls::Action::none;
            EXPECT_TRUE(reported != 0 || names().empty())
                << "call " << call << " fails with " << std::strerror(reason);
            files.removeAll(*from, "item");
            ASSERT_TRUE(names().empty());
            if (!wasReached) break;
            ASSERT_LT(call, 200);
        }
    }
}

TEST_F(Removal, AnEmptyFolderThatIsMissedForAMomentGoesAllTheSame) {
    source.folder("empty");
    bool isFirst = true;
    calls.refuses = [&](const char* call, const char*) {
        return std::strcmp(call, "remove") == 0 && std::exchange(isFirst, false) ? ENOENT : 0;
    };
    EXPECT_TRUE(files.removeEmptyFolder(*from, "empty"));
    EXPECT_FALSE(source.exists("empty"));
}

TEST_F(Removal, ANameThatNeverGoesIsReportedInTheEnd) {
    source.text("item", "kept");
    source.folder("empty");
    calls.refuses = [](const char* call, const char*) {
        return std::strcmp(call, "remove") == 0 ? ENOENT : 0;
    };
    EXPECT_EQ(reasonOf([&] { files.removeAll(*from, "item"); }), ENOENT);
    EXPECT_EQ(reasonOf([&] { files.removeAll(*from, "empty"); }), ENOENT);
    EXPECT_EQ(reasonOf([&] { files.removeEmptyFolder(*from, "empty"); }), ENOENT);
}

/// A disk on which one file cannot be removed, whatever folder it is in.
class LeftBehind : public MoveBetweenVolumes {
protected:
    void resist(const std::string& name) {
        calls.refuses = [name](const char* call, const char* about) {
            return std::strcmp(call, "remove") == 0 && name == about ? EPERM : 0;
        };
    }

    /// The names in a folder that begin with the scratch name.
    static std::vector<std::string> leftIn(const TempHome& home) {
        std::vector<std::string> left;
        for (const auto& entry : fs::directory_iterator(home.path())) {
            const std::string name = entry.path().filename();
            if (name.starts_with(scratch)) left.push_back(name);
        }
        return left;
    }

    void expectLeft(const TempHome& home, std::size_t count) {
        const auto left = leftIn(home);
        EXPECT_EQ(left.size(), count);
        for (const std::string& name : left)
            EXPECT_NE(name, scratch) << "the next move would need that name";
    }
};

TEST_F(LeftBehind, AnItemWhoseOriginalResistsCanStillComeBack) {
    source.text("item/a", "of a");
    source.text("item/b", "of b");
    const std::string text = treeText(source.path("item"));
    resist("b");
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(treeText(target.path("moved")), text);
    EXPECT_FALSE(source.exists("item"));
    expectLeft(source, 1);

    ASSERT_EQ(moveBack(), 0);
    EXPECT_EQ(treeText(source.path("item")), text);
    EXPECT_FALSE(target.exists("moved"));
    expectLeft(source, 1);
    expectLeft(target, 1);

    ASSERT_EQ(move(), 0);
    EXPECT_EQ(treeText(target.path("moved")), text);
}

TEST_F(LeftBehind, AnOriginalThatResistsDoesNotHideThatTheItemHasArrived) {
    // As a process that died while it removed the original leaves it.
    source.text(std::string(scratch) + "/b", "of b");
    target.text("moved/a", "of a");
    target.text("moved/b", "of b");
    resist("b");
    EXPECT_EQ(settle(), MoveState::atTarget);
    expectLeft(source, 1);
    EXPECT_EQ(settle(), MoveState::atTarget);
    EXPECT_EQ(target.read("moved/a"), "of a");
}

TEST_F(LeftBehind, ACopyThatResistsDoesNotHideThatTheItemIsWhereItWas) {
    source.text("item/b", "of b");
    target.text(std::string(scratch) + "/b", "of b");
    resist("b");
    EXPECT_EQ(settle(), MoveState::atSource);
    expectLeft(target, 1);
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(target.read("moved/b"), "of b");
}

TEST_F(LeftBehind, ACopyThatNobodyCouldClearAwayIsReplacedByTheNext) {
    source.text("item/a", "content");
    target.text(std::string(scratch) + "/a", "con");
    ASSERT_EQ(move(), 0);
    EXPECT_TRUE(isOnlyAtTarget());
    EXPECT_EQ(target.read("moved/a"), "content");
}

TEST_F(LeftBehind, WhatIsNoCopyOfTheItemIsKeptWhateverItsName) {
    source.text("item/a", "content");
    target.text(std::string(scratch) + "/a", "something else");
    ASSERT_EQ(move(), 0);
    EXPECT_EQ(target.read("moved/a"), "content");
    expectLeft(target, 1);
    EXPECT_EQ(target.read(leftIn(target).front() + "/a"), "something else");
}

TEST_F(LeftBehind, WhatHasTakenTheTargetsPlaceIsKeptWhenTheMoveIsRolledBack) {
    // The copy is in place, syncing fails, and somebody has put another thing there in between.
    source.text("item", "content");
    bool isInPlace = false;
    calls.refuses = [&](const char* call, const char* name) {
        if (std::strcmp(call, "rename") == 0 && std::strcmp(name, "moved") == 0) isInPlace = true;
        if (!isInPlace || std::strcmp(call, "sync") != 0) return 0;
        isInPlace = false;
        target.text("another", "somebody's only copy");
        fs::rename(target.path("another"), target.path("moved"));
        return EIO;
    };
    EXPECT_EQ(move(), EIO);
    calls.refuses = nullptr;
    EXPECT_EQ(source.read("item"), "content");
    ASSERT_EQ(leftIn(target).size(), 1u);
    EXPECT_EQ(target.read(leftIn(target).front()), "somebody's only copy");
}

TEST_F(LeftBehind, WhatIsPutAsideWithoutHavingArrivedComesBackEvenFromThere) {
    source.text(std::string(scratch) + "/b", "of b");
    target.text(std::string(scratch) + "/b", "of b");
    resist("b");
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_EQ(source.read("item/b"), "of b");
    expectLeft(target, 1);
}

}  // namespace
}  // namespace velto
