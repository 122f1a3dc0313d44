#include <nlohmann/json.hpp>

#include "bridge/AppsFixture.h"

namespace velto {
namespace {

struct LeftBehindIntentTest : AppsFixture {
    void SetUp() override {
        const std::string home = machine.home.path();
        machine.platform.layout = HomeLayout::freedesktop(
            home, [](const std::string&) { return std::nullopt; }, "");
        machine.platform.layout.desktopEntries.clear();
        open();
    }
    nlohmann::json told() {
        const auto arguments = calls("onLeftBehind");
        return arguments.empty() ? nlohmann::json() : nlohmann::json::parse(arguments.back());
    }
};

TEST_F(LeftBehindIntentTest, ThePageIsToldWhatIsLeftAndWhatSaysSo) {
    machine.home.file(".var/app/org.acme.Gone/data", 2'000'000);
    post("leftBehind");
    post("leftBehind");
    EXPECT_EQ(count("onLeftBehind"), 0u) << "looked for on the main thread";
    machine.dispatcher.runAll();
    ASSERT_EQ(count("onLeftBehind"), 1u);
    ASSERT_EQ(told().size(), 1u);
    nlohmann::json item = told()[0];
    EXPECT_GT(item["last"], 0);
    item.erase("last");
    EXPECT_EQ(item, nlohmann::json({{"path", machine.home.path(".var/app/org.acme.Gone")},
                                    {"identifier", "org.acme.Gone"},
                                    {"why", "flatpak"},
                                    {"gb", 0.002}}));
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: 1 restos de apps que ya no están"));
}

TEST_F(LeftBehindIntentTest, WhatTheUserHasExcludedIsNotOffered) {
    machine.home.file(".var/app/org.acme.Gone/data", 2'000'000);
    exclusions.add(machine.home.path(".var/app/org.acme.Gone"));
    post("leftBehind");
    machine.dispatcher.runAll();
    EXPECT_EQ(told(), nlohmann::json::array());
}

TEST_F(LeftBehindIntentTest, AWindowThatIsClosedMeanwhileHearsNothing) {
    machine.home.file(".var/app/org.acme.Gone/data", 2'000'000);
    post("leftBehind");
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onLeftBehind"), 0u);
}

}  // namespace
}  // namespace velto
