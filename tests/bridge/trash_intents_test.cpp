#include "bridge/TrashFixture.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using TrashIntents = TrashFixture;

TEST_F(TrashIntents, RemovingTellsHowMuchForHowLongAndShowsTheNewState) {
    ask("deleteFiles", {{"paths", {film, copy1}}, {"kind", "space"}});

    EXPECT_FALSE(machine.home.exists("Movies/film.mov"));
    EXPECT_FALSE(machine.home.exists("a/copy.bin"));
    ASSERT_THAT(trash.items(), SizeIs(2));
    EXPECT_EQ(trash.operations().front().kind, "space");
    EXPECT_EQ(trash.items()[0].gb, 1.2) << "the size that the analysis has found";
    EXPECT_EQ(trash.items()[1].gb, 4.9);

    // The toast, then the trash, then the state, then what they do not say.
    ASSERT_THAT(page->scripts, SizeIs(7));
    EXPECT_EQ(page->scripts[1], toastScript("Removed", "6.1 GB in Velto Trash. Kept for 30 days."));
    EXPECT_EQ(page->scripts[2], trashChangedScript("6.1"));
    EXPECT_THAT(page->scripts[3], HasSubstr("onTrashState(["));
    EXPECT_THAT(page->scripts[4], HasSubstr("onPermissions("));
    EXPECT_THAT(page->scripts[5], HasSubstr("setState("));
    EXPECT_THAT(page->scripts[5], HasSubstr(", 1600000000.0);")) << "its old stamp";
    EXPECT_THAT(page->scripts[6], HasSubstr("onExactSizes("));
}

TEST_F(TrashIntents, TheToastFollowsLanguageAndRetention) {
    language.setCode("es");
    settings.setRetention(7);
    remove({film});
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Eliminado", "1,2 GB en la Papelera de Velto. Se conservan 7 días."));
}

TEST_F(TrashIntents, TheTrashIsToldItemByItem) {
    machine.clock.time = 1'700'000'000.5;
    remove({film});
    const TrashItem item = trash.items().front();
    EXPECT_EQ(lastArgument(*page, "onTrashState"), json::array({{{"id", item.id},
                                                                 {"name", "film.mov"},
                                                                 {"gb", 1.2},
                                                                 {"taken", 1'700'000'000.5},
                                                                 {"path", film},
                                                                 {"opID", item.opID}}}));
}

TEST_F(TrashIntents, EveryCleanupIsInTheHistoryNewestFirst) {
    remove({film});
    remove({archive, copy1});
    const json entries = shown()["history"];
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[0]["id"], trash.operations()[0].id);
    EXPECT_EQ(entries[0]["items"], json::array({{{"name", "archive.zip"}, {"gb", 0.7}},
                                                {{"name", "copy.bin"}, {"gb", 4.9}}}));
    EXPECT_EQ(entries[1]["items"][0]["name"], "film.mov");
    EXPECT_EQ(entries[0]["kind"], "wind");
    EXPECT_EQ(savedState()["state"]["history"], entries);
}

TEST_F(TrashIntents, CleanPathsDoesWhatDeleteFilesDoesWithoutAKind) {
    ask("cleanPaths", {{"paths", {film}}});
    remove({archive});
    ASSERT_THAT(trash.operations(), SizeIs(2));
    EXPECT_EQ(trash.operations()[0].kind, "wind");
    EXPECT_EQ(trash.operations()[1].kind, "wind");
    EXPECT_EQ(trash.operations()[1].items.front().originalPath, film);
    EXPECT_THAT(page->calls("toast"), SizeIs(2));
}

TEST_F(TrashIntents, MalformedPayloadsDoNothing) {
    for (const char* type : {"deleteFiles", "cleanPaths"}) {
        ask(type);
        ask(type, json::object());
        ask(type, {{"paths", json::array()}});
        ask(type, {{"paths", {film, 7}}});
        ask(type, json::array({film}));
    }
    ask("deleteFiles", {{"paths", {film}}, {"kind", 7}});
    for (const char* type : {"restoreItem", "purgeItem"}) {
        ask(type);
        ask(type, {{"id", "it"}});
    }
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    EXPECT_THAT(trash.operations(), IsEmpty());
    EXPECT_EQ(count("toast") + count("setState") + count("onTrashState"), 0u);
}

TEST_F(TrashIntents, ARefusedPathMovesNothingAndSaysWhy) {
    const std::string mail = machine.home.text("Documents/MailMerge.docx", "x").path();
    remove({film, mail});
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't remove",
                          "Es un elemento protegido (librería de Fotos, backup, correo)."));
    EXPECT_EQ(count("onTrashChanged") + count("onTrashState") + count("setState"), 0u)
        << "nothing has changed";
    EXPECT_THAT(history.entries(), IsEmpty());
    language.setCode("es");
    remove({machine.home.path("nowhere")});
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("No se pudo eliminar", "El archivo ya no existe."));
}

