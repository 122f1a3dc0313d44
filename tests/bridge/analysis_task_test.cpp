#include "analysis/MeasurementFile.h"
#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct AnalysisTask : BridgeFixture {};

TEST_F(AnalysisTask, ASavedAnalysisIsThereBeforeThePagesScriptsAndNoScanStarts) {
    saveAnalysis(machine.clock.time - 90);
    open();
    ASSERT_EQ(page->userScripts.size(), 1u);
    EXPECT_THAT(page->userScripts[0], HasSubstr("window.velto._stamp = 1699999910.0;"));
    EXPECT_TRUE(machine.log.holds(
        "Velto ▶ arranque: análisis guardado hace 1.5 min · escaneo automático: no"));
    load();
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ estado de arranque aplicado: real · categorías=1 · archivos=0"));
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_EQ(count("onScanStarted"), 0u);
    EXPECT_EQ(count("setState"), 1u);
    EXPECT_EQ(count("onTrashState"), 1u);
}

TEST_F(AnalysisTask, ASavedAnalysisOfAnyAgeIsShownWithoutANewOne) {
    saveAnalysis(0);
    open();
    load();
    EXPECT_FALSE(bridge->needsFirstScan);
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(AnalysisTask, WithoutASavedAnalysisOneStartsWhenThePageHasLoaded) {
    open();
    EXPECT_THAT(page->userScripts, IsEmpty());
    EXPECT_TRUE(machine.log.holds("Velto ▶ arranque: sin análisis previo"));
    EXPECT_FALSE(bridge->scanRunning);
    load();
    EXPECT_TRUE(machine.log.holds(
        "Velto ▶ estado de arranque aplicado: pendiente de análisis · categorías=0 · archivos=0"));
    EXPECT_THAT(page->calls("setState").front(),
                AllOf(HasSubstr("\"cats\":[]"), HasSubstr("\"total\":500.0"),
                      HasSubstr("\"free\":125.0"), HasSubstr("\"ser\":66")));
    EXPECT_TRUE(bridge->scanRunning);
    EXPECT_EQ(count("onScanStarted"), 1u);
}

TEST_F(AnalysisTask, AFinishedAnalysisIsSavedBeforeThePageHearsOfIt) {
    machine.home.file("Music/a.mp3", 2_MB);
    open();
    load();
    page->scripts.clear();
    machine.dispatcher.runAll();

    const auto saved = ScanCache(*machine.platform.files, machine.platform.layout).load();
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->ts, machine.clock.time);
    EXPECT_EQ(saved->state, bridge->bootState->state);
    EXPECT_EQ(saved->state.cats.size(), 6u);
    ASSERT_GE(page->scripts.size(), 3u);
    const auto end = page->scripts.end();
    EXPECT_THAT(*(end - 3), HasSubstr("onPermissions"));
    EXPECT_THAT(*(end - 2), HasSubstr("setState"));
    EXPECT_THAT(*(end - 1), HasSubstr("onScanFinished"));
    EXPECT_TRUE(machine.log.holds("Velto ▶ análisis iniciado"));
    EXPECT_TRUE(machine.log.holds("Velto ▶ análisis terminado: 0 archivos top, 125.0 GB libres"));
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_FALSE(bridge->scanTask);
}

/// An analysis whose result the main thread has taken over and nobody has saved yet.
struct AnalysisBeingSaved : AnalysisTask {
    void SetUp() override {
        machine.home.file("Music/a.mp3", 2_MB);
        open();
        post("scan");
        machine.dispatcher.runGlobal();
        machine.dispatcher.runMain();
    }

    std::optional<ScanCache::Entry> saved() {
        return ScanCache(*machine.platform.files, machine.platform.layout).load();
    }
};

