#include "bridge/GrowthIntents.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "analysis/growth/GrowthKeeper.h"
#include "bridge/BridgeFixture.h"
#include "platform/values/path_text.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

constexpr double now = 1'900'000'000;

struct GrowthIntentsTest : BridgeFixture {
    void SetUp() override {
        machine.clock.time = now;
        open();
    }

    /// The home with one folder in Movies and one beside it.
    std::shared_ptr<const FolderTree> folders(std::int64_t trip, std::int64_t music = 9_MB) {
        const std::string& home = machine.home.path();
        return std::make_shared<const FolderTree>(FolderTreeBuilder::build({
            {.number = 0, .parent = FolderTreeBuilder::noParent, .name = home, .facts = {}},
            {.number = 1, .parent = 0, .name = "Movies", .facts = {.inode = 1}},
            {.number = 2, .parent = 1, .name = "caf\xe9", .facts = {.inode = 2, .ownBytes = trip}},
            {.number = 3, .parent = 0, .name = "Music", .facts = {.inode = 3, .ownBytes = music}},
        }));
    }
    void keep(double daysAgo, std::int64_t trip, std::int64_t music = 9_MB) {
        GrowthKeeper(machine.platform).keep(*folders(trip, music), now - daysAgo * 86'400, {});
    }
    static std::int64_t moment(double daysAgo) {
        return static_cast<std::int64_t>(now - daysAgo * 86'400);
    }
    std::string below(const char* path) { return pathText(machine.home.path(path)); }
    nlohmann::json told(const char* callback = "onGrowth") { return page->lastArgument(callback); }
    nlohmann::json ask(const nlohmann::json& since) {
        post("growth", {{"since", since}});
        machine.dispatcher.runAll();
        return told();
    }
};

TEST_F(GrowthIntentsTest, ThePageIsToldWhatHasGrownSinceTheLastAnalysis) {
    keep(3, 1'000'000'000);
    keep(1, 4'000'000'000);
    post("growth", {{"since", "last"}});
    EXPECT_EQ(count("onGrowth"), 0u) << "compared on the main thread";
    machine.dispatcher.runAll();
    EXPECT_EQ(
        told(),
        nlohmann::json(
            {{"asked", "last"},
             {"since", moment(3)},
             {"until", moment(1)},
             {"available", {moment(3)}},
             {"home", machine.home.path()},
             {"bytes", 3'000'000'000},
             {"grown",
              {{{"path", below("Movies/caf\xe9")}, {"bytes", 3'000'000'000}, {"kind", "grown"}}}},
             {"shrunk", nlohmann::json::array()},
             {"renamed", nlohmann::json::array()}}));
}

TEST_F(GrowthIntentsTest, TheNearestOneAtOrBeforeTheMomentIsTakenOrTheOldest) {
    for (const double daysAgo : {40.0, 20.0, 9.0, 5.0, 2.0, 1.0, 0.0})
        keep(daysAgo, 5_MB);
    EXPECT_EQ(ask("last")["since"], moment(1));
    EXPECT_EQ(ask("week")["since"], moment(9));
    EXPECT_EQ(ask("month")["since"], moment(40));
    EXPECT_EQ(ask(moment(20))["since"], moment(20));
    EXPECT_EQ(ask(moment(20) - 1)["since"], moment(40));
    EXPECT_EQ(ask(moment(300))["since"], moment(40)) << "there is nothing older";
    EXPECT_EQ(ask(moment(300))["asked"], moment(300));
    EXPECT_EQ(ask("last")["available"],
              nlohmann::json({moment(1), moment(2), moment(5), moment(9), moment(20), moment(40)}));
    for (const nlohmann::json& odd :
         {nlohmann::json("year"), nlohmann::json(-5), nlohmann::json(1e300), nlohmann::json()})
        EXPECT_EQ(ask(odd)["since"], moment(1));
}

TEST_F(GrowthIntentsTest, WithNothingToCompareWithNothingIsAvailable) {
    const auto isNothing = [](const nlohmann::json& growth) {
        return growth["available"].empty() && growth["since"] == 0 && growth["bytes"] == 0 &&
               growth["grown"].empty();
    };
    EXPECT_TRUE(isNothing(ask("last")));
    keep(1, 5_MB);
    EXPECT_TRUE(isNothing(ask("week")));
    post("folderGrowth", {{"path", ""}, {"since", "week"}});
    machine.dispatcher.runAll();
    EXPECT_EQ(told("onFolderGrowth"), nlohmann::json({{"path", machine.home.path()},
                                                      {"since", 0},
                                                      {"folders", nlohmann::json::object()}}));
}

TEST_F(GrowthIntentsTest, ADamagedSnapshotIsPassedOver) {
    keep(9, 50_MB);
    keep(8, 60_MB);
    keep(1, 70_MB);
    keep(0, 80_MB);
    const auto damage = [this](std::int64_t when) {
        machine.platform.files->writeAtomically(
            fmt::format("{}/Growth/{:012}.growth", machine.platform.layout.dataFolder, when),
            "velto-growth 1 nonsense");
        openAnother();  // which has read nothing yet
    };
    damage(moment(8));
    EXPECT_EQ(ask("week")["since"], moment(9));
    damage(moment(9));
    EXPECT_EQ(ask("week")["since"], moment(1)) << "then one that is newer";
    damage(moment(0));
    EXPECT_EQ(ask("week")["available"], nlohmann::json::array());
}

TEST_F(GrowthIntentsTest, TheFoldersOfOneFolderAreTold) {
    keep(1, 1'000'000'000);
    keep(0, 4'000'000'000);
    post("folderGrowth", {{"path", below("Movies")}, {"since", "last"}});
    machine.dispatcher.runAll();
    EXPECT_EQ(told("onFolderGrowth"),
              nlohmann::json({{"path", below("Movies")},
                              {"since", moment(1)},
                              {"folders", {{pathText("caf\xe9"), 3'000'000'000}}}}));
    post("folderGrowth", {{"path", ""}, {"since", "last"}});
    machine.dispatcher.runAll();
    EXPECT_EQ(told("onFolderGrowth")["folders"],
              nlohmann::json({{"Movies", 3'000'000'000}, {"Music", 0}}));
}

TEST_F(GrowthIntentsTest, OnlyTheNewestQuestionIsAnswered) {
    keep(9, 5_MB);
    keep(1, 5_MB);
    keep(0, 5_MB);
    post("growth", {{"since", "week"}});
    post("growth", {{"since", "last"}});
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onGrowth"), 1u);
    EXPECT_EQ(told()["asked"], "last");
}

TEST_F(GrowthIntentsTest, ForgettingRemovesAllAndTellsSo) {
    keep(1, 5_MB);
    keep(0, 90_MB);
    post("growth", {{"since", "last"}});  // on its way when they are forgotten
    post("forgetGrowth");
    machine.dispatcher.runAll();
    EXPECT_EQ(told()["available"], nlohmann::json::array());
    EXPECT_TRUE(
        machine.platform.files->list(machine.platform.layout.dataFolder + "/Growth").empty());
    EXPECT_EQ(count("toast"), 0u);
    keep(0, 5_MB);
    EXPECT_EQ(ask("last")["available"], nlohmann::json::array());
}

TEST_F(GrowthIntentsTest, AResetTakesAllAlong) {
    keep(1, 5_MB);
    keep(0, 90_MB);
    ask("last");
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.platform.files->exists(machine.platform.layout.dataFolder));
    EXPECT_EQ(told()["available"], nlohmann::json::array());
}

TEST_F(GrowthIntentsTest, AWindowThatIsClosedMeanwhileHearsNothing) {
    keep(1, 5_MB);
    keep(0, 90_MB);
    post("growth", {{"since", "last"}});
    post("folderGrowth", {{"path", ""}, {"since", "last"}});
    post("forgetGrowth");
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onGrowth"), 0u);
    EXPECT_EQ(count("onFolderGrowth"), 0u);
}

/// The part of the bridge that the intents talk to.
struct FakeLink final : BridgeLink {
    std::vector<std::string> scripts;
    std::vector<std::string> toasts;
    void evaluate(const std::string& script) override { scripts.push_back(script); }
    void toast(std::string_view, std::string_view english, std::string_view detail) override {
        toasts.push_back(std::string(english) + ": " + std::string(detail));
    }
    void toastFailure(std::string_view, std::string_view, const CleanupOutcome&) override {}
    void enqueue(CleanupWork, CleanupReport) override {}
    void startAnalysis() override {}
    void showSettings() override {}
    const TrashItem* trashItem(const std::string&) const override { return nullptr; }
};

struct GrowthKeepingTest : GrowthIntentsTest {
    FakeLink link;
    std::shared_ptr<GrowthIntents> intents;

    void SetUp() override {
        GrowthIntentsTest::SetUp();
        intents = std::make_shared<GrowthIntents>(GrowthIntents::Context{
            .link = link, .platform = machine.platform, .cleanups = *cleanups});
    }
};

TEST_F(GrowthKeepingTest, AnAnalysisIsKeptAndWhoHasAskedIsToldAnew) {
    intents->keep(folders(5_MB), now - 86'400, {});
    machine.dispatcher.runAll();
    EXPECT_TRUE(link.scripts.empty()) << "nobody has asked";
    intents->onGrowth(nlohmann::json({{"since", "week"}}));
    machine.dispatcher.runAll();
    ASSERT_EQ(link.scripts.size(), 1u);
    intents->keep(folders(90_MB), now, {});
    EXPECT_FALSE(GrowthAnswers(machine.platform).growth({})) << "kept on the main thread";
    machine.dispatcher.runAll();
    ASSERT_EQ(link.scripts.size(), 2u);
    EXPECT_NE(link.scripts[1].find("\"bytes\":85000000"), std::string::npos) << link.scripts[1];
    EXPECT_NE(link.scripts[1].find("\"asked\":\"week\""), std::string::npos);
    intents->keep(nullptr, now, {});
    machine.dispatcher.runAll();
    EXPECT_EQ(link.scripts.size(), 2u) << "an analysis without folders";
}

TEST_F(GrowthKeepingTest, WhatCannotBeForgottenIsSaid) {
    intents->keep(folders(5_MB), now, {});
    machine.dispatcher.runAll();
    const std::string folder = machine.platform.layout.dataFolder + "/Growth";
    machine.platform.files->removeAll(folder);
    machine.home.folder("elsewhere");
    ASSERT_EQ(::symlink(machine.home.path("elsewhere").c_str(), folder.c_str()), 0);
    intents->onForgetGrowth(std::nullopt);
    machine.dispatcher.runAll();
    EXPECT_EQ(link.toasts,
              std::vector<std::string>{"Not everything could be forgotten: " + folder});
}

TEST_F(GrowthKeepingTest, WhatIsKeptOutlivesTheWindow) {
    intents->keep(folders(5_MB), now - 5, {});
    intents->keep(folders(50_MB), now, {});
    intents.reset();
    machine.dispatcher.runAll();
    EXPECT_TRUE(GrowthAnswers(machine.platform).growth({}));
}

}  // namespace
}  // namespace velto
