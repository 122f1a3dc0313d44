#include "bridge/BridgeFixture.h"
#include "maintenance/MaintenanceScheduler.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct SettingsIntent : BridgeFixture {
    void SetUp() override {
        open();
        page->scripts.clear();
        machine.log.clear();
    }
};

const json everything{{"retention", 14},
                      {"frequency", "monthly"},
                      {"enabled", false},
                      {"rules", {{"caches", false}, {"duplicates", true}}},
                      {"language", "es-MX"}};

TEST_F(SettingsIntent, EachKeyIsStored) {
    post("settings", everything);
    const Settings record = settings.record();
    EXPECT_EQ(record.retention, 14);
    EXPECT_EQ(record.frequency, "monthly");
    EXPECT_FALSE(record.rules->at("caches"));
    EXPECT_TRUE(record.rules->at("duplicates"));
    EXPECT_EQ(language.code(), "es");
    EXPECT_TRUE(settings.settingsConfigured());
    EXPECT_THAT(machine.log.lines().at(1),
                StartsWith("Velto ▶ ajustes: idioma=es · conservación=14 días · mantenimiento="));
}

TEST_F(SettingsIntent, BothNamesDoTheSame) {
    post("settings", everything);
    const auto first = machine.defaults.values;
    machine.defaults.values.clear();
    post("setAutoMaintenance", everything);
    EXPECT_EQ(machine.defaults.values, first);
}

TEST_F(SettingsIntent, ThePagesStartNeverOverwritesTheUsersChoice) {
    post("settings", {{"boot", true}, {"retention", 90}});
    EXPECT_EQ(settings.retention(), 90) << "nothing was chosen yet";
    post("settings", {{"retention", 7}});
    machine.home.text("Library/LaunchAgents/app.velto.maintenance.plist", "x");
    const auto before = machine.defaults.values;
    post("settings", {{"boot", true}, {"retention", 90}, {"language", "es"}});
    EXPECT_EQ(machine.defaults.values, before);
    EXPECT_TRUE(machine.home.exists("Library/LaunchAgents/app.velto.maintenance.plist"));
    EXPECT_TRUE(machine.tools.commands.empty());
}

TEST_F(SettingsIntent, ValuesThatCannotBeConvertedAreLeftOut) {
    post("settings", {{"retention", "x"}, {"enabled", "yes"}, {"rules", {{"caches", "off"}}}});
    EXPECT_EQ(settings.retention(), 30);
    EXPECT_FALSE(settings.autoMaintenance());
    EXPECT_TRUE(settings.rules().at("caches"));
    post("settings", {{"frequency", "hourly"}});
    EXPECT_EQ(settings.frequency(), "daily");
}

TEST_F(SettingsIntent, SwitchingMaintenanceOnInstallsTheAgentAndOffRemovesIt) {
    const std::string agent = machine.home.path("Library/LaunchAgents/app.velto.maintenance.plist");
    post("settings", {{"enabled", true}, {"frequency", "monthly"}});
    EXPECT_EQ(machine.home.read("Library/LaunchAgents/app.velto.maintenance.plist"),
              launchAgentText("/opt/velto/velto", "monthly"));
    EXPECT_THAT(machine.tools.commands, ElementsAre(ElementsAre("/bin/launchctl", "unload", agent),
                                                    ElementsAre("/bin/launchctl", "load", agent)));
    EXPECT_EQ(count("toast"), 0u);

    post("settings", {{"enabled", false}});
    EXPECT_FALSE(machine.platform.files->exists(agent));
    EXPECT_THAT(machine.tools.commands.back(), ElementsAre("/bin/launchctl", "unload", agent));
}

TEST_F(SettingsIntent, AnotherSettingLeavesTheScheduleAlone) {
    post("settings", {{"enabled", true}});
    machine.tools.commands.clear();
    post("settings", {{"enabled", true}, {"retention", 7}, {"language", "es"}});
    EXPECT_TRUE(machine.tools.commands.empty());
}

