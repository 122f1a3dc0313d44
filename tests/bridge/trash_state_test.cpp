#include "bridge/TrashFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using TrashState = TrashFixture;

TEST_F(TrashState, NoViewOffersWhatIsGoneNorDoesTheNextStart) {
    remove({film, copy3});
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
    const json group = shown()["dupGroups"][0];
    EXPECT_EQ(group["paths"], json({copy1, copy2}));
    EXPECT_THAT(group["pairs"], SizeIs(2));
    EXPECT_EQ(group["recommended"], 0);
    const json saved = savedState();
    EXPECT_EQ(saved["state"], shown());
    EXPECT_EQ(saved["ts"], stamp);

    remove({copy1});
    EXPECT_THAT(shown()["dupGroups"], IsEmpty()) << "one copy is no duplicate";
}

TEST_F(TrashState, WhatLiesInARemovedFolderIsGoneToo) {
    remove({machine.home.path("Movies")});
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
    remove({machine.home.path("Doc")});  // fails: nothing is there, and "Documents" is another
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
}

TEST_F(TrashState, WhatComesBackBesideItsPlaceIsNotListedAtIt) {
    remove({film});
    machine.home.text("Movies/film.mov", "another film");
    ask("restoreItem", trash.items()[0].id);
    EXPECT_TRUE(machine.home.exists("Movies/film (restaurado 1).mov"));
    EXPECT_EQ(machine.home.read("Movies/film.mov"), "another film");
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
}

TEST_F(TrashState, RequestsAreAnsweredInTheirOrder) {
    post("deleteFiles", {{"paths", {film}}});
    post("undoLast");
    post("deleteFiles", {{"paths", {archive}}});
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 1u) << "one work item at a time";
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    ASSERT_THAT(trash.items(), SizeIs(1));
    EXPECT_EQ(trash.items()[0].originalPath, archive);
}

TEST_F(TrashState, ANextStartKnowsTrashAndHistory) {
    remove({film});
    page = std::make_shared<FakeWebView>();
    open();
    EXPECT_THAT(page->userScripts.front(), HasSubstr("\"history\":[{")) << "before any script runs";
    load();
    EXPECT_EQ(count("onTrashState"), 1u);
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
    EXPECT_THAT(shown()["history"], SizeIs(1));
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
}

TEST_F(TrashState, APageThatLoadsBeforeTheTrashIsReadStillGetsItInOrder) {
    remove({film});
    page = std::make_shared<FakeWebView>();
    openAnother();
    load();
    EXPECT_EQ(count("setState"), 1u);
    EXPECT_EQ(count("onTrashState"), 0u);
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onTrashState"), 1u);
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
}

