#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct CleaningIntentsTest : BridgeFixture {
    std::string cache;

    void SetUp() override {
        machine.home.sparse("Library/Caches/com.example.app/blob", 123'456'789);
        cache = machine.home.path("Library/Caches/com.example.app");
        saveAnalysis(1'600'000'000);
        open();
        load();
        machine.dispatcher.runAll();
        page->scripts.clear();
    }

    void ask(const char* type, const json& payload) {
        post(type, payload);
        machine.dispatcher.runAll();
    }

    json lastArgument(const std::string& callback) const { return page->lastArgument(callback); }
};

TEST_F(CleaningIntentsTest, WhatCanGoIsProposedWithAllItsFields) {
    machine.grantAccess();
    machine.home.sparse("Downloads/Example.dmg", 60'000'000);
    post("scanCleanables");
    EXPECT_EQ(count("onCleanables"), 0u) << "not on the main thread";
    machine.dispatcher.runAll();
    const json list = lastArgument("onCleanables");
    ASSERT_THAT(list, SizeIs(2));
    EXPECT_EQ(list[0]["ruleID"], "caches");
    EXPECT_EQ(list[0]["path"], cache);
    EXPECT_EQ(list[0]["label"], "Caché de com example app.");
    EXPECT_EQ(list[0]["daysOld"], 0);
    EXPECT_NEAR(list[0]["gb"].get<double>(), 0.1235, 0.001);
    EXPECT_EQ(list[1]["ruleID"], "installers");
    EXPECT_EQ(list[1].size(), 5u);
}

TEST_F(CleaningIntentsTest, WhatHasChangedInsideIsToldBeforeThem) {
    const auto now = static_cast<std::int64_t>(machine.clock.time);
    constexpr std::int64_t day = 86'400;
    TempHome::File(cache + "/blob").dated(now, now - 2 * day);
    TempHome::File(cache).dated(now, now - 90 * day);
    post("scanCleanables");
    machine.dispatcher.runAll();
    EXPECT_EQ(lastArgument("onCleanables")[0]["daysOld"], 90);
    EXPECT_EQ(lastArgument("onCleanableAges"), json({{cache, 2}}));
    EXPECT_THAT(page->scripts[1], HasSubstr("onCleanableAges("));
}

TEST_F(CleaningIntentsTest, ThePageLearnsOfACloudDriveThatIsThere) {
    load();
    EXPECT_EQ(count("onCloudDrive"), 0u);
    machine.home.folder("Library/Mobile Documents/com~apple~CloudDocs");
    load();
    ASSERT_EQ(count("onCloudDrive"), 1u);
    EXPECT_THAT(page->calls("onCloudDrive").front(), HasSubstr("onCloudDrive(true);"));
}

TEST_F(CleaningIntentsTest, HowCertainEachCacheIsComesBeforeThem) {
    machine.grantAccess();
    machine.home.sparse("Downloads/Example.dmg", 60'000'000);
    machine.home.sparse("Library/Caches/rclone/blob", 60'000'000);
    machine.home.sparse("Library/Caches/com.example.open/blob", 60'000'000);
    machine.running.add({.bundleIdentifier = "com.example.open",
                         .bundlePath = "/Applications/Open.app",
                         .executable = "/Applications/Open.app/Contents/MacOS/Open"});
    page->scripts.clear();
    post("scanCleanables");
    machine.dispatcher.runAll();
    ASSERT_THAT(page->scripts, testing::Contains(HasSubstr("onCleanables(")));
    EXPECT_EQ(lastArgument("onCleanableFacts"),
              json({{cache, {{"certain", true}, {"reason", "madeAgain"}}},
                    {machine.home.path("Library/Caches/rclone"),
                     {{"certain", false}, {"reason", "keeps"}}},
                    {machine.home.path("Library/Caches/com.example.open"),
                     {{"certain", false}, {"reason", "running"}}}}));
    const auto positionOf = [&](const std::string& callback) {
        return std::ranges::find_if(page->scripts, [&](const std::string& script) {
            return script.find("velto." + callback + "(") != std::string::npos;
        });
    };
    EXPECT_LT(positionOf("onCleanableFacts"), positionOf("onCleanables"));
}

TEST_F(CleaningIntentsTest, WithoutAccessDownloadsIsLeftAlone) {
    machine.home.sparse("Downloads/Example.dmg", 60'000'000);
    post("scanCleanables");
    machine.dispatcher.runAll();
    ASSERT_THAT(lastArgument("onCleanables"), SizeIs(1));
    EXPECT_EQ(lastArgument("onCleanables")[0]["ruleID"], "caches");
}

TEST_F(CleaningIntentsTest, WhatWasProposedKeepsItsSizeInTheTrash) {
    post("scanCleanables");
    machine.dispatcher.runAll();
    const double gb = lastArgument("onCleanables")[0]["gb"];
    machine.home.sparse("Library/Caches/com.example.app/more", 500'000'000);
    ask("cleanPaths", {{"paths", {cache}}});
    ASSERT_THAT(trash.items(), SizeIs(1));
    EXPECT_EQ(trash.items()[0].gb, gb) << "what the page has shown";
    EXPECT_EQ(page->calls("toast").back(),
              "window.velto && window.velto.toast && window.velto.toast(\"Removed\", \"0.1 GB in "
              "Velto Trash. Kept for 30 days.\");");
}

