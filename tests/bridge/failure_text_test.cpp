#include "bridge/failure_text.h"

#include <cerrno>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cleaning/VeltoTrashService.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TestPlatform.h"
#include "support/WatchedFileCalls.h"

namespace velto {
namespace {

using testing::HasSubstr;

const HomeLayout layout = HomeLayout::macOS("/h");

/// In lower-case words, so that "la" is not found in "the place".
bool holdsWord(const std::string& text, const std::string& word) {
    std::string words = " ";
    for (const char letter : text) {
        const bool isLetter = std::isalpha(static_cast<unsigned char>(letter)) != 0 || letter < 0;
        words +=
            isLetter ? static_cast<char>(std::tolower(static_cast<unsigned char>(letter))) : ' ';
    }
    words += ' ';
    return words.find(" " + word + " ") != std::string::npos;
}

/// Both languages are what they say, and no name is in them that only the program knows.
void judge(const FailureText& text) {
    for (const char* word :
         {"the",    "is",     "not",   "disk",      "file",       "folder", "failed",
          "error",  "cannot", "could", "directory", "permission", "denied", "such",
          "device", "left",   "space", "move",      "remove",     "system", "operation"}) {
        EXPECT_FALSE(holdsWord(text.spanish, word)) << word << " in: " << text.spanish;
    }
    for (const char* word : {"el", "la", "los", "disco", "no queda", "ya", "está", "otra", "para",
                             "sus", "carpeta", "archivo", "que"}) {
        EXPECT_FALSE(holdsWord(text.english, word)) << word << " in: " << text.english;
    }
    for (const std::string& sentence : {text.spanish, text.english}) {
        for (const char* name : {".velto-", "manifest", ".json", "journal", ".lock", "/it", "/op",
                                 "Removing", "errno", "{}"}) {
            EXPECT_EQ(sentence.find(name), std::string::npos) << name << " in: " << sentence;
        }
        EXPECT_TRUE(sentence.ends_with('.')) << sentence;
    }
}

TEST(FailureText, AMountIsNoCopyToAnotherDiskAndNothingThatIsInUse) {
    const std::string stored = layout.trashFolder + "/opAAAA/itA1B2C3D4-chroot/home";
    for (const int code : {EXDEV, EBUSY}) {
        const FailureText named = failureText(SomethingMounted("remove", stored, code), layout);
        EXPECT_EQ(named.english,
                  "Another disk or folder is mounted inside “chroot”. It was neither deleted nor "
                  "moved.");
        EXPECT_THAT(named.spanish, HasSubstr("montados dentro"));
        judge(named);
        judge(failureText(SomethingMounted("remove", layout.trashFolder, code), layout));
    }
}

TEST(FailureText, EveryReasonOfTheSystemIsInBothLanguagesAndNamesNothingInternal) {
    const std::string places[] = {
        "/h/Foto uno.mov",
        layout.trashFolder + "/opAAAA/itA1B2C3D4-Foto uno.mov/x",
        layout.trashFolder + "/opAAAA",
        layout.trashFolder + "/manifest.json",
        layout.trashFolder + ".lock",
        layout.trashFolder + ".journal",
        layout.dataFolder + "/history.json",
        layout.dataFolder + "/Removing/x",
        "/h/Pictures/.velto-0123456789abcdef",
        "a cloud drive",
        "",
    };
    for (const std::string& place : places) {
        for (int code = 0; code < 135; ++code) {
            if (code == ELOOP) continue;  // names what the user has to take away
            judge(failureText(FileError("move", place, code), layout));
        }
    }
}

TEST(FailureText, TheUsersFileIsNamedAlsoWhereItLiesInTheTrash) {
    for (const int code : {EACCES, EBUSY, EIO, ENOENT, EEXIST, ENAMETOOLONG, EXDEV, EINVAL}) {
        EXPECT_THAT(failureText(FileError("move", "/h/a/Foto.mov", code), layout).spanish,
                    HasSubstr("«~/a/Foto.mov»"));
        const std::string held = layout.trashFolder + "/opAAAA/itA1B2C3D4-Foto.mov/inside";
        EXPECT_THAT(failureText(FileError("move", held, code), layout).english,
                    HasSubstr("“Foto.mov”"));
    }
}

TEST(FailureText, OfTheScheduleIsInBothLanguages) {
    using Reason = SchedulerError::Reason;
    for (const Reason reason : {Reason::programPlace, Reason::toolMissing, Reason::toolRefused})
        judge(failureText(SchedulerError(reason, "systemctl: Unit not found"), layout));
}

TEST(FailureText, OfAnythingElseSaysNothingThatNobodyUnderstands) {
    judge(failureText(std::runtime_error("type_error.302: manifest"), layout));
}

TEST(FailureText, OfTheTrashsOwnRefusalsIsAsItStands) {
    const TrashError error(TrashError::Reason::notFound);
    EXPECT_EQ(failureText(error, layout).english, "El archivo ya no existe.");
}

TEST(FailureText, OfATrashThatIsInUseIsInBothLanguages) {
    const FailureText text = failureText(FileError("lock", "/h/Trash.lock", EWOULDBLOCK), layout);
    EXPECT_EQ(text.spanish,
              "Otra copia de Velto está usando la Papelera. Inténtalo de nuevo en un momento.");
    EXPECT_EQ(text.english, "Another Velto is using the trash. Try again in a moment.");
}

TEST(FailureText, PathsOfTheHomeAreShort) {
    EXPECT_EQ(shownPath("/h/a/b", "/h"), "~/a/b");
    EXPECT_EQ(shownPath("/h", "/h"), "/h");
    EXPECT_EQ(shownPath("/home2/a", "/home"), "/home2/a");
    EXPECT_EQ(shownPath("/h/\xff", "/h"), "~/\uFFFD");
}

/// The trash over a disk whose calls fail one after the other.
struct FailuresOfTheTrash : testing::Test {
    TestPlatform machine;
    WatchedFileCalls calls;
    PosixFileManager files{calls};