TEST_F(TrashState, WhatAnotherProcessDoesShowsWhenTheWindowComesToTheFront) {
    VeltoTrashService other{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
    bridge->refreshTrash();
    machine.dispatcher.runAll();
    EXPECT_THAT(page->scripts, IsEmpty()) << "nothing has changed";

    other.moveToTrash({film}, "maintenance");
    bridge->refreshTrash();
    machine.dispatcher.runAll();
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
    EXPECT_EQ(count("onTrashChanged"), 1u);
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
}

TEST_F(TrashState, AStartAfterAMaintenanceRunDoesNotOfferWhatItHasMoved) {
    VeltoTrashService other{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
    other.moveToTrash({film, archive}, "maintenance");
    machine.home.text("Documents/archive.zip", "made anew");
    page = std::make_shared<FakeWebView>();
    open();
    load();
    EXPECT_THAT(shownFiles(), ElementsAre("archive.zip"));
}

TEST_F(TrashState, AnAnalysisThatRunsMeanwhileDoesNotBringBackWhatHasGone) {
    machine.home.file("Music/large.wav", 310_MB);
    post("scan");
    machine.dispatcher.runGlobal();  // the walk has seen the file
    post("deleteFiles", {{"paths", {machine.home.path("Music/large.wav")}}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onScanFinished"), 1u);
    EXPECT_THAT(shownFiles(), IsEmpty());
    EXPECT_THAT(shown()["history"], SizeIs(1));

    ask("undoLast");
    EXPECT_THAT(shownFiles(), ElementsAre("large.wav"));
    ask("scan");
    EXPECT_THAT(shownFiles(), ElementsAre("large.wav"));
}

TEST_F(TrashState, WhatChangesNothingInTheTrashTellsNothingOfIt) {
    remove({film});
    page->scripts.clear();
    ask("clearHistory");
    machine.home.folder("Library/Mobile Documents/com~apple~CloudDocs");
    ask("moveCloud", {{"paths", {archive}}});
    EXPECT_EQ(lastArgument(*page, "onCloudMove")["moved"].size(), 1u);
    EXPECT_EQ(count("onTrashChanged") + count("onTrashState"), 0u);
    EXPECT_GE(count("setState"), 2u);
}

TEST_F(TrashState, OfAnUndoneCleanupWhatWasDeletedForGoodStaysInTheHistory) {
    remove({film, archive});
    ask("purgeItem", trash.items()[1].id);
    ask("undoLast");
    const nlohmann::json entries = shown()["history"];
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0]["items"], nlohmann::json::array({{{"name", "archive.zip"}, {"gb", 0.7}}}));
    EXPECT_EQ(entries[0]["gb"], 0.7);

    remove({film});
    ask("undoLast");
    EXPECT_THAT(shown()["history"], SizeIs(1));
}

TEST_F(TrashState, AnItemThatCameBackUnderAnotherNameIsNamedBeforeTheTrash) {
    remove({film, archive});
    machine.home.text("Movies/film.mov", "another one");
    const std::string id = trash.items()[0].id;
    page->scripts.clear();
    ask("undoLast");
    const nlohmann::json told = lastArgument(*page, "onPutBack");
    ASSERT_THAT(told, SizeIs(1)) << "the other one has its own name";
    EXPECT_EQ(told[0]["id"], id);
    EXPECT_EQ(told[0]["path"], machine.home.path("Movies/film (restaurado 1).mov"));
    const auto at = [&](const char* callback) {
        return std::ranges::find_if(page->scripts, [&](const std::string& script) {
            return script.find(callback) != std::string::npos;
        });
    };
    EXPECT_LT(at("onPutBack("), at("onTrashState("));
    page->scripts.clear();
    remove({copy1});
    ask("undoLast");
    EXPECT_EQ(count("onPutBack"), 0u);
}

TEST_F(TrashState, AWholeCleanupIsDeletedForGoodAndNoOther) {
    remove({film, archive});
    const std::string operation = trash.items().front().opID;
    remove({copy1});
    ask("purgeOperation", {{"id", operation}});
    ASSERT_THAT(trash.items(), SizeIs(1));
    EXPECT_EQ(trash.items().front().originalPath, copy1);
    EXPECT_EQ(page->calls("toast").back(), toastScript("Deleted", "2 items deleted permanently."));
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
    page->scripts.clear();
    ask("purgeOperation");
    ask("purgeOperation", operation);
    EXPECT_EQ(count("toast"), 0u);
    EXPECT_THAT(trash.items(), SizeIs(1));
    ask("purgeOperation", {{"id", trash.items().front().opID}});
    EXPECT_EQ(page->calls("toast").back(), toastScript("Deleted", "1 item deleted permanently."));
    EXPECT_TRUE(trash.items().empty());
}

TEST_F(TrashState, HistoryShowsBeforeTheFirstAnalysisToo) {
    machine.platform.files->removeAll(machine.home.path(dataFolder + "/lastScan.json"));
    openWindow();
    const std::string path = machine.home.text("x", "x").path();
    bridge->bootState.reset();
    remove({path});
    EXPECT_THAT(shown()["history"], SizeIs(1));
}

TEST_F(TrashState, AResetEmptiesTrashAndHistoryInMemoryToo) {
    remove({film});
    post("deleteFiles", {{"paths", {archive}}});  // still waiting when the reset is asked for
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists(dataFolder));
    EXPECT_THAT(lastArgument(*page, "onTrashState"), IsEmpty());
    EXPECT_EQ(page->calls("onTrashChanged").back(), trashChangedScript("0.0"));
    EXPECT_THAT(shown()["history"], IsEmpty());
    EXPECT_THAT(shown()["cats"], IsEmpty());

    remove({copy1});
    EXPECT_THAT(trash.items(), SizeIs(1));
    EXPECT_THAT(history.entries(), SizeIs(1));
    EXPECT_EQ(json::parse(machine.home.read(dataFolder + "/Trash/manifest.json"))["items"].size(),
              1u);
}

TEST_F(TrashState, WorkOfAWindowThatIsClosedIsNotBegun) {
    post("deleteFiles", {{"paths", {film}}});
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
}

TEST_F(TrashState, WorkThatIsDoneWhenTheWindowClosesIsInTheHistory) {
    post("deleteFiles", {{"paths", {film}}});
    machine.dispatcher.runGlobal();
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_THAT(history.entries(), SizeIs(1));
    openWindow();
    post("webReady");
    EXPECT_THAT(bridge->bootState->state.history, SizeIs(1));
}

}  // namespace
}  // namespace velto