TEST_F(TrashIntents, WhatWasRefusedAndWhatCouldGoIsToldBeforeTheMessage) {
    const std::string mail = machine.home.text("Documents/MailMerge.docx", "x").path();
    const std::string link = machine.home.path("linked");
    machine.home.link("linked", machine.home.path("Movies"));
    const std::string never = machine.home.path("never");
    const std::string held = machine.home.text(dataFolder + "/Trash/x", "x").path();
    remove({mail, film, link, never, held, archive, "/etc/hostname"});
    EXPECT_TRUE(machine.home.exists("Movies/film.mov")) << "nothing is moved unasked";
    EXPECT_EQ(lastArgument(*page, "onRefused"),
              json({{"refused",
                     {{{"path", mail}, {"reason", "protected"}},
                      {{"path", link}, {"reason", "link"}},
                      {{"path", never}, {"reason", "gone"}},
                      {{"path", held}, {"reason", "trash"}},
                      {{"path", "/etc/hostname"}, {"reason", "outside"}}}},
                    {"rest", {film, archive}}}));
    ASSERT_THAT(page->scripts, SizeIs(3));
    EXPECT_THAT(page->scripts[1], HasSubstr("onRefused("));
    EXPECT_THAT(page->scripts[2], HasSubstr("toast("));

    remove({film, archive});
    EXPECT_FALSE(machine.home.exists("Movies/film.mov"));
}

TEST_F(TrashIntents, ARefusalAboutAnItemNamesIt) {
    remove({film});
    const std::string id = trash.items().front().id;
    machine.platform.files->removeAll(
        machine.home.path(dataFolder + "/Trash/" + trash.items().front().opID));
    for (const char* type : {"restoreItem", "purgeItem"}) {
        ask(type, id);
        EXPECT_EQ(
            lastArgument(*page, "onRefused"),
            json({{"refused", {{{"path", film}, {"reason", "gone"}}}}, {"rest", json::array()}}));
    }
    ask("restoreItem", "itNobody");
    EXPECT_EQ(lastArgument(*page, "onRefused")["refused"][0]["path"], "");
}

TEST_F(TrashIntents, AReasonWithAFileNameNeverBecomesScript) {
    const std::string folder = "Documents/a\\\");alert(1);\n";
    remove({machine.home.text(folder + "/file", "x").path()});
    machine.platform.files->removeAll(machine.home.path(folder));
    machine.home.text(folder, "a file where the folder was");
    ask("restoreItem", trash.items().front().id);
    const std::string script = page->calls("toast").back();
    EXPECT_THAT(script, HasSubstr("\"Couldn't restore\", \"“file” is still in Velto Trash: “"));
    EXPECT_THAT(script, HasSubstr("a/\\\");alert(1); "));
    EXPECT_THAT(script, Not(HasSubstr("\n")));
    EXPECT_THAT(script, Not(HasSubstr("\\\\")));
}

TEST_F(TrashIntents, AFolderThatNoListKnowsIsMeasured) {
    machine.home.file("Projects/old/data.bin", 1_MB);
    machine.home.sparse("Projects/old/more.bin", 1'249'000'000);
    remove({machine.home.path("Projects/old")});
    EXPECT_THAT(trash.items().front().gb, testing::DoubleNear(1.25, 0.001));
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Removed", "1.3 GB in Velto Trash. Kept for 30 days."));
}

TEST_F(TrashIntents, UndoBringsBackTheFilesTheListsAndTheHistory) {
    const json before = savedState()["state"];
    remove({archive});
    remove({film, copy3});
    page->scripts.clear();
    ask("undoLast");
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    EXPECT_TRUE(machine.home.exists("c/copy.bin"));
    EXPECT_FALSE(machine.home.exists("Documents/archive.zip"));
    EXPECT_THAT(shownFiles(), ElementsAre("film.mov"));
    EXPECT_EQ(shown()["dupGroups"], before["dupGroups"]);
    EXPECT_THAT(shown()["history"], SizeIs(1));
    EXPECT_EQ(count("toast"), 0u);
    EXPECT_EQ(page->calls("onTrashChanged").back(), trashChangedScript("0.7"));

    ask("undoLast");
    EXPECT_EQ(shown()["files"], before["files"]);
    EXPECT_THAT(shown()["history"], IsEmpty());
    EXPECT_EQ(savedState()["state"]["files"], before["files"]);
    EXPECT_THAT(lastArgument(*page, "onTrashState"), IsEmpty());
}

TEST_F(TrashIntents, UndoWithNothingToUndoSaysNothing) {
    ask("undoLast");
    EXPECT_THAT(page->scripts, SizeIs(1)) << "the echo alone";
}

TEST_F(TrashIntents, AnUndoThatFailsHalfwaySaysSoAndTellsWhatIsBack) {
    remove({film, archive});
    const TrashItem stuck = trash.items()[1];
    machine.platform.files->removeAll(machine.platform.layout.trashFolder + "/" + stuck.opID + "/" +
                                      stuck.id + "-archive.zip");
    page->scripts.clear();
    ask("undoLast");
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't undo", "El archivo ya no existe."));
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
    EXPECT_THAT(shownFiles(), ElementsAre("film.mov"));
    EXPECT_THAT(shown()["history"], SizeIs(1)) << "it is not undone";
}

TEST_F(TrashIntents, OneItemComesBackAndItsHistoryStays) {
    remove({film, archive});
    const std::string id = trash.items()[0].id;
    page->scripts.clear();
    ask("restoreItem", id);
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
    EXPECT_THAT(page->scripts[1], trashChangedScript("0.7"));
    EXPECT_THAT(lastArgument(*page, "onTrashState"), SizeIs(1));
    EXPECT_THAT(shownFiles(), ElementsAre("film.mov"));
    EXPECT_THAT(shown()["history"], SizeIs(1));
    EXPECT_EQ(count("toast"), 0u);

    ask("restoreItem", id);
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't restore", "El archivo ya no existe."));
    language.setCode("es");
    ask("restoreItem", "itNONE");
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("No se pudo restaurar", "El archivo ya no existe."));
}

