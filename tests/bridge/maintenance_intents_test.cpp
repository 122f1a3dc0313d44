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

}  // namespace
}  // namespace velto