TEST_F(CleaningIntentsTest, WhatIsMovedWhileItIsMeasuredIsNotProposed) {
    post("cleanPaths", {{"paths", {cache}}});
    machine.dispatcher.runGlobal();
    post("scanCleanables");
    machine.dispatcher.runMain();  // now the bridge knows that the cache has gone
    // As it looked when it was measured.
    machine.home.sparse("Library/Caches/com.example.app/blob", 123'456'789);
    machine.dispatcher.runAll();
    EXPECT_THAT(lastArgument("onCleanables"), IsEmpty());

    post("scanCleanables");
    machine.dispatcher.runAll();
    EXPECT_THAT(lastArgument("onCleanables"), SizeIs(1)) << "it stands there again";
}

TEST_F(CleaningIntentsTest, AnAnswerToAClosedWindowIsDropped) {
    post("scanCleanables");
    bridge.reset();
    machine.dispatcher.runAll();
    post("scanCleanables");
    EXPECT_EQ(count("onCleanables"), 0u);
}

struct CloudIntents : CleaningIntentsTest {
    const std::string drive = "Library/Mobile Documents/com~apple~CloudDocs";
    std::string film;

    void SetUp() override {
        CleaningIntentsTest::SetUp();
        machine.home.folder(drive);
        film = machine.home.text("Movies/film.mov", "film").path();
    }
};

TEST_F(CloudIntents, WithoutADirectionItMovesToTheCloud) {
    ask("moveCloud", {{"paths", {film, machine.home.path("gone")}}});
    EXPECT_EQ(page->calls("onCloudMove").back(),
              "window.velto && window.velto.onCloudMove && window.velto.onCloudMove({\"direction\":"
              "\"to\",\"failed\":[\"" +
                  machine.home.path("gone") + "\"],\"moved\":[\"" + film + "\"]});");
    EXPECT_EQ(machine.home.read(drive + "/Velto/film.mov"), "film");
    EXPECT_FALSE(machine.home.exists("Movies/film.mov"));
    EXPECT_EQ(count("setState"), 1u);
    EXPECT_THAT(trash.items(), IsEmpty());
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(CloudIntents, FromMovesItBack) {
    ask("moveCloud", {{"paths", {film}}, {"direction", "to"}});
    const std::string there = machine.home.path(drive + "/Velto/film.mov");
    ask("moveCloud", {{"paths", {there}}, {"direction", "from"}});
    EXPECT_EQ(lastArgument("onCloudMove"),
              json({{"moved", {there}}, {"failed", json::array()}, {"direction", "from"}}));
    EXPECT_EQ(machine.home.read("Movies/film.mov"), "film");
}

TEST_F(CloudIntents, WhatIsInTheCloudIsNotListedAndComesBackToTheList) {
    DiskState state;
    state.cats.push_back({.id = "fotos"});
    state.files = {{.name = "film.mov", .gb = 1.2, .kind = "video", .path = film}};
    ScanCache(*machine.platform.files, machine.platform.layout).save(state, 1'600'000'000);
    open();
    load();
    ask("moveCloud", {{"paths", {film}}});
    EXPECT_THAT(bridge->bootState->state.files, IsEmpty());
    ask("moveCloud", {{"paths", {film}}, {"direction", "from"}});
    EXPECT_EQ(bridge->bootState->state.files, state.files);
}

TEST_F(CloudIntents, WhenAllFailsNothingElseIsSaid) {
    ask("moveCloud", {{"paths", {machine.home.path("gone")}}});
    EXPECT_EQ(count("onCloudMove"), 1u);
    EXPECT_EQ(count("setState") + count("onTrashState") + count("toast"), 0u);
}

TEST_F(CloudIntents, MalformedPayloadsDoNothing) {
    post("moveCloud");
    ask("moveCloud", {{"paths", json::array()}});
    ask("moveCloud", {{"paths", film}});
    ask("moveCloud", {{"paths", {film}}, {"direction", 1}});
    ask("moveCloud", {{"paths", {film}}, {"direction", "away"}});
    EXPECT_EQ(count("onCloudMove"), 0u);
    EXPECT_TRUE(machine.home.exists("Movies/film.mov"));
}

TEST_F(CloudIntents, AResetForgetsWhereThingsCameFrom) {
    ask("moveCloud", {{"paths", {film}}});
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.home.exists(drive + "/Velto/film.mov")) << "the file is the user's";
    ask("moveCloud",
        {{"paths", {machine.home.path(drive + "/Velto/film.mov")}}, {"direction", "from"}});
    EXPECT_TRUE(machine.home.exists("Downloads/film.mov"));
}

}  // namespace
}  // namespace velto
