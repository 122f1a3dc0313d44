#include <gmock/gmock.h>

#include <filesystem>

#include "BridgeFixture.h"
#include "bridge/app_events.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AppsIntentsTest : public BridgeFixture {
protected:
    void SetUp() override {
        machine.platform.layout.setSystemRoot(machine.home.path("machine"));
        machine.platform.layout.neverRemovedBelow.clear();  // made homes may lie in such a folder
        open();
    }
    std::string application(const std::string& name, const std::string& identifier) {
        machine.home.text("Applications/" + name + ".app/Contents/Info.plist",
                          xmlPropertyList(textDictionary({{"CFBundleIdentifier", identifier}})));
        machine.home.file("Applications/" + name + ".app/Contents/MacOS/program", 2'000'000);
        return machine.home.path("Applications/" + name + ".app");
    }
    /// The arguments of each call.
    std::vector<std::string> calls(const std::string& callback) const {
        std::vector<std::string> arguments;
        for (const std::string& script : page->calls(callback)) {
            const std::size_t start = script.find('(') + 1;
            arguments.push_back(script.substr(start, script.size() - start - 2));
        }
        return arguments;
    }
};

TEST_F(AppsIntentsTest, TheListComesFirstAndTheSizesAfterIt) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string bar = application("Bar", "com.example.bar");
    machine.icons.icons[foo] = "data:image/png;base64,AAAA";
    post("appsList");
    EXPECT_THAT(calls("onApps"), IsEmpty()) << "listed on the main thread";
    machine.dispatcher.runGlobal();
    machine.dispatcher.runMain();
    ASSERT_EQ(count("onApps"), 1u);
    EXPECT_EQ(count("onAppSizes"), 0u);
    EXPECT_TRUE(bridge->appsMeasuring);
    const auto list = nlohmann::json::parse(calls("onApps").front());
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0], nlohmann::json({{"bid", "com.example.bar"},
                                       {"name", "Bar"},
                                       {"version", ""},
                                       {"exec", "Bar"},
                                       {"path", bar},
                                       {"gb", 0.0},
                                       {"last", 0.0},
                                       {"running", false},
                                       {"apple", false},
                                       {"store", false},
                                       {"team", ""}}));
    EXPECT_EQ(list[1]["icon"], "data:image/png;base64,AAAA");
    EXPECT_EQ(machine.icons.asked.front().second, 32);
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: 2 aplicaciones instaladas"));

    machine.dispatcher.runAll();
    EXPECT_EQ(nlohmann::json::parse(calls("onAppSizes").front()),
              nlohmann::json({{foo, 0.002}, {bar, 0.002}}));
    EXPECT_FALSE(bridge->appsMeasuring);
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: tamaños medidos (2 apps)"));
}

TEST_F(AppsIntentsTest, SizesAreMeasuredOnceAtATime) {
    application("Foo", "com.example.foo");
    bridge->appsMeasuring = true;
    post("appsList");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onApps"), 1u);
    EXPECT_EQ(count("onAppSizes"), 0u);
}

TEST_F(AppsIntentsTest, AnEmptyListHasNoSizes) {
    post("appsList");
    machine.dispatcher.runAll();
    EXPECT_THAT(calls("onApps"), ElementsAre("[]"));
    EXPECT_EQ(count("onAppSizes"), 0u);
    EXPECT_FALSE(bridge->appsMeasuring);
}

TEST_F(AppsIntentsTest, AnAnalysisKnowsTheTeamAndWhetherTheApplicationRuns) {
    const std::string foo = application("Foo", "com.example.foo");
    machine.home.text("Library/Group Containers/TEAM1.com.example.foo", "x");
    machine.tools.result.standardError = "TeamIdentifier=TEAM1\n";
    machine.running.add({.bundleIdentifier = "com.example.foo"});
    post("appAnalysis", {{"path", foo}});
    EXPECT_EQ(count("onAppAnalysis"), 0u);
    machine.dispatcher.runAll();
    const auto analysis = nlohmann::json::parse(calls("onAppAnalysis").front());
    EXPECT_EQ(analysis["team"], "TEAM1");
    EXPECT_EQ(analysis["running"], true);
    EXPECT_EQ(analysis["count"], 2);
}

