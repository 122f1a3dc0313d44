#include "bridge/events.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <clocale>
#include <limits>

#include "analysis/disk_state_json.h"
#include "bridge/CleanupOutcome.h"

namespace velto {
namespace {

TEST(Events, ScanCallbacksAreTheFixedTexts) {
    EXPECT_EQ(events::scanStarted(),
              "window.velto && window.velto.onScanStarted && window.velto.onScanStarted();");
    EXPECT_EQ(events::scanFinished(),
              "window.velto && window.velto.onScanFinished && window.velto.onScanFinished();");
    EXPECT_EQ(events::scanFailed(),
              "window.velto && window.velto.onScanFailed && window.velto.onScanFailed();");
}

TEST(Events, ProgressHasOneDecimalAndAPointInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "es_ES.UTF-8");
    EXPECT_EQ(events::scanProgress(12345, 2.25),
              "window.velto && window.velto.onScanProgress && "
              "window.velto.onScanProgress(12345, 2.2);");
    EXPECT_EQ(
        events::scanProgress(0, 0),
        "window.velto && window.velto.onScanProgress && window.velto.onScanProgress(0, 0.0);");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(Events, AToastEscapesQuotesAndNothingElse) {
    EXPECT_EQ(events::toast("Say \"hi\"", "a\\b"),
              "window.velto && window.velto.toast && "
              "window.velto.toast(\"Say \\\"hi\\\"\", \"a\\b\");");
}

TEST(Events, AStateOfManyCleanupsIsAText) {
    DiskState state;
    state.history.assign(100, {.id = "op", .items = {10, {.name = "a \"b\".mov", .gb = 0.1}}});
    const std::string script = *events::setState(state, 1700000000);
    const std::string begin = "window.velto && window.velto.setState(JSON.parse(";
    const std::string end = "), 1700000000.0);";
    ASSERT_TRUE(script.starts_with(begin) && script.ends_with(end));
    const auto text = nlohmann::json::parse(
        script.substr(begin.size(), script.size() - begin.size() - end.size()));
    EXPECT_EQ(diskStateFromJson(nlohmann::json::parse(text.get<std::string>())), state);
}

TEST(Events, PermissionsAndListsAreJson) {
    EXPECT_EQ(events::permissions(true),
              "window.velto && window.velto.onPermissions && "
              "window.velto.onPermissions({\"fda\":true});");
    EXPECT_EQ(events::exclusions({"/h/a \"b\""}),
              "window.velto && window.velto.onExclusions && "
              "window.velto.onExclusions([\"/h/a \\\"b\\\"\"]);");
    EXPECT_EQ(events::trashState({}),
              "window.velto && window.velto.onTrashState && window.velto.onTrashState([]);");
    EXPECT_EQ(events::trashState({{.id = "itA1B2C3D4",
                                   .opID = "op1",
                                   .originalPath = "/h/a \"b\".mov",
                                   .name = "a \"b\".mov",
                                   .gb = 1.2,
                                   .taken = 1700000000.5}}),
              "window.velto && window.velto.onTrashState && window.velto.onTrashState([{\"gb\":1.2,"
              "\"id\":\"itA1B2C3D4\",\"name\":\"a \\\"b\\\".mov\",\"opID\":\"op1\","
              "\"path\":\"/h/a \\\"b\\\".mov\",\"taken\":1700000000.5}]);");
    EXPECT_EQ(events::trashWaiting({}),
              "window.velto && window.velto.onTrashWaiting && window.velto.onTrashWaiting([]);");
    EXPECT_EQ(events::trashWaiting({{.item = {.id = "itA1B2C3D4",
                                              .opID = "op1",
                                              .originalPath = "/h/disk/a \"b\".mov",
                                              .name = "a \"b\".mov",
                                              .gb = 1.2,
                                              .taken = 1700000000.5},
                                     .way = WaitingItem::Way::out,
                                     .folder = "/h/disk",
                                     .reason = WaitingItem::Reason::refused,
                                     .isWhole = true}}),
              "window.velto && window.velto.onTrashWaiting && "
              "window.velto.onTrashWaiting([{\"folder\":\"/h/disk\",\"gb\":1.2,"
              "\"id\":\"itA1B2C3D4\",\"name\":\"a \\\"b\\\".mov\","
              "\"path\":\"/h/disk/a \\\"b\\\".mov\",\"reason\":\"refused\","
              "\"way\":\"out\",\"whole\":true}]);");
    EXPECT_EQ(events::trashChanged(2.25),
              "window.velto && window.velto.onTrashChanged && "
              "window.velto.onTrashChanged(2.2);");
    EXPECT_EQ(events::trashChanged(0),
              "window.velto && window.velto.onTrashChanged && "
              "window.velto.onTrashChanged(0.0);");
    EXPECT_EQ(events::restoreBlocked({.itemID = "itA1B2C3D4", .obstacle = "/h/a \"b\""}),
              "window.velto && window.velto.onRestoreBlocked && "
              "window.velto.onRestoreBlocked({\"id\":\"itA1B2C3D4\","
              "\"path\":\"/h/a \\\"b\\\"\"});");
    EXPECT_EQ(events::cleanables({{.ruleID = "caches",
                                   .path = "/h/c",
                                   .gb = 0.31,
                                   .daysOld = 12,
                                   .label = "Caché de c."}}),
              "window.velto && window.velto.onCleanables && window.velto.onCleanables([{"
              "\"daysOld\":12,\"gb\":0.31,\"label\":\"Caché de c.\",\"path\":\"/h/c\","
              "\"ruleID\":\"caches\"}]);");
    EXPECT_EQ(events::cleanableFacts({{"/h/\"c\"", {CacheFacts::Reason::keeps}}}),
              "window.velto && window.velto.onCleanableFacts && window.velto.onCleanableFacts({"
              "\"/h/\\\"c\\\"\":{\"certain\":false,\"reason\":\"keeps\"}});");
    EXPECT_EQ(
        events::cleanableFacts({}),
        "window.velto && window.velto.onCleanableFacts && window.velto.onCleanableFacts({});");
    EXPECT_EQ(events::cloudMove({"/h/a"}, {}, "to"),
              "window.velto && window.velto.onCloudMove && window.velto.onCloudMove("
              "{\"direction\":\"to\",\"failed\":[],\"moved\":[\"/h/a\"]});");
}

TEST(Events, GoViewInsertsTheNameAsItIs) {
    EXPECT_EQ(events::goView("apps"), "try { go('apps') } catch(e) { console.warn(e) }");
}

TEST(Events, AnIntentIsEchoedToThePagesConsole) {
    EXPECT_EQ(events::intentEcho("webReady"),
              "console.info('[velto] intención recibida: webReady');");
}

TEST(Events, SetStateIsGuardedOnceAndCarriesThePlainStamp) {
    DiskState state;
    state.total = 500;
    const auto script = events::setState(state, 1700000000.25);
    ASSERT_TRUE(script);
    EXPECT_TRUE(script->starts_with("window.velto && window.velto.setState({\"cats\":[]"));
    EXPECT_TRUE(script->ends_with(", 1700000000.25);"));
}

TEST(Events, AStateThatCannotBeEncodedGivesNoScript) {
    DiskState state;
    state.free = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(events::setState(state, 1));
    EXPECT_FALSE(events::bootstrap(state, 1));
    state.free = 0;
    state.cats.push_back({.id = "\xFF"});
    EXPECT_FALSE(events::setState(state, 1));
}

TEST(Events, TheBootstrapDefinesStateStampAndAProvisionalSetState) {
    const auto script = events::bootstrap(DiskState{}, 1700000000);
    ASSERT_TRUE(script);
    EXPECT_TRUE(script->starts_with("window.velto = window.velto || {};\nwindow.velto._state = {"));
    EXPECT_TRUE(script->ends_with(
        ";\nwindow.velto._stamp = 1700000000.0;\nwindow.velto.setState = function(s, ts){ "
        "window.velto._state = s; if (ts) window.velto._stamp = ts; };"));
}

}  // namespace
}  // namespace velto
