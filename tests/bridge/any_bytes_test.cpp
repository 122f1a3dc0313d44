#include "bridge/TrashFixture.h"
#include "support/volumes.h"

namespace velto {
namespace {

using namespace std::string_literals;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

/// A saved analysis that lists a file with a name that is no text.
struct NamesOfAnyBytes : TrashFixture {
    const std::string name = "Movies/caf\xE9.mov";
    const std::string text = "caf\0e9.mov"s;  // its name as the page knows it
    std::string path;                         // its own bytes
    std::string shownPath;                    // as the page knows it

    void SetUp() override {
        TrashFixture::SetUp();
        if (!takesNamesOfAnyBytes(machine.home.path())) GTEST_SKIP() << "no such names here";
        path = machine.home.file(name, 1_MB).path();
        const auto copy = machine.home.text("a/\xFF", "same").path();
        shownPath = machine.home.path("Movies/" + text);
        bridge.reset();
        DiskState state = *ScanCache(*machine.platform.files, machine.platform.layout)
                               .load()
                               .transform([](const auto& entry) { return entry.state; });
        state.files.push_back({.name = "caf\uFFFD.mov", .gb = 0.3, .kind = "video", .path = path});
        state.dupGroups.push_back({.id = "bytes",
                                   .name = "\uFFFD",
                                   .pairs = {{{"\uFFFD", "0.1"}}, {{"copy.bin", "0.1"}}},
                                   .paths = {copy, copy1},
                                   .recommended = 1});
        ScanCache(*machine.platform.files, machine.platform.layout).save(state, stamp);
        openWindow();
        bridge->applyBootState();
    }

    void restart() {
        bridge.reset();
        openWindow();
        bridge->applyBootState();
    }
};

TEST_F(NamesOfAnyBytes, AreListedWithEveryByteAfterARestart) {
    const json state = shown();
    ASSERT_THAT(state["files"], SizeIs(3));
    EXPECT_EQ(state["files"][2]["path"], shownPath);
    EXPECT_EQ(state["files"][2]["name"], "caf\uFFFD.mov");
    EXPECT_EQ(state["dupGroups"][1]["paths"][0], machine.home.path("a/\0ff"s));
}

TEST_F(NamesOfAnyBytes, AreMovedListedAndRestoredUnderTheirOwnName) {
    remove({film, shownPath});
    EXPECT_FALSE(machine.platform.files->exists(path));
    EXPECT_FALSE(machine.home.exists("Movies/film.mov")) << "the others of the selection too";
    ASSERT_THAT(trash.items(), SizeIs(2));
    EXPECT_EQ(trash.items()[1].originalPath, path);
    EXPECT_EQ(trash.items()[1].gb, 0.3) << "the size that the analysis has found";
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));

    const json item = lastArgument(*page, "onTrashState")[1];
    EXPECT_EQ(item["path"], shownPath);
    EXPECT_EQ(item["name"], text);
    EXPECT_EQ(shown()["history"][0]["items"][1]["name"], text);

    restart();
    EXPECT_EQ(lastArgument(*page, "onTrashState")[1]["path"], shownPath);
    EXPECT_EQ(shown()["history"][0]["items"][1]["name"], text);
    ask("restoreItem", item["id"]);
    EXPECT_TRUE(machine.platform.files->exists(path)) << "byte for byte";
}

TEST_F(NamesOfAnyBytes, AreStillKnownToATrashThatIsReadAnew) {
    remove({shownPath});
    VeltoTrashService another(*machine.platform.files, *machine.platform.mover, machine.clock,
                              machine.log, machine.platform.layout);
    ASSERT_THAT(another.items(), SizeIs(1));
    EXPECT_EQ(another.items()[0].originalPath, path);
    another.restore(another.items()[0].id);
    EXPECT_TRUE(machine.platform.files->exists(path));
    HistoryService past(*machine.platform.files, *machine.platform.mover, machine.log,
                        machine.platform.layout);
    EXPECT_EQ(past.entries().at(0).items.at(0).name, "caf\xE9.mov");
}

TEST_F(NamesOfAnyBytes, AreDeletedForGoodWhenAsked) {
    remove({shownPath});
    ask("purgeItem", trash.items()[0].id);
    EXPECT_THAT(trash.items(), SizeIs(0));
    EXPECT_FALSE(machine.platform.files->exists(path));
}

TEST_F(NamesOfAnyBytes, AreExcludedAndIncludedAgain) {
    ask("addExclusion", shownPath);
    EXPECT_TRUE(exclusions.isExcluded(path));
    EXPECT_EQ(lastArgument(*page, "onExclusions"), json::array({shownPath}));
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("caf\uFFFD.mov"));
    ExclusionService read(*machine.platform.files, machine.platform.layout);
    EXPECT_THAT(read.paths(), ElementsAre(path)) << "after a restart";
    ask("removeExclusion", shownPath);
    EXPECT_FALSE(exclusions.isExcluded(path));
}

TEST_F(NamesOfAnyBytes, AreRevealedAtTheirOwnPlace) {
    ask("revealPath", shownPath);
    EXPECT_THAT(machine.workspace.revealed, Contains(path));
    ask("revealPath", machine.home.path("Movies\0/x"s));
    EXPECT_THAT(machine.workspace.revealed, SizeIs(1)) << "what is no path leads nowhere";
}

TEST_F(NamesOfAnyBytes, GoToTheCloudFolderAndComeBack) {
    machine.platform.files->createFolders(machine.platform.layout.cloudDrive);
    ask("moveCloud", {{"paths", {shownPath}}});
    EXPECT_EQ(lastArgument(*page, "onCloudMove")["moved"], json::array({shownPath}));
    EXPECT_FALSE(machine.platform.files->exists(path));
    CloudFolder another(*machine.platform.files, *machine.platform.mover, machine.log,
                        machine.platform.layout);
    EXPECT_THAT(another.moveFrom({path}).moved, ElementsAre(path));
    EXPECT_TRUE(machine.platform.files->exists(path));
}

TEST_F(NamesOfAnyBytes, AreProposedForCleaningAndCleaned) {
    machine.home.sparse("Library/Caches/caf\xE9/blob", 90'000'000);
    ask("scanCleanables");
    const std::string cache = machine.home.path("Library/Caches/caf\0e9"s);
    const json found = lastArgument(*page, "onCleanables");
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0]["path"], cache);
    EXPECT_EQ(found[0]["label"], "Caché de caf\uFFFD.");
    EXPECT_TRUE(lastArgument(*page, "onCleanableFacts").contains(cache));
    ask("cleanPaths", {{"paths", {cache}}});
    EXPECT_FALSE(machine.home.exists("Library/Caches/caf\xE9"));
}

}  // namespace
}  // namespace velto
