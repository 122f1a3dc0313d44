#include "cleaning/CloudFolder.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "TrashWorld.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* drive = "Library/Mobile Documents/com~apple~CloudDocs";
constexpr const char* cloud = "Library/Mobile Documents/com~apple~CloudDocs/Velto";
constexpr const char* indexFile = "Library/Application Support/Velto/cloud.json";

/// A home with a cloud drive, and the folder in it as one process sees it.
struct Cloud : testing::Test {
    TempHome home{TrashWorld::fastVolume()};
    HomeLayout layout = HomeLayout::macOS(home.path());
    WatchedFileCalls calls;
    PosixFileManager files{calls};
    FakeLog log;
    CloudFolder service{files, files, log, layout};

    void SetUp() override { home.folder(drive); }

    std::string inCloud(const std::string& name) const {
        return home.path(std::string(cloud) + "/" + name);
    }
    bool cloudHas(const std::string& name) const {
        return home.exists(std::string(cloud) + "/" + name);
    }
    json index() const { return json::parse(home.read(indexFile)); }

    void expectFailed(const CloudFolder::Result& result, const std::string& path) {
        EXPECT_THAT(result.failed, ElementsAre(path));
        EXPECT_THAT(result.moved, IsEmpty());
        EXPECT_THAT(result.arrivedAt, IsEmpty());
    }
};

TEST_F(Cloud, WhatIsMovedThereComesBackToWhereItWas) {
    const std::string film = home.text("Movies/2019/film.mov", "film").path();
    const std::string folder = home.path("Documents/papers");
    home.text("Documents/papers/one", "1");
    const auto there = service.moveTo({film, folder});
    EXPECT_THAT(there.moved, ElementsAre(film, folder));
    EXPECT_THAT(there.failed, IsEmpty());
    EXPECT_THAT(there.arrivedAt, ElementsAre(inCloud("film.mov"), inCloud("papers")));
    EXPECT_FALSE(home.exists("Movies/2019/film.mov"));
    EXPECT_TRUE(cloudHas("papers/one"));

    // Another start of the program.
    CloudFolder later{files, files, log, layout};
    const auto back = later.moveFrom({inCloud("film.mov"), inCloud("papers")});
    EXPECT_THAT(back.moved, SizeIs(2));
    EXPECT_THAT(back.arrivedAt, ElementsAre(film, folder));
    EXPECT_EQ(home.read("Movies/2019/film.mov"), "film");
    EXPECT_EQ(home.read("Documents/papers/one"), "1");
    EXPECT_EQ(index(), json({{"origins", json::object()}}));
}

TEST_F(Cloud, TheFormerPlaceIsEnoughToBringItBack) {
    const std::string film = home.text("Movies/film.mov", "film").path();
    service.moveTo({film});
    EXPECT_THAT(service.moveFrom({film}).moved, ElementsAre(film));
    EXPECT_TRUE(home.exists("Movies/film.mov"));
    expectFailed(service.moveFrom({film}), film);
}

TEST_F(Cloud, WithItsPlaceGoneItComesBackToDownloads) {
    const std::string film = home.text("Movies/2019/film.mov", "film").path();
    service.moveTo({film});
    files.removeAll(home.path("Movies/2019"));
    const auto back = service.moveFrom({inCloud("film.mov")});
    EXPECT_THAT(back.arrivedAt, ElementsAre(home.path("Downloads/film.mov")));
    EXPECT_EQ(home.read("Downloads/film.mov"), "film");
    EXPECT_FALSE(home.exists("Movies/2019"));
}

TEST_F(Cloud, WhatSomebodyElsePutThereComesToDownloads) {
    home.text(std::string(cloud) + "/other.txt", "other");
    EXPECT_THAT(service.moveFrom({inCloud("other.txt")}).arrivedAt,
                ElementsAre(home.path("Downloads/other.txt")));
}

TEST_F(Cloud, ATakenNameIsAFailureAndNothingIsReplaced) {
    const std::string film = home.text("Movies/film.mov", "film").path();
    home.text(std::string(cloud) + "/film.mov", "in the cloud");
    expectFailed(service.moveTo({film}), film);
    EXPECT_EQ(home.read("Movies/film.mov"), "film");
    EXPECT_EQ(home.read(std::string(cloud) + "/film.mov"), "in the cloud");

    const std::string note = home.text("note.txt", "note").path();
    service.moveTo({note});
    home.text("note.txt", "another note");
    expectFailed(service.moveFrom({inCloud("note.txt")}), inCloud("note.txt"));
    EXPECT_EQ(home.read("note.txt"), "another note");
    EXPECT_EQ(home.read(std::string(cloud) + "/note.txt"), "note");
    files.removeAll(note);
    EXPECT_THAT(service.moveFrom({inCloud("note.txt")}).arrivedAt, ElementsAre(note))
        << "its place is still known";
}

