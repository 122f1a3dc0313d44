// What a process that died in the middle of a move between volumes has left, state by state, and
// what the next one makes of it.

#include <fcntl.h>

#include <cctype>
#include <ostream>

#include "platform/posix/MoveWorld.h"
#include "support/extended_attributes.h"

namespace velto {
namespace {

/// What stands at one of the four names that a move uses.
enum class Thing {
    none,
    item,         // the whole item
    part,         // a part of it: a copy or a removal that was cut off
    placeholder,  // made to hold a name for a folder
    other,        // something else that somebody has put there
    sameFile,     // a second name of what stands at the name before it (aside: of the source)
};

using enum Thing;

struct State {
    const char* name;
    bool isFolder;
    Thing source, aside, target, copy;
    MoveState expected;
    // What stands there afterwards; `part` is never whole, `placeholder` never left.
    Thing sourceAfter, targetAfter;
};

void PrintTo(const State& state, std::ostream* stream) { *stream << state.name; }

constexpr auto atSource = MoveState::atSource;
constexpr auto atTarget = MoveState::atTarget;
constexpr auto nowhere = MoveState::nowhere;

constexpr State states[] = {
    // name, folder | source, aside, target, copy | result | source, target afterwards
    {"nothing begun", false, item, none, none, none, atSource, item, none},
    {"nothing there", false, none, none, none, none, nowhere, none, none},
    {"moved", false, none, none, item, none, atTarget, none, item},
    {"copying", false, item, none, none, part, atSource, item, none},
    {"copied", false, item, none, none, item, atSource, item, none},
    {"put aside", false, none, item, none, item, atSource, item, none},
    {"put aside, a new file in its place", false, other, item, none, item, atTarget, other, item},
    {"in place", false, none, item, item, none, atTarget, none, item},
    {"in place, a new file at the source", false, other, item, item, none, atTarget, other, item},
    {"somebody took the copy", false, none, item, none, none, atSource, item, none},
    {"target taken meanwhile", false, item, none, other, part, atSource, item, other},
    {"file: two names at the target", false, none, item, item, sameFile, atTarget, none, item},
    {"file: two names at the source", false, item, sameFile, none, item, atSource, item, none},
    {"file: two names, nothing copied", false, item, sameFile, none, none, atSource, item, none},
    {"file: a name on each side", false, item, none, sameFile, none, atTarget, none, item},
    {"folder: copying", true, item, none, none, part, atSource, item, none},
    {"folder: aside held", true, item, placeholder, none, item, atSource, item, none},
    {"folder: put aside", true, none, item, none, item, atSource, item, none},
    {"folder: a new one in its place", true, other, item, none, item, atTarget, other, item},
    {"folder: target held", true, none, item, placeholder, item, atSource, item, none},
    {"folder: held within a volume", true, item, none, placeholder, none, atSource, item, none},
    {"folder: in place", true, none, item, item, none, atTarget, none, item},
    {"folder: removing", true, none, part, item, none, atTarget, none, item},
    {"folder: brought back, source held", true, placeholder, item, none, item, atSource, item,
     none},
    {"folder: brought back, copy held", true, none, item, item, placeholder, atTarget, none, item},
    {"folder: brought back, removing copy", true, item, none, none, part, atSource, item, none},
};

constexpr timespec itemTime{1'500'000'000, 0};

class SettledMove : public testing::TestWithParam<State> {
protected:
    MoveWorld world{otherVolume(), otherVolume()};

    static void put(TempHome& home, const std::string& name, Thing thing, bool isFolder,
                    const std::string& sibling) {
        if (thing == none) return;
        if (thing == sameFile) {
            std::filesystem::create_hard_link(sibling, home.path(name));
        } else if (thing == placeholder) {
            home.folder(name);
            setMode(home.path(name), 0);
        } else if (isFolder) {
            if (thing == item) home.text(name + "/a", "content a");
            home.text(name + "/b", thing == other ? "other" : "content b");
            if (thing == item) setTimes(home.path(name + "/a"), itemTime, itemTime);
            setTimes(home.path(name + "/b"), itemTime, itemTime);
            setTimes(home.path(name), itemTime, itemTime);
        } else {
            home.text(name, thing == item ? "content" : thing == part ? "con" : "other one");
            setTimes(home.path(name), itemTime, itemTime);
        }
    }

    void expectThing(TempHome& home, const std::string& name, Thing thing) {
        TempHome model(otherVolume());
        put(model, "model", thing, GetParam().isFolder, "");
        EXPECT_EQ(treeText(home.path(name)), treeText(model.path("model"))) << name;
    }

    void expectSettled(MoveState expected) {
        EXPECT_EQ(world.settle(), expected);
        expectThing(world.source, "item", GetParam().sourceAfter);
        expectThing(world.target, "moved", GetParam().targetAfter);
        EXPECT_FALSE(world.source.exists(MoveWorld::scratch));
        EXPECT_FALSE(world.target.exists(MoveWorld::scratch));
    }
};

TEST_P(SettledMove, LeavesTheItemWholeInOnePlace) {
    const State& state = GetParam();
    put(world.source, "item", state.source, state.isFolder, "");
    put(world.source, MoveWorld::scratch, state.aside, state.isFolder, world.source.path("item"));
    put(world.target, "moved", state.target, state.isFolder, world.source.path("item"));
    put(world.target, MoveWorld::scratch, state.copy, state.isFolder, world.target.path("moved"));
    expectSettled(state.expected);
    // Once more changes nothing. What stands at the source now is all that there is to tell by.
    expectSettled(state.sourceAfter == none ? state.expected : MoveState::atSource);
}

INSTANTIATE_TEST_SUITE_P(Of, SettledMove, testing::ValuesIn(states), [](const auto& state) {
    std::string name = state.param.name;
    for (char& letter : name)
        if (std::isalnum(static_cast<unsigned char>(letter)) == 0) letter = '_';
    return name;
});

class SettledNothing : public MoveWithinVolume {};

TEST_F(SettledNothing, TwoNamesThatSomebodyGaveAFileAreNotACutOffMoveOfAnother) {
    source.text("item", "kept");
    target.text("moved", "another");
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_EQ(source.read("item"), "kept");
    EXPECT_EQ(target.read("moved"), "another");
}

TEST_F(SettledNothing, AFileUnderOneNameAloneIsNeverRemovedAsItsOwnSecondName) {
    // On a volume that ignores case, "item" and "Item" in one folder are one name of one file.
    source.text("item", "kept");
    EXPECT_EQ(files.settleMove(*from, "item", *from, "item", scratch), MoveState::atSource);
    EXPECT_EQ(source.read("item"), "kept");
}

TEST_F(SettledNothing, AFolderThatItsOwnerHasClosedIsNotTakenForAPlaceholder) {
    source.folder("item");
    setMode(source.path("item"), 0);
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_TRUE(source.exists("item"));
    target.text("moved", "another");
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_TRUE(source.exists("item"));
}

TEST_F(SettledNothing, AHeldNameIsKnownInAFolderThatHandsItsGroupDown) {
    // The state "folder: target held" of the table, where new folders take over a bit of their
    // parent's permissions.
    setMode(target.path(), 02700);
    source.text(std::string(scratch) + "/file", "content");
    target.text(std::string(scratch) + "/file", "content");
    setTimes(source.path(scratch) + "/file", itemTime, itemTime);
    setTimes(target.path(scratch) + "/file", itemTime, itemTime);
    calls.makeFolder(AT_FDCWD, target.path("moved").c_str(), 0);
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_TRUE(isOnlyAtSource());
    EXPECT_EQ(source.read("item/file"), "content");
}

TEST_F(SettledNothing, ACopyOnAVolumeThatKnowsEvenSecondsAloneIsKnownAsOne) {
    // Put aside, a new file in its place, and a copy on a FAT volume.
    source.text("item", "new");
    source.text(scratch, "content");
    target.text(scratch, "content");
    setTimes(source.path(scratch), itemTime, {itemTime.tv_sec + 1, 500});
    setTimes(target.path(scratch), itemTime, itemTime);
    EXPECT_EQ(settle(), MoveState::atTarget);
    EXPECT_EQ(target.read("moved"), "content");
    EXPECT_EQ(source.read("item"), "new");
}

TEST_F(SettledNothing, WhatIsUnlikeTheCopyIsNeverRemovedForIt) {
    // Aside, copy and something new at the source: but the copy is not what was put aside.
    source.text("item", "new");
    source.text(scratch, "the original");
    target.text(scratch, "the orig");
    EXPECT_EQ(reasonOf([&] { settle(); }), EEXIST);
    EXPECT_EQ(source.read("item"), "new");
    EXPECT_EQ(source.read(scratch), "the original");
}

/// "In place": the original is still there, put aside, and something stands at the target. Only an
/// original that is there too, alike, may go.
class SettledOriginal : public MoveWithinVolume {
protected:
    void putAside(const std::string& content) { put(source, std::string(scratch), content); }
    static void put(TempHome& home, const std::string& name, const std::string& content) {
        home.text(name, content);
        setTimes(home.path(name), itemTime, itemTime);
    }

    void expectBroughtBack(const std::string& content, const std::string& other) {
        EXPECT_EQ(settle(), MoveState::atSource);
        EXPECT_EQ(source.read("item"), content);
        EXPECT_EQ(target.read("moved"), other);
        EXPECT_FALSE(source.exists(scratch));
    }
};

TEST_F(SettledOriginal, ComesBackWhenSomethingElseHasTheTargetsName) {
    putAside("the only copy");
    put(target, "moved", "another");
    expectBroughtBack("the only copy", "another");
}

TEST_F(SettledOriginal, ComesBackWhenTheTargetDiffersInContentAlone) {
    putAside("the only copy");
    put(target, "moved", "the only cozy");
    expectBroughtBack("the only copy", "the only cozy");
}

TEST_F(SettledOriginal, ComesBackWhenTheTargetIsOlderOrNewer) {
    putAside("content");
    target.text("moved", "content");
    expectBroughtBack("content", "content");
}

TEST_F(SettledOriginal, ComesBackWhenTheTargetHasOtherPermissions) {
    putAside("content");
    setMode(source.path(scratch), 0640);
    put(target, "moved", "content");
    setMode(target.path("moved"), 0600);
    expectBroughtBack("content", "content");
}

TEST_F(SettledOriginal, ComesBackWhenTheTargetLacksAnAttribute) {
    putAside("content");
    put(target, "moved", "content");
    if (!setExtendedAttribute(source.path(scratch), "user.note", "mine")) {
        GTEST_SKIP() << "no extended attributes here";
    }
    expectBroughtBack("content", "content");
}

TEST_F(SettledOriginal, ComesBackWhenOneFileDeepInsideIsMissingAtTheTarget) {
    source.text(std::string(scratch) + "/deep/a", "a");
    source.text(std::string(scratch) + "/deep/only here", "b");
    target.text("moved/deep/a", "a");
    setTimes(source.path(scratch) + "/deep/a", itemTime, itemTime);
    setTimes(target.path("moved/deep/a"), itemTime, itemTime);
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_EQ(source.read("item/deep/only here"), "b");
    EXPECT_EQ(target.read("moved/deep/a"), "a");
}

TEST_F(SettledOriginal, IsKeptBesideWhenAllThreePlacesHoldDifferentThings) {
    putAside("the only copy");
    put(target, "moved", "another");
    put(source, "item", "a third");
    EXPECT_EQ(settle(), MoveState::atTarget);
    EXPECT_EQ(source.read("item"), "a third");
    EXPECT_EQ(target.read("moved"), "another");
    int kept = 0;
    for (const std::string& name : names()) {
        const std::string beginning = std::string("source/") + scratch + "-";
        if (!name.starts_with(beginning)) continue;
        EXPECT_EQ(source.read(name.substr(sizeof "source")), "the only copy");
        ++kept;
    }
    EXPECT_EQ(kept, 1);
}

TEST_F(SettledOriginal, GoesWhenTheTargetIsTheSameThroughAndThrough) {
    for (TempHome* home : {&source, &target}) {
        const std::string root = home == &source ? scratch : "moved";
        home->text(root + "/deep/a", "a");
        home->sparse(root + "/holes", 100'000'000);
        home->link(root + "/link", "nowhere");
        for (const char* entry : {"/deep/a", "/holes", "/link"})
            setTimes(home->path(root + entry), itemTime, itemTime);
        setTimes(home->path(root + "/deep"), itemTime, itemTime);
    }
    EXPECT_EQ(settle(), MoveState::atTarget);
    EXPECT_TRUE(isOnlyAtTarget());
}

TEST_F(SettledOriginal, FilesThatWereNeverMovedStayWhateverIsSaidOfThem) {
    source.text("item", "one file");
    target.text("moved", "another");
    for (const char* name : {"item", "moved", scratch}) {
        SCOPED_TRACE(name);
        reasonOf([&] { files.settleMove(*from, "item", *to, "moved", name); });
        EXPECT_EQ(source.read("item"), "one file");
        EXPECT_EQ(target.read("moved"), "another");
    }
}

TEST_F(SettledOriginal, ACopyThatIsNoneIsKept) {
    // The scratch name of somebody's file in the target's folder, with an item still at its source.
    source.text("item", "one file");
    target.text(scratch, "no part of it");
    EXPECT_EQ(settle(), MoveState::atSource);
    EXPECT_EQ(source.read("item"), "one file");
    int kept = 0;
    for (const std::string& name : names()) {
        if (!name.starts_with("target/")) continue;
        EXPECT_EQ(target.read(name.substr(sizeof "target")), "no part of it");
        ++kept;
    }
    EXPECT_EQ(kept, 1);
}

TEST_F(SettledOriginal, WithADiskThatGivesNoAnswerNothingIsDecided) {
    putAside("content");
    put(target, "moved", "content");
    calls.refuses = [](const char* call, const char*) {
        return std::string(call) == "readAt" ? EIO : 0;
    };
    EXPECT_EQ(reasonOf([&] { settle(); }), EIO);
    EXPECT_EQ(source.read(scratch), "content");
    calls.refuses = nullptr;
    EXPECT_EQ(settle(), MoveState::atTarget);
    EXPECT_TRUE(isOnlyAtTarget());
}

}  // namespace
}  // namespace velto