TEST_F(AnalysisBeingSaved, ThePageHearsThatItIsOverWhenTheFileStandsAndNotBefore) {
    EXPECT_FALSE(saved()) << "the main thread writes nothing itself";
    EXPECT_EQ(count("onScanFinished"), 0u);
    EXPECT_TRUE(bridge->scanRunning);
    machine.dispatcher.runGlobal();
    ASSERT_TRUE(saved());
    EXPECT_EQ(saved()->state, bridge->bootState->state);
    EXPECT_EQ(count("onScanFinished"), 0u);
    machine.dispatcher.runMain();
    EXPECT_EQ(count("onScanFinished"), 1u);
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(AnalysisBeingSaved, AWindowThatClosesThenLosesNeitherStateNorMeasurement) {
    const DiskState made = bridge->bootState->state;
    bridge.reset();
    ASSERT_TRUE(saved());
    EXPECT_EQ(saved()->state, made);
    EXPECT_TRUE(
        MeasurementFile(*machine.platform.files, machine.platform.layout).load(saved()->ts));
    openAnother();
    EXPECT_FALSE(bridge->needsFirstScan);
    EXPECT_EQ(bridge->bootState->state, made);
}

TEST_F(AnalysisBeingSaved, WhatIsChangedThenIsSavedWithIt) {
    post("settings", {{"retention", 7}});
    machine.dispatcher.runAll();
    ASSERT_TRUE(saved());
    EXPECT_EQ(saved()->state.settings.retention, 7);
    EXPECT_EQ(saved()->state, bridge->bootState->state);
    EXPECT_EQ(count("onScanFinished"), 1u);
}

TEST_F(AnalysisBeingSaved, StoppingItComesTooLate) {
    post("stopAnalysis");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onScanFinished"), 1u);
    EXPECT_EQ(count("onAnalysisStopped"), 0u);
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(AnalysisTask, AResetIsNotOutlivedByTheAnalysisThatIsBeingSaved) {
    open();
    post("scan");
    machine.dispatcher.runGlobal();
    bridge->refreshTrash();  // at work before the analysis is saved, and the reset goes along
    machine.dispatcher.runMain();
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists("Library/Application Support/Velto"));
    EXPECT_FALSE(bridge->bootState);
    EXPECT_EQ(count("onScanFinished"), 1u);
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(AnalysisTask, AnAnalysisThatCannotBeSavedIsShownAllTheSame) {
    // A folder that holds something is replaced by no file.
    machine.home.text("Library/Application Support/Velto/lastScan.json/taken", "");
    open();
    post("scan");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onScanFinished"), 1u);
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_THAT(page->calls("setState").back(), HasSubstr("\"id\":\"musica\""));
}

TEST_F(AnalysisTask, TheComparisonIsAPhaseOfItsOwnBetweenTheCountAndTheEnd) {
    open();
    load();
    machine.dispatcher.runAll();
    const auto& phases = page->calls("onAnalysisPhase");
    ASSERT_FALSE(phases.empty());
    EXPECT_THAT(phases.front(),
                HasSubstr(R"(onAnalysisPhase({"phase":"comparing","files":0,"gb":0.0});)"));
    const auto at = [&](const char* callback) {
        return std::ranges::find_if(page->scripts, [&](const std::string& script) {
            return script.find(callback) != std::string::npos;
        });
    };
    EXPECT_LT(at("onScanStarted("), at("onAnalysisPhase("));
    EXPECT_LT(at("onAnalysisPhase("), at("onScanFinished("));
}

TEST_F(AnalysisTask, ASecondScanWhileOneRunsIsIgnored) {
    open();
    post("scan");
    post("scan");
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 1u);
    EXPECT_EQ(count("onScanStarted"), 1u);
}

TEST_F(AnalysisTask, ACancelledAnalysisKeepsWhatWasThere) {
    saveAnalysis(1'600'000'000);
    open();
    const DiskState before = bridge->bootState->state;
    machine.home.file("a.txt", 10_KB);
    post("scan");
    bridge->scanTask->cancel();
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.log.holds("Velto ▶ análisis cancelado"));
    EXPECT_EQ(count("onScanFailed"), 1u);
    EXPECT_EQ(count("setState"), 0u);
    EXPECT_EQ(bridge->bootState->state, before);
    EXPECT_EQ(ScanCache(*machine.platform.files, machine.platform.layout).load()->ts,
              1'600'000'000);
    EXPECT_FALSE(bridge->scanRunning);
}

TEST_F(AnalysisTask, StoppingLeavesTheStateAsItWasAndSaysThatItWasStopped) {
    saveAnalysis(1'600'000'000);
    open();
    const DiskState before = bridge->bootState->state;
    machine.home.file("a.txt", 10_KB);
    post("scan");
    post("stopAnalysis");
    page->scripts.clear();
    machine.dispatcher.runAll();
    EXPECT_THAT(page->scripts,
                ElementsAre(HasSubstr("onAnalysisStopped()"), HasSubstr("onScanFailed()")));
    EXPECT_EQ(bridge->bootState->state, before);
    EXPECT_EQ(ScanCache(*machine.platform.files, machine.platform.layout).load()->ts,
              1'600'000'000);
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_TRUE(machine.log.holds("Velto ▶ análisis cancelado"));
}

TEST_F(AnalysisTask, StoppingInTheLastMomentStillLeavesTheStateAsItWas) {
    saveAnalysis(1'600'000'000);
    open();
    const DiskState before = bridge->bootState->state;
    machine.home.file("a.txt", 10_KB);
    post("scan");
    machine.dispatcher.runGlobal();  // the walk is done, its result on the way
    post("stopAnalysis");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onAnalysisStopped"), 1u);
    EXPECT_EQ(count("onScanFinished"), 0u);
    EXPECT_EQ(count("setState"), 0u);
    EXPECT_EQ(bridge->bootState->state, before);
}

TEST_F(AnalysisTask, StoppingWhenNothingRunsSaysNothing) {
    saveAnalysis(1'600'000'000);
    open();
    page->scripts.clear();
    post("stopAnalysis");
    machine.dispatcher.runAll();
    EXPECT_EQ(page->scripts.size(), 1u) << "the echo alone";
    post("scan");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onAnalysisStopped"), 0u);
    EXPECT_EQ(count("onScanFinished"), 1u);
}

TEST_F(AnalysisTask, WhoeverStopsOneIsNotGivenAnother) {
    open();
    post("scan");
    bridge->pendingAccessRescan = true;
    post("stopAnalysis");
    machine.dispatcher.runAll();
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_EQ(count("onScanStarted"), 1u);
}

TEST_F(AnalysisTask, ABridgeThatIsGoneEndsItsAnalysisQuietly) {
    open();
    post("scan");
    bridge.reset();
    page->scripts.clear();
    machine.dispatcher.runAll();
    EXPECT_THAT(page->scripts, IsEmpty());
}

TEST_F(AnalysisTask, AnEventAfterThePageIsGoneIsDropped) {
    open();
    post("scan");
    page.reset();
    machine.dispatcher.runAll();
    EXPECT_TRUE(bridge->bootState);
}

TEST_F(AnalysisTask, AStateThatCannotBeEncodedStillTellsThePermissions) {
    saveAnalysis(1);
    open();
    bridge->bootState->state.free = std::numeric_limits<double>::infinity();
    load();
    EXPECT_EQ(count("onPermissions"), 1u);
    EXPECT_EQ(count("setState"), 0u);
    EXPECT_TRUE(machine.log.holds("Velto: no se pudo serializar DiskState"));
}

TEST_F(AnalysisTask, AReloadedPageHearsThatAnAnalysisRuns) {
    open();
    load();
    load();
    EXPECT_EQ(count("onScanStarted"), 2u);
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 1u);
}

TEST_F(AnalysisTask, SettingsChangedSinceTheAnalysisAreWhatThePageSees) {
    saveAnalysis(1);
    settings.setRetention(7);
    open();
    EXPECT_THAT(page->userScripts.at(0), HasSubstr("\"retention\":7"));
}

}  // namespace
}  // namespace velto
