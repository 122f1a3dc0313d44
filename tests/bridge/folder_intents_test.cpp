#include <unistd.h>

#include "bridge/FolderFixture.h"
#include "bridge/FolderIntents.h"
#include "support/volumes.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using FolderIntentsTest = FolderFixture;

TEST_F(FolderIntentsTest, AFolderShowsItsFoldersAsMeasuredAndItsFilesAsTheyAre) {
    home.file("Music/a.mp3", 10'000);
    home.file("Music/albums/b.mp3", 20'000);
    home.text("Music/.hidden", "x");
    home.link("Music/link", "a.mp3");
    ASSERT_EQ(::link(home.path("Music/a.mp3").c_str(), home.path("Music/again.mp3").c_str()), 0);
    analyse();
    home.file("Music/later.mp3", 5'000);
    const nlohmann::json told = ask(home.path("Music"));

    EXPECT_EQ(told["request"], 7);
    EXPECT_EQ(told["path"], home.path("Music"));
    EXPECT_EQ(told["found"], true);
    EXPECT_EQ(told["state"], "measured");
    EXPECT_EQ(told["measured"], static_cast<std::int64_t>(machine.clock.time));
    const std::int64_t albums = allocated("Music/albums") + allocated("Music/albums/b.mp3");
    EXPECT_EQ(told["bytes"], albums + allocated("Music/a.mp3") + allocated("Music/.hidden") +
                                 allocated("Music") + allocated("Music/link"))
        << "as it was measured";
    EXPECT_EQ(told["files"], 3);
    EXPECT_EQ(told["unreadable"], 0);
    EXPECT_GT(told["latest"], 1'600'000'000);
    ASSERT_THAT(namesOf(told["folders"]), ElementsAre("albums"));
    nlohmann::json folder = told["folders"][0];
    EXPECT_EQ(folder["latest"], std::max(modified("Music/albums"), modified("Music/albums/b.mp3")));
    folder.erase("latest");
    EXPECT_EQ(folder, nlohmann::json({{"name", "albums"},
                                      {"bytes", albums},
                                      {"files", 1},
                                      {"state", "measured"},
                                      {"unreadable", 0}}));
    EXPECT_THAT(namesOf(told["entries"]),
                UnorderedElementsAre("a.mp3", "again.mp3", ".hidden", "later.mp3"));
    EXPECT_EQ(named(told["entries"], "later.mp3")["bytes"], allocated("Music/later.mp3"));
    EXPECT_EQ(named(told["entries"], "later.mp3")["linked"], false);
    EXPECT_EQ(named(told["entries"], "a.mp3")["linked"], true);
    const std::string inode = std::to_string(status("Music/a.mp3").st_ino);
    EXPECT_EQ(named(told["entries"], "a.mp3")["inode"], inode);
    EXPECT_EQ(named(told["entries"], "again.mp3")["inode"], inode) << "names of one file";
    EXPECT_FALSE(named(told["entries"], "later.mp3").contains("inode"));
    EXPECT_GT(named(told["entries"], "a.mp3")["modified"], 1'600'000'000);
    EXPECT_EQ(told["more"], 1) << "the link";
}

TEST_F(FolderIntentsTest, AnEmptyPathIsTheHome) {
    home.file("Music/a.mp3", 10'000);
    analyse();
    const nlohmann::json told = ask("");
    EXPECT_EQ(told["path"], home.path());
    EXPECT_EQ(named(told["folders"], "Music")["files"], 1);
    EXPECT_EQ(named(told["folders"], "Library")["state"], "measured");
}

TEST_F(FolderIntentsTest, WhatIsNewIsNamedAndWhatIsGoneIsLeftOut) {
    home.file("Music/gone/a", 10);
    home.file("Music/kept/a", 10);
    analyse();
    machine.platform.files->removeAll(home.path("Music/gone"));
    home.folder("Music/new");
    home.folder("Music/aaa");
    const nlohmann::json told = ask(home.path("Music"));
    EXPECT_THAT(namesOf(told["folders"]), ElementsAre("aaa", "kept", "new"));
    EXPECT_EQ(named(told["folders"], "new"), nlohmann::json({{"name", "new"},
                                                             {"bytes", -1},
                                                             {"files", 0},
                                                             {"latest", 0},
                                                             {"state", "new"},
                                                             {"unreadable", 0}}));
    const nlohmann::json inside = ask(home.path("Music/new"));
    EXPECT_EQ(inside["found"], false);
    EXPECT_EQ(inside["state"], "new");
    const nlohmann::json gone = ask(home.path("Music/gone"));
    EXPECT_EQ(gone["found"], false);
    EXPECT_EQ(gone["state"], "gone");
    EXPECT_THAT(gone["folders"], IsEmpty());
}

TEST_F(FolderIntentsTest, WhatAnEarlierAnalysisCouldReadStaysClosedWithoutAccess) {
    home.file("Documents/letters/a", 10);
    home.file("Music/a", 10);
    analyse();
    ASSERT_EQ(ask(home.path("Documents/letters"))["found"], true);
    std::filesystem::remove_all(home.path("Library/Safari"));  // what the probe reads
    bridge->checkFullDiskAccess();
    machine.dispatcher.runAll();
    for (const char* path : {"Documents", "Documents/letters"}) {
        const nlohmann::json told = ask(home.path(path));
        EXPECT_EQ(told["found"], false) << path;
        EXPECT_EQ(told["state"], "withheld") << path;
        EXPECT_GT(told["bytes"], 0) << "as it was measured";
    }
    EXPECT_EQ(ask(home.path("Music"))["found"], true);
}

TEST_F(FolderIntentsTest, AFolderThatHasBecomeALinkIsNotFollowed) {
    home.file("Music/albums/a", 10);
    home.file("elsewhere/private", 10);
    analyse();
    machine.platform.files->removeAll(home.path("Music/albums"));
    home.link("Music/albums", home.path("elsewhere"));
    EXPECT_EQ(ask(home.path("Music/albums"))["found"], false);
    EXPECT_EQ(last("onFolder")["state"], "gone");
    machine.platform.files->removeAll(home.path("Music"));
    home.link("Music", home.path("elsewhere"));
    EXPECT_EQ(ask(home.path("Music"))["found"], false);
}

TEST_F(FolderIntentsTest, WhatWasLeftOutSaysWhy) {
    home.file("Music/a", 10);
    home.file("Library/Application Support/Velto/x", 10);
    exclusions.add(home.path("Music"));
    home.file("work/Old.photoslibrary/a", 10);
    open();
    load();
    post("scan");
    machine.dispatcher.runAll();
    const nlohmann::json told = ask("");
    EXPECT_EQ(named(told["folders"], "Music")["state"], "excluded");
    EXPECT_EQ(named(told["folders"], "Music")["bytes"], -1);
    EXPECT_EQ(ask(home.path("Music"))["state"], "excluded");
    EXPECT_EQ(ask(home.path("Music"))["found"], false);
    EXPECT_EQ(ask(home.path("Music/below"))["state"], "unmeasured");
    EXPECT_EQ(ask(home.path("work/Old.photoslibrary"))["state"], "withheld");
    EXPECT_EQ(ask(home.path("Library/Application Support/Velto"))["state"], "own");
    EXPECT_EQ(ask("/etc")["state"], "unmeasured");
}

TEST_F(FolderIntentsTest, WithoutAnAnalysisNothingWasMeasured) {
    home.file("Music/a", 10);
    saveAnalysis(1);
    open();
    load();
    machine.dispatcher.runAll();
    const nlohmann::json told = ask("");
    EXPECT_EQ(told["found"], false);
    EXPECT_EQ(told["state"], "unmeasured");
    EXPECT_EQ(told["path"], home.path());
    EXPECT_EQ(search("music")["total"], 0);
}

TEST_F(FolderIntentsTest, NamesOfAnyBytesComeAndGo) {
    if (!takesNamesOfAnyBytes(home.path())) GTEST_SKIP() << "no such names here";
    home.file("caf\xE9/\"quoted\"\\/sub\n/a", 10);
    home.file("caf\xE9/línea \xE2\x80\xA8.txt", 10);
    analyse();
    const nlohmann::json top = ask("");
    const std::string name = std::string("caf") + '\0' + "e9";
    ASSERT_EQ(named(top["folders"], name)["files"], 2);
    const nlohmann::json told = ask(home.path() + "/" + name);
    EXPECT_EQ(told["found"], true);
    EXPECT_EQ(told["path"], home.path() + "/" + name);
    EXPECT_THAT(namesOf(told["folders"]), ElementsAre("\"quoted\"\\"));
    EXPECT_THAT(namesOf(told["entries"]), ElementsAre("línea \xE2\x80\xA8.txt"));
}

TEST_F(FolderIntentsTest, NothingIsReadOnTheMainThread) {
    home.file("Music/a", 10);
    analyse();
    post("folder", {{"path", ""}, {"request", 1}});
    post("searchFolders", {{"text", "music"}, {"request", 1}});
    machine.dispatcher.runMain();
    EXPECT_EQ(count("onFolder"), 0U);
    EXPECT_EQ(count("onFolderSearch"), 0U);
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 2U);
}

TEST_F(FolderIntentsTest, TheNextStartHasTheFoldersOfTheLastAnalysis) {
    home.file("Music/a", 10'000);
    analyse();
    const nlohmann::json before = ask(home.path("Music"));
    machine.clock.time += 86'400;
    page = std::make_shared<FakeWebView>();
    bridge.reset();
    open();
    load();
    EXPECT_EQ(ask(home.path("Music")), before) << "with the time of the analysis";
}

TEST_F(FolderIntentsTest, WhatIsAskedBeforeTheFoldersAreLoadedIsAnsweredThen) {
    home.file("Music/a", 10'000);
    analyse();
    page = std::make_shared<FakeWebView>();
    bridge.reset();
    open();
    post("folder", {{"path", home.path("Music")}, {"request", 1}});
    post("searchFolders", {{"text", "music"}, {"request", 2}});
    machine.dispatcher.runAll();
    EXPECT_EQ(last("onFolder")["found"], true);
    EXPECT_EQ(last("onFolderSearch")["total"], 1);
}

TEST_F(FolderIntentsTest, ADamagedFileIsNoAnalysisOfFolders) {
    home.file("Music/a", 10'000);
    analyse();
    home.text("Library/Application Support/Velto/folders.bin", "Velto folders 1\n");
    page = std::make_shared<FakeWebView>();
    bridge.reset();
    open();
    load();
    EXPECT_EQ(ask("")["state"], "unmeasured");
    post("scan");
    machine.dispatcher.runAll();
    EXPECT_EQ(ask("")["state"], "measured");
}

TEST_F(FolderIntentsTest, ACancelledAnalysisKeepsTheFoldersThatThereWere) {
    home.file("Music/a", 10'000);
    analyse();
    home.folder("Music/new");
    post("scan");
    bridge->scanTask->cancel();
    machine.dispatcher.runAll();
    EXPECT_EQ(ask(home.path("Music"))["folders"][0]["state"], "new");
}

TEST_F(FolderIntentsTest, AResetLeavesNoFolders) {
    home.file("Music/a", 10'000);
    analyse();
    post("scan");
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_EQ(machine.platform.files->exists(machine.platform.layout.dataFolder + "/folders.bin"),
              bridge->bootState.has_value());
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.platform.files->exists(machine.platform.layout.dataFolder));
    EXPECT_EQ(ask("")["state"], "unmeasured");
}

TEST_F(FolderIntentsTest, AWindowThatIsClosedMeanwhileHearsNothing) {
    home.file("Music/a", 10'000);
    analyse();
    post("folder", {{"path", ""}, {"request", 1}});
    post("searchFolders", {{"text", "music"}, {"request", 2}});
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onFolder"), 0U);
    EXPECT_EQ(count("onFolderSearch"), 0U);
}

TEST_F(FolderIntentsTest, MalformedQuestionsAreNotAnswered) {
    analyse();
    for (const nlohmann::json& payload :
         {nlohmann::json(), nlohmann::json("x"), nlohmann::json({{"path", 1}}),
          nlohmann::json({{"path", "relative"}}), nlohmann::json({{"text", nullptr}})}) {
        post("folder", payload);
        post("searchFolders", payload);
    }
    post("folder");
    post("searchFolders");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onFolder"), 0U);
    EXPECT_EQ(count("onFolderSearch"), 0U);
    EXPECT_EQ(ask(home.path("") + "../../etc")["found"], false);
}

}  // namespace
}  // namespace velto
