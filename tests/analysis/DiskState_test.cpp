#include "analysis/DiskState.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

#include "analysis/disk_state_json.h"

namespace velto {
namespace {

using nlohmann::json;

DiskState filledState() {
    DiskState state;
    state.total = 500.1;
    state.free = 20;
    state.ser = 38;
    state.cats = {{.id = "fotos",
                   .name = "Fotos y vídeo",
                   .gb = 12.3,
                   .icon = "photo",
                   .col = "#E8355A",
                   .eq = "x",
                   .sub = {},
                   .files = 7}};
    state.files = {{.name = "a.mov",
                    .gb = 1.2,
                    .kind = "video",
                    .last = "hoy",
                    .lastN = 0,
                    .path = "/h/a.mov",
                    .isProtected = true}};
    state.dupGroups = {{.id = "ab",
                        .name = "b",
                        .pairs = {{{"b", "0.1"}}, {{"c", "0.1"}}},
                        .paths = {"/h/b", "/h/c"},
                        .recommended = 1}};
    state.history = {{.id = "op1", .ts = 5.5, .gb = 0.1, .items = {}, .kind = "wind"}};
    state.settings = {.retention = 30,
                      .autoMaintenance = false,
                      .frequency = "daily",
                      .language = "es",
                      .rules = std::map<std::string, bool>{{"caches", true}}};
    state.protected_ = std::vector<std::string>{"desktop"};
    return state;
}

TEST(FreeSpaceScore, FollowsTheFreeShare) {
    EXPECT_EQ(freeSpaceScore(0, 100), 5);
    EXPECT_EQ(freeSpaceScore(1, 100), 25);
    EXPECT_EQ(freeSpaceScore(10, 100), 50);
    EXPECT_EQ(freeSpaceScore(100, 100), 99);
}

TEST(FreeSpaceScore, OddVolumesStayInRange) {
    EXPECT_EQ(freeSpaceScore(10, 0), 5);
    EXPECT_EQ(freeSpaceScore(10, -1), 5);
    EXPECT_EQ(freeSpaceScore(200, 100), 99);
    EXPECT_EQ(freeSpaceScore(-5, 100), 5);
}

TEST(DiskStateJson, EveryFieldComesBack) {
    const DiskState state = filledState();
    const auto text = encode(state);
    ASSERT_TRUE(text);
    EXPECT_EQ(diskStateFromJson(json::parse(*text)), state);
}

TEST(DiskStateJson, KeysAreSortedAndNestedEmptyListsStayLists) {
    const std::string text = *encode(filledState());
    EXPECT_TRUE(text.starts_with("{\"cats\":[{\"col\":\"#E8355A\",\"eq\":\"x\",\"files\":7,"));
    EXPECT_NE(text.find("\"sub\":[]"), std::string::npos);
    EXPECT_NE(text.find("\"items\":[]"), std::string::npos);
}

TEST(DiskStateJson, AbsentOptionalsStayAbsent) {
    DiskState state = filledState();
    state.protected_.reset();
    state.settings.rules.reset();
    const std::string text = *encode(state);
    EXPECT_EQ(text.find("protected\":"), std::string::npos);
    EXPECT_EQ(text.find("rules"), std::string::npos);
    const DiskState back = diskStateFromJson(json::parse(text));
    EXPECT_FALSE(back.protected_.has_value());
    EXPECT_FALSE(back.settings.rules.has_value());

    state.protected_.emplace();
    const DiskState empty = diskStateFromJson(json::parse(*encode(state)));
    ASSERT_TRUE(empty.protected_.has_value());
    EXPECT_TRUE(empty.protected_->empty());
}

TEST(DiskStateJson, AnyMissingOrMistypedFieldMakesTheRecordUnreadable) {
    const json whole = json::parse(*encode(filledState()));
    const std::vector<std::string> optional{"/protected", "/settings/rules"};
    const json leaves = whole.flatten();  // must outlive the loop over its items
    for (const auto& [pointer, value] : leaves.items()) {
        // Each path down to a leaf: drop it, then give it a wrong type.
        json without = whole;
        const json::json_pointer place(pointer);
        if (!without.at(place.parent_pointer()).is_object()) continue;
        without.at(place.parent_pointer()).erase(place.back());
        json mistyped = whole;
        mistyped[place] = json::object({{"x", 1}});
        const bool isRule = pointer.find("/rules/") != std::string::npos;
        const bool isOptional =
            std::find(optional.begin(), optional.end(), pointer) != optional.end();
        if (!isRule && !isOptional) {
            EXPECT_THROW(diskStateFromJson(without), json::exception) << pointer;
        }
        EXPECT_THROW(diskStateFromJson(mistyped), json::exception) << pointer;
    }
}

TEST(DiskStateJson, NumbersAreNoSwitchesAndRealsAreNoIntegers) {
    json state = json::parse(*encode(filledState()));
    state["settings"]["autoMaintenance"] = 1;
    EXPECT_THROW(diskStateFromJson(state), json::exception);
    state = json::parse(*encode(filledState()));
    state["ser"] = 38.5;
    EXPECT_THROW(diskStateFromJson(state), json::exception);
    state = json::parse(*encode(filledState()));
    state["total"] = 500;
    EXPECT_EQ(diskStateFromJson(state).total, 500);
}

TEST(DiskStateJson, WhatIsNoNumberOrNoTextCannotBeEncoded) {
    DiskState state = filledState();
    state.total = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(encode(state));
    state = filledState();
    state.files[0].name = "\xFF";
    EXPECT_FALSE(encode(state));
}

}  // namespace
}  // namespace velto
