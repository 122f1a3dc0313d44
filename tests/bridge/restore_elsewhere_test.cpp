// An item that cannot go back to its place, and one that is wanted elsewhere.

#include <filesystem>

#include "bridge/TrashFixture.h"
#include "bridge/failure_text.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace fs = std::filesystem;

struct RestoreElsewhere : TrashFixture {
    std::string id;

    void SetUp() override {
        TrashFixture::SetUp();
        remove({film});
        id = trash.items().front().id;
        machine.home.folder("Desktop");
        page->scripts.clear();
    }

    /// The film's folder is a link to a folder of others by now.
    void blockPlace() {
        fs::remove_all(machine.home.path("Movies"));
        machine.home.folder("elsewhere");
        machine.home.link("Movies", machine.home.path("elsewhere"));
    }
};

TEST_F(RestoreElsewhere, ABlockedPlaceIsToldWithTheFileAndWhatStandsInTheWay) {
    blockPlace();
    ask("restoreItem", id);
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't restore",
                          "“film.mov” is still in Velto Trash: “~/Movies” is a link now. You can "
                          "restore it to another folder."));
    EXPECT_EQ(lastArgument(*page, "onRestoreBlocked"),
              json({{"id", id}, {"path", machine.home.path("Movies")}}));
    language.setCode("es");
    ask("undoLast");
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("No se pudo deshacer",
                          "«film.mov» sigue en la Papelera: «~/Movies» es ahora un enlace. Puedes "
                          "restaurarlo en otra carpeta."));
    EXPECT_THAT(page->calls("onRestoreBlocked"), SizeIs(2));
    EXPECT_THAT(trash.items(), SizeIs(1));
    EXPECT_TRUE(fs::is_empty(machine.home.path("elsewhere")));
}

TEST_F(RestoreElsewhere, AnotherFailureOffersNoOtherFolder) {
    ask("restoreItem", "itNONE");
    EXPECT_THAT(page->calls("toast"), SizeIs(1));
    EXPECT_THAT(page->calls("onRestoreBlocked"), IsEmpty());
}

TEST_F(RestoreElsewhere, TheChosenFolderTakesItAndThePageIsTold) {
    blockPlace();
    shell.chosenFolder = machine.home.path("Desktop");
    ask("restoreItemTo", {{"id", id}});
    ASSERT_THAT(shell.folderQuestions, SizeIs(1));
    EXPECT_EQ(shell.folderQuestions[0].title, "Restore “film.mov” to another folder");
    EXPECT_EQ(shell.folderQuestions[0].accept, "Restore here");
    EXPECT_EQ(shell.folderQuestions[0].decline, "Cancel");
    EXPECT_EQ(shell.folderQuestions[0].startAt, machine.home.path());
    EXPECT_TRUE(machine.home.exists("Desktop/film.mov"));
    EXPECT_THAT(trash.items(), IsEmpty());
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Restored", "“film.mov” is in ~/Desktop now."));
    EXPECT_EQ(page->calls("onTrashChanged").back(), trashChangedScript("0.0"));
}

TEST_F(RestoreElsewhere, InSpanish) {
    language.setCode("es");
    shell.chosenFolder = machine.home.path("Desktop");
    ask("restoreItemTo", {{"id", id}});
    EXPECT_EQ(shell.folderQuestions[0].title, "Restaurar «film.mov» en otra carpeta");
    EXPECT_EQ(shell.folderQuestions[0].accept, "Restaurar aquí");
    EXPECT_EQ(shell.folderQuestions[0].decline, "Cancelar");
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Restaurado", "«film.mov» está ahora en ~/Desktop."));
}

TEST_F(RestoreElsewhere, WhoDeclinesChangesNothing) {
    ask("restoreItemTo", {{"id", id}});
    EXPECT_THAT(shell.folderQuestions, SizeIs(1));
    EXPECT_THAT(page->scripts, SizeIs(1)) << "the echo alone";
    EXPECT_THAT(trash.items(), SizeIs(1));
}

TEST_F(RestoreElsewhere, AFolderThatWillNotDoIsRefusedInWords) {
    for (const auto& [folder, reason] :
         {std::pair{std::string("/tmp"), "La ruta está fuera de tu carpeta de usuario."},
          {machine.home.path("Library/Application Support/Velto/Trash"),
           "Ya está en la Papelera de Velto."}}) {
        shell.chosenFolder = folder;
        ask("restoreItemTo", {{"id", id}});
        EXPECT_EQ(page->calls("toast").back(), toastScript("Couldn't restore there", reason));
    }
    blockPlace();
    language.setCode("es");
    shell.chosenFolder = machine.home.path("Movies");
    ask("restoreItemTo", {{"id", id}});
    EXPECT_THAT(page->calls("toast").back(),
                HasSubstr("\"No se pudo restaurar ahí\", \"«film.mov» sigue en la Papelera: "
                          "«~/Movies» es ahora un enlace."));
    EXPECT_THAT(trash.items(), SizeIs(1));
}

TEST_F(RestoreElsewhere, NobodyIsAskedForWhatIsNotThere) {
    shell.chosenFolder = machine.home.path("Desktop");
    ask("restoreItemTo");
    ask("restoreItemTo", id);
    ask("restoreItemTo", {{"id", "itNONE"}});
    ask("restoreItemTo", {{"id", 7}});
    ask("restoreItemTo", {{"path", film}});
    EXPECT_THAT(shell.folderQuestions, IsEmpty());
    EXPECT_THAT(trash.items(), SizeIs(1));
}

TEST_F(RestoreElsewhere, ALinkInTheTrashsPlaceIsToldAndEmptyingLeavesWhatItLeadsTo) {
    const std::string folder = machine.home.path(dataFolder + "/Trash");
    machine.home.text("precious/file", "kept");
    fs::rename(folder, folder + " aside");
    fs::create_symlink(machine.home.path("precious"), folder);
    ask("purgeTrash");
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't empty Trash",
                          "“~/Library/Application Support/Velto/Trash” is a link and is not "
                          "followed. Nothing was touched."));
    EXPECT_EQ(machine.home.read("precious/file"), "kept");
    EXPECT_EQ(leavesBelow(machine.home.path("precious")), std::set<std::string>{"file"});
}

}  // namespace
}  // namespace velto
