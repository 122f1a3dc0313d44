#include "bridge/measurement_events.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

TEST(MeasurementEvents, TheHomeIsTold) {
    EXPECT_EQ(events::home("/home/ana"),
              "window.velto && window.velto.onHome && window.velto.onHome(\"/home/ana\");");
}

TEST(MeasurementEvents, SizesToTheByteComeByPart) {
    EXPECT_EQ(events::exactListSizes({.files = {{"/h/a.mov", 9'000'001}},
                                      .copies = {{"/h/caf\xe9", 1'200'000}},
                                      .linked = {}}),
              "window.velto && window.velto.onExactSizes && window.velto.onExactSizes("
              R"({"copies":{"/h/caf\u0000e9":1200000},"files":{"/h/a.mov":9000001}});)");
    EXPECT_EQ(events::exactCleanableSizes({{"/h/.cache/x", 12}}),
              "window.velto && window.velto.onExactSizes && window.velto.onExactSizes("
              R"({"cleanables":{"/h/.cache/x":12}});)");
    EXPECT_EQ(events::exactTrashSizes({{"it1", 4096}}),
              "window.velto && window.velto.onExactSizes && window.velto.onExactSizes("
              R"({"trash":{"it1":4096}});)");
}

TEST(MeasurementEvents, DatesOfCopiesAreWholeSeconds) {
    EXPECT_EQ(events::copyDates({.files = {}, .copies = {}, .dates = {{"/h/a", 1732300000.9}}}),
              "window.velto && window.velto.onCopyDates && window.velto.onCopyDates("
              R"({"/h/a":1732300000});)");
}

TEST(MeasurementEvents, NamesOfOneFileComeByGroup) {
    EXPECT_EQ(events::linkedCopies({.files = {},
                                    .copies = {},
                                    .linked = {{"hash", {{"/h/a", "/h/b"}, {"/h/c", "/h/d"}}}}}),
              "window.velto && window.velto.onLinkedCopies && window.velto.onLinkedCopies("
              R"({"hash":[["/h/a","/h/b"],["/h/c","/h/d"]]});)");
}

TEST(MeasurementEvents, EveryPartOfTheMeasurementIsTold) {
    Measurement measurement{
        .total = 1000,
        .free = 300,
        .reserved = 50,
        .purgeable = 20,
        .home = 400,
        .hidden = 30,
        .volumes = {{.path = "/h/stick", .used = 7}, {.path = "/h/nas", .used = {}}},
        .withheld = {"/h/Desktop"},
        .excluded = {"/h/private"},
        .unreadable = {.count = 3, .paths = {"/h/locked"}},
        .compared = {.complete = false, .left = 12}};
    EXPECT_EQ(events::measurement(measurement, {.canContinue = true, .isRunning = false}),
              "window.velto && window.velto.onMeasurement && window.velto.onMeasurement("
              R"({"compared":{"canContinue":true,"complete":false,"left":12,"running":false},)"
              R"("disk":{"free":300,"purgeable":20,"reserved":50,"total":1000},)"
              R"("excluded":["/h/private"],"hidden":30,"home":400,"outside":220,)"
              R"("unreadable":{"count":3,"paths":["/h/locked"]},)"
              R"("volumes":[{"bytes":7,"path":"/h/stick"},{"path":"/h/nas"}],)"
              R"("withheld":["/h/Desktop"]});)");
}

TEST(MeasurementEvents, WhatWasNotToldApartHasNoKey) {
    const std::string script = events::measurement({}, {});
    EXPECT_EQ(script.find("hidden"), std::string::npos);
}

}  // namespace
}  // namespace velto
