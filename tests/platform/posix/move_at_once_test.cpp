#include <sys/stat.h>

#include "platform/posix/MoveWorld.h"

namespace velto {
namespace {

/// Makes one kind of thing at a place.
struct Kind {
    const char* name;
    void (*make)(TempHome& home, const std::string& place);
};

constexpr Kind kinds[] = {
    {"file", [](TempHome& home, const std::string& place) { home.text(place, "of " + place); }},
    {"empty folder", [](TempHome& home, const std::string& place) { home.folder(place); }},
    {"folder",
     [](TempHome& home, const std::string& place) { home.text(place + "/inside", "of " + place); }},
    {"link", [](TempHome& home, const std::string& place) { home.link(place, home.path()); }},
    {"dangling link", [](TempHome& home, const std::string& place) { home.link(place, "none"); }},
    {"pipe",
     [](TempHome& home, const std::string& place) {
         ASSERT_EQ(mkfifo(home.path(place).c_str(), 0600), 0);
     }},
};

/// Both ways of moving within a volume, and what each kind of item is taken for.
class EveryKind : public testing::TestWithParam<bool> {
protected:
    static bool isInSteps() { return GetParam(); }

    static int move(MoveWorld& world) {
        if (isInSteps()) return world.move();
        return reasonOf(
            [&] { EXPECT_TRUE(world.files.moveAtOnce(*world.from, "item", *world.to, "moved")); });
    }
    static std::unique_ptr<MoveWorld> makeWorld() {
        auto world = std::make_unique<MoveWorld>(otherVolume(), otherVolume());
        world->calls.knowsExclusiveRename = !isInSteps();
        return world;
    }
};

TEST_P(EveryKind, ArrivesAsItWas) {
    for (const Kind& kind : kinds) {
        const auto world = makeWorld();
        kind.make(world->source, "item");
        const std::string text = world->sourceText();
        const auto identity = world->files.attributes(*world->from, "item")->identity;
        EXPECT_EQ(move(*world), 0) << kind.name;
        EXPECT_TRUE(world->isOnlyAtTarget()) << kind.name;
        EXPECT_EQ(world->targetText(), text) << kind.name;
        EXPECT_EQ(world->files.attributes(*world->to, "moved")->identity, identity) << kind.name;
        EXPECT_EQ(world->settle(), MoveState::atTarget) << kind.name;
        EXPECT_EQ(world->targetText(), text) << kind.name;
    }
}

TEST_P(EveryKind, NeverReplacesWhatStandsAtItsTarget) {
    for (const Kind& item : kinds) {
        for (const Kind& other : kinds) {
            const auto world = makeWorld();
            item.make(world->source, "item");
            other.make(world->target, "moved");
            const std::string text = world->sourceText();
            const std::string otherText = world->targetText();
            EXPECT_EQ(move(*world), EEXIST) << item.name << " onto " << other.name;
            EXPECT_EQ(world->sourceText(), text) << item.name << " onto " << other.name;
            EXPECT_EQ(world->targetText(), otherText) << item.name << " onto " << other.name;
            EXPECT_EQ(world->names().size(), 2u) << item.name << " onto " << other.name;
        }
    }
}

TEST_P(EveryKind, NeverReplacesWhatAppearsAtItsTargetAtTheLastMoment) {
    for (const Kind& item : kinds) {
        for (const Kind& other : kinds) {
            for (int atCall = 0; atCall < 2; ++atCall) {
                const auto world = makeWorld();
                item.make(world->source, "item");
                const std::string text = world->sourceText();
                std::string otherText;
                int call = 0;
                // Some calls make something at the target themselves; then nothing more appears.
                world->calls.before = [&](const char*, const char*) {
                    if (call++ != atCall || world->target.exists("moved")) return;
                    other.make(world->target, "moved");
                    otherText = world->targetText();
                };
                const int reason = move(*world);
                world->calls.before = nullptr;
                const std::string where = std::string(item.name) + " onto " + other.name;
                if (otherText.empty()) {
                    EXPECT_EQ(reason, 0) << where;
                    EXPECT_GT(atCall, 0) << where << ": the test has missed its moment";
                    continue;
                }
                EXPECT_EQ(reason, EEXIST) << where;
                EXPECT_EQ(world->sourceText(), text) << where;
                EXPECT_EQ(world->targetText(), otherText) << where;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Move, EveryKind, testing::Bool(), [](const auto& way) {
    return way.param ? "InStepsWithoutExclusiveRename" : "AtOnce";
});

TEST_F(MoveWithinVolume, AnItemThatIsGoneIsReportedAndNothingIsMade) {
    EXPECT_EQ(reasonOf([&] { files.moveAtOnce(*from, "item", *to, "moved"); }), ENOENT);
    EXPECT_EQ(move(), ENOENT);
    calls.knowsExclusiveRename = false;
    EXPECT_EQ(move(), ENOENT);
    EXPECT_TRUE(names().empty());
}

TEST_F(MoveWithinVolume, AFolderIsNotMovedIntoItself) {
    source.text("item/inner/file", "kept");
    const std::string text = sourceText();
    const auto inner = files.openFolder(source.path("item/inner"), FolderPath::withoutLinks);
    const auto itself = files.openFolder(source.path("item"), FolderPath::withoutLinks);
    for (const FolderHandle* below : {inner.get(), itself.get()}) {
        // Whichever way it says so: the item stays, and the second way refuses it for good.
        reasonOf([&] { EXPECT_FALSE(files.moveAtOnce(*from, "item", *below, "moved")); });
        for (const bool exclusive : {true, false}) {
            calls.knowsExclusiveRename = exclusive;
            EXPECT_EQ(reasonOf([&] { files.moveInSteps(*from, "item", *below, "moved", scratch); }),
                      EINVAL);
        }
        calls.knowsExclusiveRename = true;
        EXPECT_EQ(sourceText(), text);
    }
}

TEST_F(MoveWithinVolume, ANameThatIsNoSingleComponentReachesNothing) {
    source.text("item", "kept");
    source.text("folder/item", "kept");
    const std::string text = treeText(source.path());
    const std::string cut("item\0x", 6);
    for (const std::string& bad :
         {std::string(), std::string("."), std::string(".."), std::string("folder/item"),
          std::string("/"), std::string("item/"), std::string("../item"), cut}) {
        EXPECT_EQ(reasonOf([&] { files.moveAtOnce(*from, bad, *to, "moved"); }), EINVAL) << bad;
        EXPECT_EQ(reasonOf([&] { files.moveAtOnce(*from, "item", *to, bad); }), EINVAL) << bad;
        EXPECT_EQ(reasonOf([&] { files.moveInSteps(*from, bad, *to, "moved", scratch); }), EINVAL);
        EXPECT_EQ(reasonOf([&] { files.moveInSteps(*from, "item", *to, bad, scratch); }), EINVAL);
        EXPECT_EQ(reasonOf([&] { files.settleMove(*from, "item", *to, "moved", bad); }), EINVAL);
        EXPECT_EQ(reasonOf([&] { files.removeAll(*from, bad); }), EINVAL) << bad;
        EXPECT_EQ(reasonOf([&] { files.removeEmptyFolder(*from, bad); }), EINVAL) << bad;
        EXPECT_EQ(reasonOf([&] { files.makeFolder(*from, bad); }), EINVAL) << bad;
        EXPECT_EQ(reasonOf([&] { files.openFolder(*from, bad); }), EINVAL) << bad;
        EXPECT_EQ(reasonOf([&] { files.attributes(*from, bad); }), EINVAL) << bad;
    }
    EXPECT_EQ(treeText(source.path()), text);
    EXPECT_TRUE(std::filesystem::is_empty(target.path()));
}

TEST_F(MoveBetweenVolumes, NothingMovesAtOnceAndNothingChanges) {
    source.text("item/inside", "kept");
    const std::string text = sourceText();
    EXPECT_FALSE(files.moveAtOnce(*from, "item", *to, "moved"));
    EXPECT_EQ(sourceText(), text);
    EXPECT_TRUE(isOnlyAtSource());
}

TEST_F(MoveWithinVolume, AFileSystemWithoutExclusiveRenameDoesNotMoveAtOnce) {
    source.text("item", "kept");
    calls.knowsExclusiveRename = false;
    EXPECT_FALSE(files.moveAtOnce(*from, "item", *to, "moved"));
    EXPECT_TRUE(isOnlyAtSource());
}

TEST_F(MoveWithinVolume, OtherNamesOfAFileStayItsNames) {
    source.text("item", "content");
    std::filesystem::create_hard_link(source.path("item"), source.path("second name"));
    calls.knowsExclusiveRename = false;
    EXPECT_EQ(move(), 0);
    EXPECT_TRUE(std::filesystem::equivalent(target.path("moved"), source.path("second name")));
}

}  // namespace
}  // namespace velto
