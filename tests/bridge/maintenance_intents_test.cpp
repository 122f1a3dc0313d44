#include "BridgeFixture.h"

namespace velto {
namespace {

struct MaintenanceIntents : BridgeFixture {
    MaintenanceIntents() { open(); }

    nlohmann::json answer() const {
        const std::string call = page->calls("onMaintenance").back();
        const std::size_t begin = call.find('{');
        return nlohmann::json::parse(call.substr(begin, call.rfind('}') - begin + 1));
    }
};

TEST_F(MaintenanceIntents, TheStatusTellsWhatIsKnownWithoutMeasuring) {
    post("maintenanceStatus");
    const auto status = answer();
    EXPECT_EQ(status["installed"], false);
    EXPECT_TRUE(status["last"].is_null());
    EXPECT_TRUE(status["next"].is_null());
    EXPECT_EQ(status["rules"]["duplicates"]["places"].size(), 3u);
    EXPECT_FALSE(status["rules"]["caches"].contains("items"));
}

TEST_F(MaintenanceIntents, AnInstalledScheduleHasALastAndANextRun) {
    machine.clock.time = 4'000'000'000;  // well after the agent's file is written
    post("settings", {{"enabled", true}, {"frequency", "daily"}});
    machine.home.text("Library/Application Support/Velto/maintenance.json",
                      R"({"ts":3999990000,"freed":1.5,"moved":3,"movedGB":0.4})");
    post("maintenanceStatus");
    const auto status = answer();
    EXPECT_EQ(status["installed"], true);
    EXPECT_EQ(status["last"]["moved"], 3);
    EXPECT_EQ(status["last"]["freed"], 1.5);
    EXPECT_EQ(status["next"], 3999990000.0 + 86400);
}

TEST_F(MaintenanceIntents, MeasuringTellsWhatEachRuleWouldMoveAndMovesNothing) {
    machine.home.sparse("Library/Caches/com.example.App/data", 60'000'000);
    settings.setRule("caches", false);
    post("measureMaintenance");
    EXPECT_EQ(count("onMaintenance"), 0u) << "measured elsewhere";
    post("measureMaintenance");
    EXPECT_TRUE(bridge->maintenanceMeasuring);
    machine.dispatcher.runAll();
    EXPECT_FALSE(bridge->maintenanceMeasuring);
    EXPECT_EQ(count("onMaintenance"), 1u) << "once at a time";
    const auto status = answer();
    EXPECT_EQ(status["rules"]["caches"]["items"], 1);
    EXPECT_DOUBLE_EQ(status["rules"]["caches"]["gb"], 0.06);
    EXPECT_EQ(status["rules"]["systemTrash"]["items"], 0);
    EXPECT_TRUE(machine.home.exists("Library/Caches/com.example.App/data"));
}

TEST_F(MaintenanceIntents, ABridgeThatIsGoneMeasuresNothing) {
    post("measureMaintenance");
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onMaintenance"), 0u);
}

TEST_F(MaintenanceIntents, ARuleThatDoesNothingWithoutAccessSaysSo) {
    post("maintenanceStatus");
    for (const char* rule : {"systemTrash", "oldDownloads", "duplicates"})
        EXPECT_EQ(answer()["rules"][rule]["needsAccess"], true) << rule;
    EXPECT_EQ(answer()["rules"]["caches"]["needsAccess"], false);
    machine.grantAccess();
    post("checkAccess");
    post("maintenanceStatus");
    EXPECT_EQ(answer()["rules"]["systemTrash"]["needsAccess"], false);
}

TEST_F(MaintenanceIntents, HowLongCachesStayIsUnansweredUntilItIsSaid) {
    post("maintenanceStatus");
    EXPECT_TRUE(answer()["cacheDays"].is_null());
    post("keepCaches", {{"days", 3}});
    EXPECT_EQ(answer()["cacheDays"], 3);
    EXPECT_EQ(settings.cacheDays(), 3);
    for (const nlohmann::json& bad :
         {nlohmann::json{{"days", -1}}, {{"days", "x"}}, {{"days", 0.5}}, nlohmann::json::object()})
        post("keepCaches", bad);
    EXPECT_EQ(settings.cacheDays(), 3);
    post("keepCaches", {{"days", 0}});
    EXPECT_EQ(answer()["cacheDays"], 0) << "answered: as long as everything";
}

TEST_F(MaintenanceIntents, WhatCachesComeToIsForetoldForEachChoice) {
    machine.home.sparse("Library/Caches/com.example.App/data", 60'000'000);
    settings.setRetention(30);
    post("maintenanceStatus");
    EXPECT_EQ(answer()["foretold"].size(), 0u);
    post("foretellCaches");
    post("foretellCaches");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onMaintenance"), 2u) << "once at a time";
    const auto foretold = answer()["foretold"];
    ASSERT_EQ(foretold.size(), 4u);
    EXPECT_EQ(foretold[0], (nlohmann::json{{"days", 0}, {"bytes", 31 * 60'000'000}}));
    EXPECT_EQ(foretold[2], (nlohmann::json{{"days", 3}, {"bytes", 4 * 60'000'000}}));
    EXPECT_TRUE(machine.home.exists("Library/Caches/com.example.App/data"));
}

TEST_F(MaintenanceIntents, TheNoticeOfAFullDiskIsOffUntilItIsAskedFor) {
    post("maintenanceStatus");
    EXPECT_EQ(answer()["fullDiskGB"], 0);
    settings.setFullDiskTold(5);
    post("fullDiskNotice", {{"gb", 20}});
    EXPECT_EQ(answer()["fullDiskGB"], 20);
    EXPECT_EQ(settings.fullDiskTold(), 0) << "another threshold is other news";
    post("fullDiskNotice", {{"gb", -3}});
    EXPECT_EQ(settings.fullDiskGB(), 20);
}

TEST_F(MaintenanceIntents, WhatThePassHoldsIsToldWithTheTrash) {
    const std::string cache = machine.home.text("Library/Caches/a/data", "x").path();
    const Operation taken = trash.moveToTrash({cache}, "maintenance", {{cache, 0.25}});
    const std::string mine = machine.home.text("Documents/mine.txt", "x").path();
    trash.moveToTrash({mine}, "wind");
    settings.setRetention(30);
    post("restoreItem", "unknown");  // any work on the trash
    machine.dispatcher.runAll();
    const auto held = answer()["held"];
    EXPECT_EQ(held["items"], 1) << "not what the user has moved";
    EXPECT_GT(held["bytes"], 0);
    ASSERT_EQ(held["returns"].size(), 1u);
    EXPECT_EQ(held["returns"][0]["from"], taken.ts + 30 * 86400);
    const std::size_t told = count("onMaintenance");
    post("restoreItem", "unknown");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onMaintenance"), told) << "nothing has changed";
}

}  // namespace
}  // namespace velto
