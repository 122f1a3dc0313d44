#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include <nlohmann/json.hpp>

#include "bridge/BridgeFixture.h"
#include "bridge/FolderIntents.h"
#include "support/FakeDirectoryReader.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A volume for each path that a test names; the others do not answer.
class FakeVolumes final : public VolumeInfo {
public:
    std::optional<std::int64_t> totalCapacity(const std::string& path) const override {
        return of(totals, path);
    }
    std::optional<std::int64_t> availableCapacity(const std::string& path) const override {
        return of(available, path);
    }
    std::optional<std::int64_t> reservedCapacity(const std::string&) const override { return {}; }
    std::optional<std::int64_t> purgeableCapacity(const std::string&) const override { return {}; }
    std::vector<MountedVolume> volumesBelow(const std::string&) const override { return {}; }

    std::map<std::string, std::int64_t> totals;
    std::map<std::string, std::int64_t> available;

private:
    static std::optional<std::int64_t> of(const std::map<std::string, std::int64_t>& values,
                                          const std::string& path) {
        const auto found = values.find(path);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
};

struct FolderIntentsTest : BridgeFixture {
    TempHome& home = machine.home;

    void analyse() {
        machine.grantAccess();
        open();
        load();
        post("scan");
        machine.dispatcher.runAll();
    }

    nlohmann::json last(const char* event) const {
        const auto calls = page->calls(event);
        if (calls.empty()) return {};
        const std::string& script = calls.back();
        const std::size_t start =
            script.rfind(std::string(event) + "(") + std::string(event).size();
        return nlohmann::json::parse(script.substr(start + 1, script.size() - start - 3));
    }

    nlohmann::json ask(const std::string& path, int request = 7) {
        post("folder", {{"path", path}, {"request", request}});
        machine.dispatcher.runAll();
        return last("onFolder");
    }

    nlohmann::json search(const std::string& text) {
        post("searchFolders", {{"text", text}, {"request", 3}});
        machine.dispatcher.runAll();
        return last("onFolderSearch");
    }

    static nlohmann::json named(const nlohmann::json& list, const std::string& name) {
        for (const nlohmann::json& item : list) {
            if (item["name"] == name) return item;
        }
        return {};
    }

    static std::vector<std::string> namesOf(const nlohmann::json& list) {
        std::vector<std::string> names;
        for (const nlohmann::json& item : list)
            names.push_back(item["name"]);
        return names;
    }

