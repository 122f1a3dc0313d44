#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* settingsURL =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_AllFiles";

struct Access : BridgeFixture {
    void SetUp() override {
        saveAnalysis(1);
        open();
        page->scripts.clear();
        machine.log.clear();
    }
};

TEST_F(Access, AskingShowsTheExplanationAndDecliningStopsThere) {
    shell.accepts = false;
    post("requestAccess");
    ASSERT_EQ(shell.questions.size(), 1u);
    EXPECT_EQ(shell.questions[0].title, "One permission, and only if you want it");
    EXPECT_TRUE(machine.workspace.openedURLs.empty());
    EXPECT_FALSE(bridge->accessWatch);
}

TEST_F(Access, AcceptingOpensTheSettingsAndWatches) {
    language.setCode("es");
    post("requestAccess");
    EXPECT_EQ(shell.questions.at(0).title, "Un solo permiso, y solo si tú quieres");
    EXPECT_THAT(machine.workspace.openedURLs, ElementsAre(settingsURL));
    EXPECT_EQ(shell.activations, 1);
    EXPECT_TRUE(bridge->accessWatch);
}

TEST_F(Access, TheSettingsOpenWithoutAQuestionOnRequest) {
    post("openFDASettings");
    EXPECT_THAT(machine.workspace.openedURLs, ElementsAre(settingsURL));
    EXPECT_TRUE(shell.questions.empty());
    EXPECT_FALSE(bridge->accessWatch);
}

TEST_F(Access, ResettingRunsTheToolOpensTheSettingsAndWatches) {
    post("resetAccess");
    EXPECT_THAT(
        machine.tools.commands,
        ElementsAre(ElementsAre("/usr/bin/tccutil", "reset", "SystemPolicyAllFiles", "app.velto")));
    EXPECT_THAT(machine.workspace.openedURLs, ElementsAre(settingsURL));
    EXPECT_TRUE(bridge->accessWatch);
}

TEST_F(Access, TheWatchEndsAfterSeventyFiveChecks) {
    post("requestAccess");
    machine.dispatcher.advance(1.9);
    EXPECT_EQ(count("onPermissions"), 0u);
    machine.dispatcher.advance(0.2);
    EXPECT_EQ(count("onPermissions"), 1u);
    machine.dispatcher.advance(1000);
    EXPECT_EQ(count("onPermissions"), 75u);
    EXPECT_EQ(machine.dispatcher.waitingTimers(), 0u);
    EXPECT_FALSE(bridge->accessWatch);
}

TEST_F(Access, ASecondWatchReplacesTheFirst) {
    post("requestAccess");
    machine.dispatcher.advance(1);
    post("resetAccess");
    machine.dispatcher.advance(2);
    EXPECT_EQ(count("onPermissions"), 1u);
    machine.dispatcher.advance(2);
    EXPECT_EQ(count("onPermissions"), 2u);
}

TEST_F(Access, GrantingEndsTheWatchAndMeasuresEverything) {
    post("requestAccess");
    machine.grantAccess();
    machine.dispatcher.advance(2);
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ Acceso total al disco concedido: se reanuda midiendo todo"));
    EXPECT_TRUE(bridge->accessGranted);
    EXPECT_TRUE(bridge->scanRunning);
    EXPECT_EQ(machine.dispatcher.waitingTimers(), 0u);
    EXPECT_THAT(page->calls("onPermissions").back(), HasSubstr("{\"fda\":true}"));
}

TEST_F(Access, GrantingDuringAnAnalysisLeadsToExactlyOneMore) {
    post("scan");
    machine.grantAccess();
    bridge->checkFullDiskAccess();
    bridge->checkFullDiskAccess();
    EXPECT_TRUE(bridge->pendingAccessRescan);
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onScanStarted"), 2u);
    EXPECT_EQ(count("onScanFinished"), 2u);
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_FALSE(bridge->pendingAccessRescan);
}

TEST_F(Access, CheckingWhileAnAnalysisRunsMarksAnotherInsteadOfStartingOne) {
    post("scan");
    machine.grantAccess();
    post("checkAccess");
    EXPECT_TRUE(bridge->pendingAccessRescan);
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 1u);
}

TEST_F(Access, CheckingWithAccessStartsAnAnalysisAndWithoutItAsks) {
    post("checkAccess");
    EXPECT_EQ(shell.questions.size(), 1u);
    EXPECT_FALSE(bridge->scanRunning);
    machine.grantAccess();
    post("checkAccess");
    EXPECT_TRUE(bridge->scanRunning);
}

TEST_F(Access, LosingAccessIsNotedWithoutAnAnalysis) {
    machine.grantAccess();
    bridge->accessGranted = true;
    machine.platform.files->removeAll(machine.home.path("Library/Safari"));
    bridge->checkFullDiskAccess();
    EXPECT_FALSE(bridge->accessGranted);
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(Access, AWatchOfABridgeThatIsGoneEndsQuietly) {
    post("requestAccess");
    bridge.reset();
    machine.dispatcher.advance(10);
    EXPECT_EQ(machine.dispatcher.waitingTimers(), 0u);
    EXPECT_EQ(count("onPermissions"), 0u);
}

}  // namespace
}  // namespace velto