TEST_F(Cloud, OneFailureLeavesTheOthersAlone) {
    const std::string film = home.text("film.mov", "film").path();
    const std::string gone = home.path("gone.mov");
    const std::string song = home.text("song.mp3", "song").path();
    const auto result = service.moveTo({film, gone, song});
    EXPECT_THAT(result.moved, ElementsAre(film, song));
    EXPECT_THAT(result.failed, ElementsAre(gone));
    EXPECT_THAT(result.arrivedAt, ElementsAre(inCloud("film.mov"), inCloud("song.mp3")));
    expectFailed(service.moveFrom({inCloud("gone.mov")}), inCloud("gone.mov"));
}

TEST_F(Cloud, WithoutACloudDriveEverythingFailsAndNothingIsMade) {
    files.removeAll(home.path("Library/Mobile Documents"));
    const std::string film = home.text("film.mov", "film").path();
    expectFailed(service.moveTo({film}), film);
    expectFailed(service.moveFrom({inCloud("film.mov")}), inCloud("film.mov"));
    EXPECT_TRUE(home.exists("film.mov"));
    EXPECT_FALSE(home.exists("Library/Mobile Documents"));

    layout.cloudDrive.clear();  // a system that has none
    layout.cloudFolder.clear();
    expectFailed(service.moveTo({film}), film);
    expectFailed(service.moveFrom({film}), film);
    EXPECT_TRUE(home.exists("film.mov"));
}

TEST_F(Cloud, WhatIsProtectedOutsideOrReachedThroughALinkIsRefused) {
    home.text("Pictures/Photos Library.photoslibrary/db", "x");
    home.text("real/file", "x");
    home.link("link", home.path("real"));
    const std::vector<std::string> refused{
        home.path("Pictures/Photos Library.photoslibrary"),
        home.path("Pictures/Photos Library.photoslibrary/db"),
        home.path("link"),
        home.path("link/file"),
        home.path(),
        "/etc/hosts",
        "relative",
        "",
        home.path("real/../../other"),
    };
    EXPECT_EQ(service.moveTo(refused).failed, refused);
    EXPECT_TRUE(home.exists("Pictures/Photos Library.photoslibrary/db"));
    EXPECT_TRUE(home.exists("real/file"));
}

TEST_F(Cloud, TheProgramsOwnFoldersAndWhatHoldsThemStay) {
    home.text("Library/Application Support/Velto/history.json", "[]");
    home.text("Library/Application Support/Velto/Trash/op1/it1-a", "a");
    home.text(std::string(cloud) + "/there", "there");
    const std::vector<std::string> refused{
        home.path("Library"),
        home.path("Library/Application Support"),
        layout.dataFolder,
        layout.dataFolder + "/history.json",
        layout.trashFolder + "/op1/it1-a",
        layout.cloudDrive,
        layout.cloudFolder,
        inCloud("there"),
    };
    EXPECT_EQ(service.moveTo(refused).failed, refused);
    EXPECT_TRUE(cloudHas("there"));
}

TEST_F(Cloud, OnlyWhatLiesDirectlyInTheFolderComesOut) {
    home.text(std::string(cloud) + "/papers/one", "1");
    home.text(std::string(drive) + "/Other/file", "x");
    const std::vector<std::string> refused{inCloud("papers/one"), layout.cloudFolder,
                                           layout.cloudDrive + "/Other/file",
                                           inCloud("../Other/file"), home.path("Movies")};
    EXPECT_EQ(service.moveFrom(refused).failed, refused);
}

TEST_F(Cloud, AnIndexThatSomebodyHasTamperedWithLeadsNowhereElse) {
    for (const std::string& origin :
         {std::string("/tmp/out"), home.path("Library/Mail/x"), layout.trashFolder + "/x",
          home.path("a/../../x"), home.path()}) {
        home.text(std::string(cloud) + "/x", "x");
        home.text(indexFile, json({{"origins", {{"x", origin}}}}).dump());
        EXPECT_THAT(service.moveFrom({inCloud("x")}).arrivedAt,
                    ElementsAre(home.path("Downloads/x")))
            << origin;
        files.removeAll(home.path("Downloads/x"));
    }
}

