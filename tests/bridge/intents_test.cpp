#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

struct Intents : BridgeFixture {
    void SetUp() override {
        open();
        page->scripts.clear();
        machine.log.clear();
    }
};

TEST_F(Intents, WebReadyIsRecordedLoggedAndEchoedAndNothingElse) {
    post("webReady");
    EXPECT_THAT(bridge->pendingIntents, ElementsAre("webReady"));
    EXPECT_THAT(machine.log.lines(), ElementsAre("Velto ▶ intención: webReady payload: nil"));
    EXPECT_THAT(page->scripts,
                ElementsAre("console.info('[velto] intención recibida: webReady');"));
}

TEST_F(Intents, TheProgramsEndWaitsForWhatChangesFilesAndForNothingElse) {
    const std::string path = machine.home.text("Downloads/a.txt", "a").path();
    const int& changes = machine.dispatcher.changes;
    const auto begun = [&](const char* type, const nlohmann::json& payload) {
        machine.dispatcher.runAll();
        const int before = changes;
        post(type, payload);
        return changes - before;
    };
    for (const char* reading : {"scan", "appsList", "scanCleanables", "measureMaintenance"})
        EXPECT_EQ(begun(reading, {}), 0) << reading;
    EXPECT_EQ(begun("appAnalysis", {{"path", path}}), 0);
    EXPECT_EQ(begun("uninstall", {{"path", path}, {"paths", {path}}}), 1);
    EXPECT_EQ(begun("cleanPaths", {{"paths", {path}}}), 1);
    EXPECT_EQ(begun("resetVelto", {}), 1);
}

TEST_F(Intents, TheLogTellsThePayloadWholeOnlyToWhomeverAsksForIt) {
    const nlohmann::json payload{{"paths", {"/home/ana/plans/a.txt", "/home/ana/plans/b.txt"}}};
    machine.log.clear();
    post("unknown", payload);
    machine.log.setDetailed();
    post("unknown", payload);
    EXPECT_THAT(machine.log.lines(),
                ElementsAre(R"(Velto ▶ intención: unknown payload: {"paths":[2: "…/a.txt", …]})",
                            "Velto ▶ intención: unknown payload: "
                            R"({"paths":["/home/ana/plans/a.txt","/home/ana/plans/b.txt"]})"));
}

