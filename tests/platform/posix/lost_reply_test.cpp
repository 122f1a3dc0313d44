// A call that was carried out and is reported as failed, as on a network volume that has lost the
// answer; and a file that is saved anew just while it gets its new name.

#include <cerrno>

#include "platform/posix/MoveWorld.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;

class LostReply : public testing::Test, protected MoveWorld {
protected:
    LostReply() : MoveWorld(otherVolume(), otherVolume()) {}

    /// Of the next call of that kind.
    void loseReplyOf(const std::string& call, int reason) {
        calls.error = reason;
        calls.before = [this, call](const char* made, const char*) {
            if (made != call) return;
            calls.action = Action::doThenFail;
            calls.at = calls.count;
            calls.before = nullptr;
        };
    }

    std::string read(const std::string& path) const { return files.read(path, anyFile(1'000)); }
};

TEST_F(LostReply, OfARenameTheItemIsAtItsTargetAndNoFailureIsTold) {
    for (const int reason : {EIO, ENOENT, EEXIST, EINVAL}) {
        source.text("item", "content");
        loseReplyOf("rename", reason);
        EXPECT_EQ(reasonOf([&] { EXPECT_TRUE(files.moveAtOnce(*from, "item", *to, "moved")); }), 0);
        ASSERT_TRUE(isOnlyAtTarget()) << reason;
        EXPECT_EQ(read(target.path("moved")), "content");
        files.removeAll(target.path("moved"));
    }
}

TEST_F(LostReply, OfTheRemovalOfTheOldNameLeavesTheFileUnderItsNewOne) {
    for (const int reason : {EIO, ENOENT}) {
        source.text("item", "the only copy");
        calls.knowsExclusiveRename = false;
        loseReplyOf("remove", reason);
        EXPECT_EQ(move(), 0);
        ASSERT_TRUE(isOnlyAtTarget()) << reason;
        EXPECT_EQ(read(target.path("moved")), "the only copy");
        files.removeAll(target.path("moved"));
    }
}

TEST_F(LostReply, OfASecondNameThatWasMadeMovesTheFileAllTheSame) {
    source.text("item", "content");
    calls.knowsExclusiveRename = false;
    loseReplyOf("addName", EEXIST);
    EXPECT_EQ(move(), 0);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(LostReply, OfAFolderThatTookItsPlaceholderLeavesItThereAlsoWhenItIsEmpty) {
    source.folder("item");
    calls.knowsExclusiveRename = false;
    loseReplyOf("replace", EIO);
    EXPECT_EQ(move(), 0);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(LostReply, OfARemovalIsNoFailure) {
    source.text("item/deep/file", "content");
    loseReplyOf("remove", EIO);
    EXPECT_EQ(reasonOf([&] { files.removeAll(*from, "item"); }), 0);
    EXPECT_EQ(names(), std::set<std::string>{});
}

TEST_F(LostReply, ASecondNameThatTheUserHasMadeIsNotTakenForTheMove) {
    source.text("item", "content");
    std::filesystem::create_hard_link(source.path("item"), target.path("moved"));
    calls.knowsExclusiveRename = false;
    EXPECT_EQ(move(), EEXIST);
    EXPECT_EQ(names(), (std::set<std::string>{"source/item", "target/moved"}));
}

TEST_F(LostReply, ASecondNameThatAnEarlierMoveHasLeftIsInNobodysWay) {
    source.text("item", "content");
    std::filesystem::create_hard_link(source.path("item"), source.path(scratch));
    calls.knowsExclusiveRename = false;
    EXPECT_EQ(move(), 0);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(LostReply, AnotherFileUnderTheScratchNameStaysAndSoDoesTheItem) {
    source.text("item", "content");
    source.text(scratch, "another");
    calls.knowsExclusiveRename = false;
    EXPECT_EQ(move(), EEXIST);
    EXPECT_EQ(read(source.path("item")), "content");
    EXPECT_EQ(read(source.path(scratch)), "another");
}

TEST_F(LostReply, AVersionSavedBetweenTheTwoNamesStaysWhereItWasSaved) {
    source.text("item", "old version");
    calls.knowsExclusiveRename = false;
    bool isNamed = false;
    calls.before = [&](const char* call, const char*) {
        if (std::string(call) == "addName") isNamed = true;
    };
    calls.refuses = [&](const char* call, const char* name) {
        const bool isLook = std::string(call) == "stat" && std::string(name) == "item";
        if (isNamed && (isLook || std::string(call) == "remove")) {
            isNamed = false;
            source.text(".saving", "new version");
            std::filesystem::rename(source.path(".saving"), source.path("item"));
        }
        return 0;
    };
    EXPECT_EQ(move(), 0);
    EXPECT_EQ(names(), (std::set<std::string>{"source/item", "target/moved"}));
    EXPECT_EQ(read(source.path("item")), "new version");
    EXPECT_EQ(read(target.path("moved")), "old version");
}

/// A program saves a file by renaming a new version over it, just before a call of the move.
class SavedMeanwhile : public LostReply {
protected:
    SavedMeanwhile() {
        source.text("item", "old version");
        calls.knowsExclusiveRename = false;
    }

    void save(const std::string& content) {
        source.text(".saving", content);
        std::filesystem::rename(source.path(".saving"), source.path("item"));
    }

    /// Once, when the call is made for the n-th time.
    void saveBefore(const std::string& call, int time, const std::string& content) {
        calls.before = [=, this, made = 0](const char* what, const char*) mutable {
            if (what == call && ++made == time) save(content);
        };
    }
};

TEST_F(SavedMeanwhile, WhileTheNewNameIsSyncedTheNewVersionStays) {
    saveBefore("sync", 1, "new version");
    EXPECT_EQ(move(), 0);
    EXPECT_EQ(names(), (std::set<std::string>{"source/item", "target/moved"}));
    EXPECT_EQ(read(source.path("item")), "new version");
    EXPECT_EQ(read(target.path("moved")), "old version");
}

TEST_F(SavedMeanwhile, BeforeTheCallThatTakesTheOldNameAwayTheNewVersionStays) {
    for (const char* call : {"replace", "remove"}) {
        save("old version");
        saveBefore(call, 1, "new version");
        EXPECT_EQ(move(), 0);
        calls.before = nullptr;
        ASSERT_EQ(names(), (std::set<std::string>{"source/item", "target/moved"})) << call;
        EXPECT_EQ(read(source.path("item")), "new version") << call;
        EXPECT_EQ(read(target.path("moved")), "old version") << call;
        files.removeAll(target.path("moved"));
    }
}

TEST_F(SavedMeanwhile, BeforeTheNewNameIsGivenTheNewVersionIsTheOneThatMoves) {
    saveBefore("addName", 1, "new version");
    EXPECT_EQ(move(), 0);
    EXPECT_TRUE(isOnlyAtTarget());
    EXPECT_EQ(read(target.path("moved")), "new version");
}

TEST_F(SavedMeanwhile, TwiceAllVersionsStay) {
    calls.before = [&, added = 0](const char* call, const char*) mutable {
        const bool takesNameAway = std::string(call) == "replace";
        if (takesNameAway) save("second version");
        if (std::string(call) == "addName" && ++added == 2) save("third version");
    };
    EXPECT_EQ(move(), EEXIST);
    calls.before = nullptr;
    EXPECT_EQ(settle(), MoveState::atTarget);
    EXPECT_EQ(read(source.path("item")), "third version");
    EXPECT_EQ(read(target.path("moved")), "old version");
    std::string kept;
    for (const std::string& name : names()) {
        if (name.starts_with("source/.scratch-")) kept = name.substr(7);
    }
    ASSERT_FALSE(kept.empty());
    EXPECT_EQ(read(source.path(kept)), "second version");
}

TEST_F(SavedMeanwhile, ANewVersionThatCannotGoBackAtOnceIsBroughtBackBySettling) {
    calls.before = [&, added = 0](const char* call, const char*) mutable {
        if (std::string(call) == "replace") save("new version");
        if (std::string(call) == "addName" && ++added == 2) {
            calls.action = Action::fail;
            calls.at = calls.count;
        }
    };
    EXPECT_EQ(move(), EIO);
    calls.before = nullptr;
    settle();
    EXPECT_EQ(names(), (std::set<std::string>{"source/item", "target/moved"}));
    EXPECT_EQ(read(source.path("item")), "new version");
    EXPECT_EQ(read(target.path("moved")), "old version");
}

}  // namespace
}  // namespace velto