TEST_F(AppsIntentsTest, AnApplicationThatIsGoneCannotBeAnalysed) {
    const std::string path = machine.home.path("Applications/Gone.app");
    post("appAnalysis", {{"path", path}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onAppAnalysis"), 0u);
    EXPECT_THAT(page->scripts.back(), HasSubstr("\"Couldn't analyze\", \"" + path + "\""));
    language.setCode("es");
    post("appAnalysis", {{"path", path}});
    machine.dispatcher.runAll();
    EXPECT_THAT(page->scripts.back(), HasSubstr("\"No se pudo analizar\""));
}

TEST_F(AppsIntentsTest, AnUninstallReportsItsStagesAndItsResult) {
    const std::string foo = application("Foo", "com.example.foo");
    post("uninstall", {{"path", foo}, {"paths", {foo}}, {"sizes", {{foo, 0.002}}}});
    EXPECT_TRUE(bridge->uninstallRunning);
    machine.dispatcher.runAll();
    EXPECT_THAT(calls("onUninstallProgress"),
                ElementsAre("\"stop\", 3.0", "\"stop\", 16.0", "\"stop\", 20.0", "\"files\", 40.0",
                            "\"files\", 40.0, \"Foo.app\"", "\"clean\", 92.0", "\"done\", 100.0"));
    EXPECT_EQ(nlohmann::json::parse(calls("onUninstallResult").front()),
              nlohmann::json({{"name", "Foo"},
                              {"removed", 1},
                              {"freed", 0.002},
                              {"closed", 0},
                              {"failures", nlohmann::json::array()}}));
    EXPECT_FALSE(bridge->uninstallRunning);
    EXPECT_FALSE(machine.home.exists("Applications/Foo.app"));
    ASSERT_EQ(history.entries().size(), 1u);
    EXPECT_EQ(history.entries().front().kind, "uninstall");
    EXPECT_EQ(history.entries().front().gb, 0.002);
    EXPECT_EQ(history.entries().front().items,
              (std::vector<HistoryItem>{{.name = "Foo.app", .gb = 0.002}}));
}

TEST_F(AppsIntentsTest, AnUninstallThatRemovedNothingIsNoHistory) {
    const std::string foo = application("Foo", "com.example.foo");
    post("uninstall", {{"path", foo}, {"paths", {machine.home.path("Library/Caches/nothing")}}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onUninstallResult"), 1u);
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(AppsIntentsTest, TheHistoryHoldsWhatWasDeletedAndNotItsNamesakeThatStayed) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string cache = machine.home.folder("Library/Caches/com.example.foo");
    const std::string agent = machine.home.path("Library/LaunchAgents/com.example.foo");
    machine.home.link("Library/LaunchAgents/com.example.foo", "/usr");
    const std::string before = machine.home.path("Library/Logs/com.example.foo");
    post("uninstall",
         {{"path", foo}, {"paths", {agent, before, cache}}, {"sizes", {{cache, 0.5}}}});
    machine.dispatcher.runAll();
    ASSERT_EQ(history.entries().size(), 1u);
    EXPECT_EQ(history.entries().front().items,
              (std::vector<HistoryItem>{{.name = "com.example.foo", .gb = 0.5}}));
    EXPECT_TRUE(std::filesystem::is_symlink(agent));
}

TEST_F(AppsIntentsTest, ASecondUninstallOnlyShowsThatOneIsRunning) {
    const std::string foo = application("Foo", "com.example.foo");
    const nlohmann::json payload{{"path", foo}, {"paths", {foo}}};
    post("uninstall", payload);
    const std::size_t waiting = machine.dispatcher.waitingGlobal();
    post("uninstall", payload);
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), waiting);
    EXPECT_THAT(page->scripts.back(),
                HasSubstr("\"An uninstall is already running\", \"Wait for it to finish.\""));
    language.setCode("es");
    post("uninstall", payload);
    EXPECT_THAT(page->scripts.back(),
                HasSubstr("\"Ya hay una desinstalación en marcha\", \"Espera a que termine.\""));
    machine.dispatcher.runAll();
    post("uninstall", payload);
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onUninstallResult"), 2u);
}

TEST_F(AppsIntentsTest, WhatIsNoRequestDoesNothing) {
    for (const char* type : {"appAnalysis", "uninstall"}) {
        post(type);
        post(type, "text");
        post(type, nlohmann::json::object());
        post(type, {{"path", 7}, {"paths", {"/x"}}});
    }
    post("uninstall", {{"path", "/x"}, {"paths", nlohmann::json::array()}});
    post("uninstall", {{"path", "/x"}, {"paths", {7}}});
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 0u);
    EXPECT_FALSE(bridge->uninstallRunning);
}

TEST_F(AppsIntentsTest, WorkThatOutlivesTheBridgeSendsNothing) {
    application("Foo", "com.example.foo");
    post("appsList");
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onApps"), 0u);
}

TEST(AppEvents, ANameOfAnyKindIsNoScript) {
    EXPECT_EQ(events::uninstallProgress("files", 52, "a\"b\\c\nd"),
              "window.velto && window.velto.onUninstallProgress && "
              "window.velto.onUninstallProgress(\"files\", 52.0, \"a\\\"b\\\\c d\");");
    EXPECT_EQ(events::uninstallProgress("stop", 3, std::nullopt),
              "window.velto && window.velto.onUninstallProgress && "
              "window.velto.onUninstallProgress(\"stop\", 3.0);");
}

}  // namespace
}  // namespace velto