    /// What goes wrong when the n-th change of the disk fails; false when there is none such.
    bool failAt(int index, int code, const std::string& step) {
        TempHome& home = machine.home;
        const std::string path = home.text("Fotos/uno.mov", "x").path();
        VeltoTrashService trash(files, files, machine.clock, machine.log, machine.platform.layout);
        calls.action = WatchedFileCalls::Action::none;
        if (step != "move") trash.moveToTrash({path}, "wind");
        const std::string id = step == "move" ? "" : trash.items().front().id;
        calls.action = WatchedFileCalls::Action::fail;
        calls.at = index;
        calls.error = code;
        calls.count = 0;
        try {
            if (step == "move") trash.moveToTrash({path}, "wind");
            if (step == "restore") trash.restore(id);
            if (step == "remove") trash.deletePermanently(id);
            if (step == "empty") trash.emptyTrash();
        } catch (const TrashError&) {
            // Tested above.
        } catch (const std::exception& error) {
            judge(failureText(error, machine.platform.layout));
            ++judged;
        }
        const bool wasReached = calls.count > index;
        calls.action = WatchedFileCalls::Action::none;
        machine.platform.files->removeAll(machine.platform.layout.dataFolder);
        machine.platform.files->removeAll(home.path("Fotos"));
        return wasReached;
    }
    int judged = 0;
};

TEST_F(FailuresOfTheTrash, AreToldInPlainWordsWhicheverCallFails) {
    for (const char* step : {"move", "restore", "remove", "empty"}) {
        for (const int code : {ENOSPC, EACCES, EROFS, EIO, EBUSY}) {
            for (int index = 0; failAt(index, code, step); ++index) {
            }
        }
    }
    EXPECT_GT(judged, 50);
}

}  // namespace
}  // namespace velto
