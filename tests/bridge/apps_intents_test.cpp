#include "bridge/AppsFixture.h"
#include "bridge/app_events.h"
#include "support/WatchedFiles.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using AppsIntentsTest = AppsFixture;

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

TEST_F(AppsIntentsTest, LinksAmongTheLeftoversAreToldBeforeTheAnalysisAndBindTheRemoval) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string cache = machine.home.path("Library/Caches/com.example.foo");
    machine.home.text("Projects/thesis", "x");
    machine.home.link("Library/Caches/com.example.foo", machine.home.path("Projects"));
    post("uninstall", {{"path", foo}, {"paths", {cache}}});
    machine.dispatcher.runAll();
    EXPECT_TRUE(machine.home.exists("Projects/thesis")) << "nobody was shown that it would go";

    post("appAnalysis", {{"path", foo}});
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onLeftoverLinks"), 1u);
    const auto arguments = nlohmann::json::parse("[" + calls("onLeftoverLinks").front() + "]");
    EXPECT_EQ(arguments[0], foo);
    EXPECT_EQ(arguments[1],
              nlohmann::json::array(
                  {{{"path", cache}, {"target", machine.home.path("Projects")}, {"kept", false}}}));
    EXPECT_THAT(page->scripts.back(), HasSubstr("onAppAnalysis"));

    post("uninstall", {{"path", foo}, {"paths", {cache}}});
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists("Projects"));
}

TEST_F(AppsIntentsTest, AnAnalysisWithoutLinksSpeaksOfNone) {
    const std::string foo = application("Foo", "com.example.foo");
    post("appAnalysis", {{"path", foo}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onLeftoverLinks"), 0u);
    EXPECT_EQ(count("onAppRemoval"), 0u) << "a Mac's home needs none";
    EXPECT_EQ(count("onAppAnalysis"), 1u);
}

TEST_F(AppsIntentsTest, OnALinuxHomeWhetherTheApplicationCanGoIsToldBeforeTheAnalysis) {
    machine.platform.layout = HomeLayout::freedesktop(
        machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    const std::string entry = machine.home.path(".local/share/applications/thing.desktop");
    machine.home.text(".local/share/applications/thing.desktop",
                      "[Desktop Entry]\nType=Application\nName=Thing\nExec=/bin/sh -c thing\n");
    post("appAnalysis", {{"path", entry}});
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onAppRemoval"), 1u);
    const auto arguments = nlohmann::json::parse("[" + calls("onAppRemoval").front() + "]");
    EXPECT_EQ(arguments[0], entry);
    EXPECT_NE(arguments[1]["stays"], "");
    EXPECT_EQ(arguments[1]["folder"], "");
    EXPECT_EQ(arguments[1].size(), 2u);
    EXPECT_THAT(page->scripts.back(), HasSubstr("onAppAnalysis"));
    EXPECT_THAT(*(page->scripts.end() - 2), HasSubstr("onAppRemoval"));
}

TEST_F(AppsIntentsTest, AnApplicationThatIsGoneCannotBeAnalysed) {
    const std::string path = machine.home.path("Applications/Gone.app");
    post("appAnalysis", {{"path", path}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onAppAnalysis"), 0u);
    EXPECT_THAT(page->scripts.back(),
                HasSubstr("\"Couldn't analyze\", \"There is no application at “"));
    language.setCode("es");
    post("appAnalysis", {{"path", path}});
    machine.dispatcher.runAll();
    EXPECT_THAT(page->scripts.back(), HasSubstr("\"No se pudo analizar\""));
}

TEST_F(AppsIntentsTest, WhatIsNoRequestDoesNothing) {
    for (const char* type : {"appAnalysis", "uninstall"}) {
        post(type);
        post(type, "text");
        post(type, nlohmann::json::object());
        post(type, {{"path", 7}, {"paths", {"/x"}}});
    }
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

TEST_F(AppsIntentsTest, SizesAreNotMeasuredForAWindowThatWasClosed) {
    application("Foo", "com.example.foo");
    post("appsList");
    machine.dispatcher.runGlobal();
    machine.dispatcher.runMain();
    ASSERT_TRUE(bridge->appsMeasuring);
    bridge.reset();
    auto watching = std::make_unique<WatchedFiles>(systemFileManager());
    const WatchedFiles& watched = *watching;
    // The services keep the file manager that they were made with.
    const std::unique_ptr<FileManager> before =
        std::exchange(machine.platform.files, std::move(watching));
    machine.dispatcher.runAll();
    EXPECT_THAT(watched.looked(), IsEmpty());
    EXPECT_EQ(count("onAppSizes"), 0u);
}

TEST_F(AppsIntentsTest, NoApplicationIsLookedAtForAWindowThatWasClosed) {
    const std::string foo = application("Foo", "com.example.foo");
    post("appAnalysis", {{"path", foo}});
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_THAT(machine.tools.commands, IsEmpty()) << "the signature was read";
    EXPECT_EQ(count("onAppAnalysis"), 0u);
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
