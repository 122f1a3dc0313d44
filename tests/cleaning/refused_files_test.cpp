// What somebody has put in the place of the files of trash, history and cloud folder counts as
// damaged: all of them work, and the next save replaces it.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "TrashFixture.h"
#include "cleaning/CloudFolder.h"
#include "cleaning/HistoryService.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::SizeIs;

struct Damage {
    const char* name;
    void (*make)(const std::string& path);
};

void writeText(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

const std::array<Damage, 6> damages{{
    {"huge",
     [](const std::string& path) {
         writeText(path, "");
         fs::resize_file(path, 1'000'000'000'000);
     }},
    {"pipe", [](const std::string& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }},
    {"device", [](const std::string& path) { fs::create_symlink("/dev/zero", path); }},
    {"loop", [](const std::string& path) { fs::create_symlink(path, path); }},
    {"noise", [](const std::string& path) { writeText(path, std::string(1000, '\xF7')); }},
    {"deep", [](const std::string& path) { writeText(path, std::string(500'000, '[')); }},
}};

struct RefusedFiles : TrashTest, testing::WithParamInterface<Damage> {
    void damage(const std::string& path) {
        fs::create_directories(fs::path(path).parent_path());
        fs::remove(path);
        GetParam().make(path);
    }
    /// A save has put a file of its own there.
    static void expectReplaced(const std::string& path) {
        EXPECT_EQ(fs::symlink_status(path).type(), fs::file_type::regular) << path;
        EXPECT_LT(fs::file_size(path), 10'000u) << path;
    }
};

TEST_P(RefusedFiles, TheTrashTakesAndGivesBackWithADamagedManifestAndJournal) {
    damage(manifestPath());
    damage(layout.trashFolder + ".journal");
    EXPECT_THAT(service.items(), IsEmpty());
    const TrashItem item = trashed("letter");
    expectReplaced(manifestPath());
    EXPECT_THAT(readByOthers().items, SizeIs(1));
    service.restore(item.id);
    EXPECT_EQ(home.read("letter"), "content");
}

TEST_P(RefusedFiles, AManifestDamagedMeanwhileLosesNothingOfWhatIsInMemory) {
    const TrashItem first = trashed("first");
    damage(manifestPath());
    const TrashItem second = trashed("second");
    EXPECT_THAT(readByOthers().items, SizeIs(2));
    service.restore(first.id);
    service.restore(second.id);
    EXPECT_EQ(home.read("first") + home.read("second"), "contentcontent");
}

TEST_P(RefusedFiles, TheHistoryStartsAnew) {
    const std::string path = layout.dataFolder + "/history.json";
    damage(path);
    PosixFileManager files;
    FakeLog log;
    HistoryService history(files, files, log, layout);
    EXPECT_THAT(history.entries(), IsEmpty());
    history.record({.id = "op1", .ts = 1, .gb = 1, .items = {}, .kind = "wind"});
    expectReplaced(path);
    EXPECT_THAT(HistoryService(files, files, log, layout).entries(), SizeIs(1));
}

TEST_P(RefusedFiles, TheCloudFolderTakesAndGivesBack) {
    home.folder("Library/Mobile Documents/com~apple~CloudDocs");
    damage(layout.dataFolder + "/cloud.json");
    PosixFileManager files;
    FakeLog log;
    CloudFolder cloud(files, files, log, layout);
    const std::string film = file("Movies/film.mov");
    EXPECT_THAT(cloud.moveTo({film}).moved, SizeIs(1));
    expectReplaced(layout.dataFolder + "/cloud.json");
    EXPECT_THAT(cloud.moveFrom({film}).moved, SizeIs(1));
    EXPECT_EQ(home.read("Movies/film.mov"), "content");
}

INSTANTIATE_TEST_SUITE_P(All, RefusedFiles, testing::ValuesIn(damages),
                         [](const auto& damage) { return std::string(damage.param.name); });

}  // namespace
}  // namespace velto
