// What a process that died in the middle of a move between volumes has left, state by state, and
// what the next one makes of it.

#include <fcntl.h>

#include <cctype>
#include <ostream>

#include "platform/posix/MoveWorld.h"

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

}  // namespace
}  // namespace velto