    struct stat status(std::string_view path) const {
        struct stat found {};
        EXPECT_EQ(lstat(home.path(path).c_str(), &found), 0);
        return found;
    }
    std::int64_t allocated(std::string_view path) const {
        return std::int64_t{status(path).st_blocks} * 512;
    }
    std::int64_t modified(std::string_view path) const { return status(path).st_mtime; }
};

/// Of the folders inside that the last answer tells, by name.
std::map<std::string, std::int64_t> bytesInside(const nlohmann::json& contents) {
    std::map<std::string, std::int64_t> bytes;
    for (const auto& folder : contents["folders"])
        bytes[folder["name"]] = folder["bytes"];
    return bytes;
}

TEST_F(FolderIntentsTest, WhatHasLeftForTheTrashCountsNoMoreUntilItIsBack) {
    home.file("Movies/trip/a.mov", 3_MB);
    home.file("Movies/trip/b.mov", 2_MB);
    home.file("Movies/old/c.mov", 1_MB);
    analyse();
    const auto ask = [&](const char* type, const nlohmann::json& payload) {
        machine.clock.time += 10;
        post(type, payload);
        machine.dispatcher.runAll();
    };
    const auto movies = [&] {
        ask("folder", {{"path", home.path("Movies")}, {"request", 1}});
        return last("onFolder");
    };
    ask("folder", {{"path", home.path("Movies/trip")}, {"request", 1}});
    std::int64_t first = 0;  // as the disk counts the file that goes first
    const nlohmann::json trip = last("onFolder");
    for (const auto& file : trip["entries"]) {
        if (file["name"] == "a.mov") first = file["bytes"];
    }
    ASSERT_GT(first, 0);
    const auto before = movies();
    const auto inside = bytesInside(before);

    ask("deleteFiles", {{"paths", {home.path("Movies/trip/a.mov")}}});
    const auto without = movies();
    EXPECT_EQ(bytesInside(without)["trip"], inside.at("trip") - first);
    EXPECT_EQ(without["bytes"], before["bytes"].get<std::int64_t>() - first);
    EXPECT_EQ(without["files"], before["files"].get<std::int64_t>() - 1);

    // The folder with what is left of it: nothing is subtracted twice.
    ask("deleteFiles", {{"paths", {home.path("Movies/trip")}}});
    EXPECT_EQ(movies()["bytes"], before["bytes"].get<std::int64_t>() - inside.at("trip"));
    ask("undoLast", nullptr);
    EXPECT_EQ(movies()["bytes"], without["bytes"]);
    ask("undoLast", nullptr);
    EXPECT_EQ(movies()["bytes"], before["bytes"]);

    // What is deleted for good has left, too.
    ask("deleteFiles", {{"paths", {home.path("Movies/old")}}});
    ask("purgeTrash", nullptr);
    EXPECT_EQ(movies()["bytes"], before["bytes"].get<std::int64_t>() - inside.at("old"));
    ask("scan", nullptr);
    EXPECT_EQ(movies()["bytes"], before["bytes"].get<std::int64_t>() - inside.at("old"));
}

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

TEST_F(FolderIntentsTest, ASearchFindsEveryWordWhateverItsCaseAndItsMarks) {
    home.file("work/Información 2024/a", 30'000);
    home.file("work/informacion/b", 10'000);
    home.file("other/2024/c", 10);
    analyse();
    const nlohmann::json told = search("INFORMACIÓN");
    EXPECT_EQ(told["request"], 3);
    EXPECT_EQ(told["text"], "INFORMACIÓN");
    EXPECT_EQ(told["total"], 2);
    ASSERT_EQ(told["found"].size(), 2U);
    EXPECT_EQ(told["found"][0]["path"], home.path("work/Información 2024")) << "the largest first";
    EXPECT_EQ(told["found"][0]["bytes"],
              allocated("work/Información 2024") + allocated("work/Información 2024/a"));
    EXPECT_EQ(told["found"][0]["files"], 1);
    EXPECT_GT(told["found"][0]["latest"], 1'600'000'000);
    EXPECT_EQ(search("2024 infor")["total"], 1);
    EXPECT_EQ(search("other/2024")["total"], 0) << "names, not paths";
    EXPECT_EQ(search("  ")["total"], 0);
}

TEST_F(FolderIntentsTest, ASearchTellsTheTwoHundredLargestAndHowManyThereAre) {
    for (int index = 0; index < 230; ++index)
        home.folder("match " + std::to_string(index));
    home.file("match 229/large", 50'000);
    analyse();
    const nlohmann::json told = search("match");
    EXPECT_EQ(told["total"], 230);
    EXPECT_EQ(told["found"].size(), 200U);
    EXPECT_EQ(told["found"][0]["path"], home.path("match 229"));
}

TEST_F(FolderIntentsTest, ASearchFindsNothingThatWasNotMeasured) {
    home.file("work/match left out/match/a", 10'000);
    home.file("Library/Application Support/Velto/Trash/match gone/a", 10'000);
    home.file("match kept/a", 10'000);
    exclusions.add(home.path("work/match left out"));
    analyse();
    const nlohmann::json told = search("match");
    EXPECT_EQ(told["total"], 1);
    ASSERT_THAT(told["found"], testing::SizeIs(1));
    EXPECT_EQ(told["found"][0]["path"], home.path("match kept"));
}

/// The home's folder "disk" is another file system.
struct FolderVolumes : FolderIntentsTest {
    FolderVolumes() {
        install<FakeVolumes>(machine.platform.volumes);
        reader.folder(home.path("disk")).device = 9;
        reader.file(home.path("a"), 100);
        open();
        post("scan");
        machine.dispatcher.runAll();
    }
    FakeVolumes& volumes() { return dynamic_cast<FakeVolumes&>(*machine.platform.volumes); }

    FakeDirectoryReader& reader = install<FakeDirectoryReader>(machine.platform.directories);
};

TEST_F(FolderVolumes, AnotherVolumeSaysHowFullItIs) {
    volumes().totals[home.path("disk")] = 1'000;
    volumes().available[home.path("disk")] = 400;
    const nlohmann::json disk = named(ask("")["folders"], "disk");
    EXPECT_EQ(disk["state"], "otherVolume");
    EXPECT_EQ(disk["bytes"], 600);
    EXPECT_EQ(disk["total"], 1'000);
}

TEST_F(FolderVolumes, OneThatDoesNotSayHasNoFigures) {
    const nlohmann::json disk = named(ask("")["folders"], "disk");
    EXPECT_EQ(disk["bytes"], -1);
    EXPECT_FALSE(disk.contains("total"));
    EXPECT_EQ(ask(home.path("disk"))["state"], "otherVolume");
}

TEST_F(FolderVolumes, OneThatIsClosedIsNotSaidToBeGone) {
    reader.folder(home.path("closed"));
    reader.folder(home.path("away"));
    post("scan");
    machine.dispatcher.runAll();
    reader.folder(home.path("closed")).openError = EACCES;
    reader.folder(home.path("away")).openError = EIO;
    EXPECT_EQ(ask(home.path("closed"))["state"], "unreadable");
    EXPECT_EQ(ask(home.path("away"))["state"], "unreadable");
    reader.folder(home.path("away")).openError = ENOENT;
    EXPECT_EQ(ask(home.path("away"))["state"], "gone");
}

TEST_F(FolderVolumes, ADeadOneHoldsTheAnswerUpNoLongerThanAMoment) {
    post("folder", {{"path", ""}, {"request", 1}});
    machine.dispatcher.advance(0.31);  // and the volume has not answered
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 2U);
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onFolder"), 1U) << "once, though the volume has answered in the end";
    EXPECT_EQ(named(last("onFolder")["folders"], "disk")["bytes"], -1);
}

}  // namespace
}  // namespace velto