TEST_F(Cloud, AnIndexDoesNotBringAFileBackUnderAnotherName) {
    home.text(std::string(cloud) + "/notes.txt", "x");
    home.folder("Library/LaunchAgents");
    home.text(
        indexFile,
        json({{"origins", {{"notes.txt", home.path("Library/LaunchAgents/evil.plist")}}}}).dump());
    EXPECT_THAT(service.moveFrom({inCloud("notes.txt")}).arrivedAt,
                ElementsAre(home.path("Downloads/notes.txt")));
}

/// What an index says of a move that was cut off is carried out only when this program could have
/// written it.
struct ForgedMove : Cloud {
    static constexpr const char* scratch = ".velto-7A57A5A7-0000-4000-8000-000000000000";

    void SetUp() override {
        Cloud::SetUp();
        home.folder(cloud);
        home.text("Documents/thesis", "thesis");
        home.text("Pictures/album/photo", "photo");
        home.text("Library/Mail/inbox", "mail");
        home.text("Library/Application Support/Velto/Trash/op1/it1-a", "in the trash");
        home.text(std::string(cloud) + "/film", "film");
    }

    void forge(const std::string& from, const std::string& to, const std::string& scratchName) {
        const json move{{"from", from}, {"to", to}, {"scratch", scratchName}};
        home.text(indexFile, json({{"origins", json::object()}, {"move", move}}).dump());
    }

    std::string withoutIndex() {
        files.removeAll(home.path(indexFile));
        files.removeAll(home.path(indexFile) + ".lock");
        return treeText(home.path());
    }
};

TEST_F(ForgedMove, DeletesAndMovesNothing) {
    const std::string thesis = home.path("Documents/thesis");
    const std::string album = home.path("Pictures/album");
    const std::string before = withoutIndex();
    const std::string names[] = {scratch, "thesis", "album", "photo", "..", ".", "", "Trash"};
    const std::string places[] = {thesis,
                                  album,
                                  album + "/",
                                  inCloud("thesis"),
                                  inCloud("album"),
                                  inCloud("film"),
                                  inCloud("../../../../Documents/thesis"),
                                  layout.trashFolder,
                                  layout.trashFolder + "/op1/it1-a",
                                  home.path("Library/Mail/inbox"),
                                  home.path("Documents/a"),
                                  home.path(),
                                  "/etc/hosts",
                                  "relative",
                                  ""};
    for (const std::string& from : places) {
        for (const std::string& to : places) {
            for (const std::string& name : names) {
                forge(from, to, name);
                CloudFolder(files, files, log, layout).settle();
                ASSERT_EQ(withoutIndex(), before) << from << " to " << to << " by " << name;
            }
        }
    }
}

TEST_F(ForgedMove, IsForgottenAndStandsInNobodysWay) {
    forge(home.path("Documents/thesis"), home.path("Pictures/album"), "album");
    CloudFolder(files, files, log, layout).settle();
    EXPECT_FALSE(index().contains("move"));
    EXPECT_THAT(service.moveTo({home.path("Documents/thesis")}).failed, IsEmpty());
}

TEST_F(ForgedMove, IsNotEvenLookedAtWithoutACloudDrive) {
    forge(home.path("Documents/thesis"), inCloud("thesis"), scratch);
    layout.cloudDrive.clear();
    layout.cloudFolder.clear();
    CloudFolder(files, files, log, layout).settle();
    EXPECT_TRUE(index().contains("move"));
}

TEST_F(ForgedMove, AnHonestOneThatIsNoLongerTrueDeletesNothing) {
    // The places are right, the scratch name is another move's original.
    home.text("Documents/" + std::string(scratch) + "/a", "of another move");
    forge(home.path("Documents/film"), inCloud("film"), scratch);
    CloudFolder(files, files, log, layout).settle();
    EXPECT_EQ(home.read(std::string(cloud) + "/film"), "film");
    EXPECT_EQ(home.read("Documents/film/a"), "of another move");
}

TEST_F(Cloud, ADamagedIndexForgetsPlacesButLosesNothing) {
    home.text(std::string(cloud) + "/x", "x");
    home.text(indexFile, "{\"origins\":");
    EXPECT_THAT(service.moveFrom({inCloud("x")}).arrivedAt, ElementsAre(home.path("Downloads/x")));
}

TEST_F(Cloud, AFormerPlaceThatIsALinkByNowIsNotFollowed) {
    const std::string film = home.text("Movies/film.mov", "film").path();
    service.moveTo({film});
    files.removeAll(home.path("Movies"));
    home.folder("elsewhere");
    home.link("Movies", home.path("elsewhere"));
    EXPECT_THAT(service.moveFrom({inCloud("film.mov")}).arrivedAt,
                ElementsAre(home.path("Downloads/film.mov")));
}

}  // namespace
}  // namespace velto