TEST_F(Intents, MalformedMessagesAreDroppedWithoutATrace) {
    page->post({{"type", "scan"}}, "other");
    page->post(json("scan"));
    page->post(json::array({"scan"}));
    page->post(json::object());
    page->post({{"type", 7}});
    EXPECT_TRUE(bridge->pendingIntents.empty());
    EXPECT_TRUE(machine.log.lines().empty());
    EXPECT_TRUE(page->scripts.empty());
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(Intents, AnUnknownIntentIsOnlyRecorded) {
    post("formatDisk", {{"path", "/"}});
    EXPECT_THAT(bridge->pendingIntents, ElementsAre("formatDisk"));
    EXPECT_EQ(page->scripts.size(), 1u);
    post("Scan");  // names are case-sensitive
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(Intents, EveryKnownNameSurvivesEveryWrongPayload) {
    const std::vector<const char*> names{
        "webReady",     "settings",        "setTheme",           "systemWatch",
        "appsList",     "appAnalysis",     "uninstall",          "revealPath",
        "deleteFiles",  "undoLast",        "restoreItem",        "purgeItem",
        "cleanPaths",   "clearHistory",    "addExclusion",       "scanCleanables",
        "moveCloud",    "goView",          "maintenanceStatus",  "setAutoMaintenance",
        "exclusions",   "removeExclusion", "measureMaintenance", "restoreItemTo",
        "stopAnalysis", "chooseExclusion", "recordAppUses",      "foretellSharing",
        "shareSpace",   "stopSharing"};
    const std::vector<json> wrong{nullptr,
                                  true,
                                  3.5,
                                  json::array(),
                                  json::array({1}),
                                  {{"paths", json::array()}},
                                  {{"theme", 1}},
                                  {{"rules", "x"}}};
    for (const char* name : names) {
        for (const json& payload : wrong)
            post(name, payload);
    }
    machine.dispatcher.runAll();
    EXPECT_EQ(bridge->pendingIntents.size(), names.size() * wrong.size());
    EXPECT_TRUE(exclusions.paths().empty());
    EXPECT_TRUE(machine.workspace.revealed.empty());
    EXPECT_EQ(shell.appearanceChanges, 0);
    EXPECT_EQ(count("toast"), 0u);
}

TEST_F(Intents, TheThemeChangesTheWindowOnlyWhenItDiffers) {
    post("setTheme", {{"theme", "light"}});
    EXPECT_EQ(shell.appearanceChanges, 0);
    post("setTheme", {{"theme", "sepia"}});
    EXPECT_EQ(shell.current, Appearance::dark);
    EXPECT_TRUE(machine.log.holds("Velto ▶ tema de la ventana: NSAppearanceNameDarkAqua"));
    post("setTheme", {{"theme", "dark"}});
    EXPECT_EQ(shell.appearanceChanges, 1);
}

TEST_F(Intents, AThemeThatIsTheSystemsAlreadyStaysWhenTheSystemsChanges) {
    post("setTheme", {{"theme", "light"}});
    EXPECT_EQ(shell.appearanceChanges, 0);
    EXPECT_FALSE(shell.isFollowing);
}

TEST_F(Intents, TheWindowGoesBackToTheSystemsTheme) {
    post("setTheme", {{"theme", "dark"}});
    post("followSystemTheme");
    EXPECT_TRUE(shell.isFollowing);
    EXPECT_TRUE(machine.log.holds("Velto ▶ tema de la ventana: el del sistema"));
}

TEST_F(Intents, RevealShowsTheFileInTheViewer) {
    post("revealPath", "/home/a/b c.txt");
    EXPECT_THAT(machine.workspace.revealed, ElementsAre("/home/a/b c.txt"));
}

TEST_F(Intents, GoViewCallsThePage) {
    post("goView", "apps");
    EXPECT_THAT(page->scripts.back(), HasSubstr("go('apps')"));
}

TEST_F(Intents, ExcludingTwiceStoresOnceAndAlwaysAnswers) {
    post("addExclusion", "/h/Music");
    post("addExclusion", "/h/Music");
    EXPECT_THAT(exclusions.paths(), ElementsAre("/h/Music"));
    EXPECT_THAT(page->calls("onExcluded"), ElementsAre(HasSubstr("(\"/h/Music\")")))
        << "the second one was none: taking it back would take back the first";
    EXPECT_THAT(page->calls("toast"),
                ElementsAre("window.velto && window.velto.toast && window.velto.toast(\"Excluded "
                            "from the analysis\", \"/h/Music\");",
                            testing::_));
    language.setCode("es");
    post("addExclusion", "/h/Otra");
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("\"Excluido del análisis\", \"/h/Otra\""));
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(Intents, WhatIsExcludedIsToldBeforeTheMessageOfIt) {
    post("addExclusion", "/h/Music");
    post("addExclusion", "/h/Music/below");
    std::vector<std::string> order;
    for (const std::string& script : page->scripts) {
        for (const char* event : {"onExcluded(", "toast(", "onExclusions("}) {
            if (script.find(event) != std::string::npos) order.emplace_back(event);
        }
    }
    EXPECT_THAT(order,
                ElementsAre("onExcluded(", "toast(", "onExclusions(", "toast(", "onExclusions("));
}

TEST_F(Intents, AFileNameNeverBecomesScript) {
    post("addExclusion", "/h/x\\\");alert(1);//\n.txt");
    EXPECT_EQ(page->calls("toast").back(),
              "window.velto && window.velto.toast && window.velto.toast(\"Excluded from the "
              "analysis\", \"/h/x/\\\");alert(1);// .txt\");");
}

TEST_F(Intents, AnExclusionCanBeTakenBack) {
    post("addExclusion", "/h/Music");
    post("removeExclusion", "/h/Music");
    EXPECT_TRUE(exclusions.paths().empty());
    EXPECT_THAT(page->calls("onExclusions").back(), HasSubstr("onExclusions([])"));
    post("exclusions");
    EXPECT_EQ(count("onExclusions"), 3u);
}

TEST_F(Intents, AnIntentAfterThePageIsGoneStillRuns) {
    const auto handler = page->handlers.at("velto");
    page.reset();
    handler("velto", {{"type", "addExclusion"}, {"payload", "/h/Music"}});
    EXPECT_THAT(exclusions.paths(), ElementsAre("/h/Music"));
}

TEST_F(Intents, AMessageAfterTheBridgeIsGoneIsIgnored) {
    bridge.reset();
    EXPECT_EQ(JSBridge::current(), nullptr);
    post("scan");
    EXPECT_TRUE(page->scripts.empty());
}

TEST_F(Intents, AfterAResetNoOlderUseOfAnApplicationIsWrittenDownAgain) {
    usage.record("com.example.old", 1'600'000'000);
    post("resetVelto");
    machine.dispatcher.runAll();
    usage.record("com.example.new", 1'700'000'000);
    machine.dispatcher.advance(60);
    machine.dispatcher.runAll();
    EXPECT_THAT(AppUsage(machine.platform).launches(),
                testing::ElementsAre(testing::Pair("com.example.new", 1'700'000'000)));
}

TEST_F(Intents, ResetTakesTheAgentAndAllLocalDataAway) {
    machine.home.text("Library/LaunchAgents/app.velto.maintenance.plist", "x");
    post("addExclusion", "/h/Music");
    settings.setRetention(7);
    ASSERT_TRUE(machine.home.exists("Library/Application Support/Velto/exclusions.json"));

    post("resetVelto");
    machine.dispatcher.runAll();

    EXPECT_FALSE(machine.home.exists("Library/Application Support/Velto"));
    EXPECT_FALSE(machine.home.exists("Library/LaunchAgents/app.velto.maintenance.plist"));
    EXPECT_TRUE(machine.home.exists("Library/Application Support"));
    EXPECT_TRUE(machine.log.holds("Velto ▶ reset completo: LaunchAgent y datos eliminados"));
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("\"Velto has been reset\", \"Automatic"));
    EXPECT_TRUE(exclusions.paths().empty());
    EXPECT_EQ(settings.retention(), 7) << "settings stay";
}

}  // namespace
}  // namespace velto