TEST_F(SettingsIntent, WhoSwitchesMaintenanceOnIsAskedOnceForNotifications) {
    EXPECT_EQ(questions, 0);
    post("settings", {{"enabled", true}});
    EXPECT_EQ(questions, 1);
    post("settings", {{"enabled", true}, {"frequency", "monthly"}});
    post("settings", {{"enabled", false}});
    EXPECT_EQ(questions, 1);
}

TEST_F(SettingsIntent, AFailedInstallationAsksForNothing) {
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    post("settings", {{"enabled", true}});
    EXPECT_EQ(questions, 0);
}

TEST_F(SettingsIntent, AProgramOnADiskImageSaysWhereItHasToBe) {
    machine.platform.executablePath = "/private/var/AppTranslocation/0F/d/Velto.app/velto";
    post("settings", {{"enabled", true}});
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("move Velto to the Applications folder"));
    EXPECT_FALSE(settings.autoMaintenance());
}

TEST_F(SettingsIntent, AFailedInstallationIsToldInTheUsersLanguage) {
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    post("settings", {{"enabled", true}});
    EXPECT_THAT(page->calls("toast").back(),
                HasSubstr("\"Automatic maintenance couldn't be set up\", \"The part of the "
                          "system that starts programs on time is missing.\""));
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ mantenimiento no configurado: could not start "
                          "/bin/launchctl: No such file or directory"));
    post("settings", {{"enabled", true}, {"language", "es"}});
    EXPECT_THAT(page->calls("toast").back(),
                HasSubstr("\"No se pudo configurar el mantenimiento\", \"Falta la parte del "
                          "sistema que inicia programas a su hora.\""));
}

TEST_F(SettingsIntent, ARetentionBeyondAllNumbersIsTheLongestOne) {
    settings.setRetention(7);
    for (const json& days : {json(1'000'001), json(9.1e15), json(1e300), json(4'000'000.5)}) {
        post("settings", {{"retention", days}});
        EXPECT_EQ(settings.retention(), 1'000'000) << days;
        settings.setRetention(7);
    }
    for (const json& days : {json(30.5), json(-1e300), json("1000001")}) {
        post("settings", {{"retention", days}});
        EXPECT_EQ(settings.retention(), 7) << days;
    }
}

TEST_F(SettingsIntent, AFailedRefreshShowsTheScheduleThatStillRuns) {
    post("settings", {{"enabled", true}, {"frequency", "daily"}});
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    post("settings", {{"frequency", "monthly"}});
    EXPECT_EQ(count("toast"), 1u);
    EXPECT_TRUE(settings.autoMaintenance());
    EXPECT_EQ(settings.frequency(), "daily");
    EXPECT_EQ(machine.home.read("Library/LaunchAgents/app.velto.maintenance.plist"),
              launchAgentText("/opt/velto/velto", "daily"));
}

TEST_F(SettingsIntent, AFailedInstallationPutsTheSwitchBackAndLeavesNothing) {
    machine.tools.result = {.started = false, .startError = "No such file or directory"};
    post("settings", {{"enabled", true}});
    EXPECT_FALSE(settings.autoMaintenance());
    EXPECT_FALSE(machine.home.exists("Library/LaunchAgents/app.velto.maintenance.plist"));
    EXPECT_THAT(page->calls("setState").back(), HasSubstr("\"autoMaintenance\":false"));
}

TEST_F(SettingsIntent, ThePageGetsTheNewStateAndTheSavedAnalysisKeepsItsStamp) {
    saveAnalysis(1'600'000'000);
    open();
    page->scripts.clear();
    post("settings", {{"retention", 7}});
    EXPECT_THAT(page->calls("setState").back(), HasSubstr("\"retention\":7"));
    EXPECT_THAT(page->calls("setState").back(), HasSubstr(", 1600000000.0);"));
    machine.dispatcher.runAll();
    const auto saved = ScanCache(*machine.platform.files, machine.platform.layout).load();
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->ts, 1'600'000'000);
    EXPECT_EQ(saved->state.settings.retention, 7);
}

}  // namespace
}  // namespace velto