TEST_F(TrashIntents, DeletingForGoodSaysSoAndTellsTheFreeSpace) {
    remove({film, archive});
    const std::string id = trash.items()[0].id;
    page->scripts.clear();
    machine.volumes.available = 250'000'000'000;
    ask("purgeItem", id);
    EXPECT_EQ(page->scripts[1], toastScript("Deleted", "Deleted permanently."));
    EXPECT_EQ(page->scripts[2], trashChangedScript("0.7"));
    EXPECT_EQ(shown()["free"], 250);
    EXPECT_EQ(shown()["ser"], freeSpaceScore(250, 500));
    EXPECT_FALSE(machine.home.exists("Movies/film.mov"));
    EXPECT_THAT(shownFiles(), IsEmpty());
    EXPECT_THAT(shown()["history"], SizeIs(1)) << "history tells what was done";

    ask("purgeItem", id);
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't delete", "El archivo ya no existe."));
    language.setCode("es");
    ask("purgeItem", id);
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("No se pudo eliminar", "El archivo ya no existe."));
    ask("purgeItem", trash.items()[0].id);
    EXPECT_EQ(page->calls("toast").back(), toastScript("Eliminado", "Eliminado definitivamente."));
}

TEST_F(TrashIntents, EmptyingTakesEverything) {
    remove({film});
    remove({archive});
    page->scripts.clear();
    ask("purgeTrash");
    EXPECT_THAT(trash.items(), IsEmpty());
    EXPECT_EQ(page->scripts[1], toastScript("Trash emptied", "Items deleted permanently."));
    EXPECT_EQ(page->scripts[2], trashChangedScript("0.0"));
    EXPECT_THAT(lastArgument(*page, "onTrashState"), IsEmpty());
    EXPECT_EQ(leavesBelow(machine.home.path(dataFolder + "/Trash")),
              std::set<std::string>{"manifest.json"});
    language.setCode("es");
    ask("purgeTrash");
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Papelera vaciada", "Elementos eliminados definitivamente."));
    EXPECT_EQ(page->calls("onTrashChanged").back(), trashChangedScript("0.0"));
}

TEST_F(TrashIntents, ATrashThatCannotBeEmptiedStays) {
    remove({film});
    const std::string lock = dataFolder + "/Trash.lock";
    machine.platform.files->removeAll(machine.home.path(lock));
    machine.home.folder(lock);  // nobody can lock that
    page->scripts.clear();
    ask("purgeTrash");
    EXPECT_THAT(page->calls("toast").back(),
                HasSubstr("\"Couldn't empty Trash\", \"The system did not let "));
    EXPECT_THAT(trash.items(), SizeIs(1));
    EXPECT_EQ(count("onTrashState") + count("setState"), 0u) << "nothing has changed";
    language.setCode("es");
    ask("purgeTrash");
    EXPECT_THAT(page->calls("toast").back(),
                HasSubstr("\"No se pudo vaciar\", \"El sistema no dej"));
    ask("undoLast");
    EXPECT_THAT(page->calls("toast").back(),
                HasSubstr("\"No se pudo deshacer\", \"El sistema no dej"));
}

TEST_F(TrashIntents, ClearingTheHistoryLeavesTheTrash) {
    remove({film});
    page->scripts.clear();
    machine.log.clear();
    ask("clearHistory");
    EXPECT_THAT(shown()["history"], IsEmpty());
    EXPECT_THAT(savedState()["state"]["history"], IsEmpty());
    EXPECT_EQ(machine.home.read(dataFolder + "/history.json"), "[]");
    EXPECT_TRUE(machine.log.holds("Velto ▶ historial vaciado"));
    EXPECT_THAT(trash.items(), SizeIs(1));

    page->scripts.clear();
    machine.log.clear();
    ask("clearHistory");
    EXPECT_FALSE(machine.log.holds("Velto ▶ historial vaciado"));
    EXPECT_THAT(page->scripts, SizeIs(1)) << "the echo alone";
}

}  // namespace
}  // namespace velto
