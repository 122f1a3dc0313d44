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

}  // namespace
}  // namespace velto
