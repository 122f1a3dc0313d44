#include "platform/values/parse_json.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace velto {
namespace {

using nlohmann::json;

std::string nested(const std::string& open, int depth, const std::string& inner,
                   const std::string& close) {
    std::string text;
    for (int level = 0; level < depth; ++level)
        text += open;
    text += inner;
    for (int level = 0; level < depth; ++level)
        text += close;
    return text;
}

TEST(ParseJson, ATextReadsAsItsValue) {
    EXPECT_EQ(parseJson(R"( {"a": [1, 2.5, true, null, "ñ"], "b": {}} )"),
              (json{{"a", {1, 2.5, true, nullptr, "ñ"}}, {"b", json::object()}}));
    EXPECT_EQ(parseJson("7"), json(7));
}

TEST(ParseJson, WhatIsNoJsonIsAnError) {
    for (const char* text : {"", " ", "{", "[1", "[1]]", "]", "\"open", "\"\\", "{\"a\"}", "nul"}) {
        EXPECT_THROW(parseJson(text), json::exception) << text;
    }
    EXPECT_THROW(parseJson(std::string_view("\0\0\0", 3)), json::exception);
    EXPECT_THROW(parseJson("\"\xFF\""), json::exception);
}

TEST(ParseJson, NestingHasALimitOfItsOwn) {
    EXPECT_NO_THROW(parseJson(nested("[", deepestJson, "1", "]")));
    EXPECT_NO_THROW(parseJson(nested("{\"a\":", deepestJson, "1", "}")));
    EXPECT_THROW(parseJson(nested("[", deepestJson + 1, "1", "]")), json::exception);
    EXPECT_THROW(parseJson(nested("{\"a\":", deepestJson + 1, "1", "}")), json::exception);
    EXPECT_THROW(parseJson(nested("[{\"a\":", deepestJson / 2 + 1, "1", "}]")), json::exception);
}

TEST(ParseJson, AVeryDeepValueDoesNotEndTheProgram) {
    EXPECT_THROW(parseJson(nested("[", 500'000, "", "]")), json::exception);
    EXPECT_THROW(parseJson(nested("[", 500'000, "", "")), json::exception);
    EXPECT_THROW(parseJson(R"({"velto.language": )" + nested("[", 500'000, "", "]") + "}"),
                 json::exception);
}

TEST(ParseJson, BracketsInTextsAreNoNesting) {
    const std::string brackets(1'000, '[');
    const json value{{"a\"\\" + brackets, "\\" + brackets + "\"" + brackets}, {"b", "\\\\"}};
    EXPECT_EQ(parseJson(value.dump()), value);
}

TEST(ParseJson, ManyValuesBesideEachOtherAreNotDeep) {
    json list = json::array();
    for (int index = 0; index < 1'000; ++index)
        list.push_back({{"a", json::array({index})}});
    EXPECT_EQ(parseJson(list.dump()), list);
}

TEST(ParseJson, ObjectsInsideAreHandedOverAndNeverStandTogether) {
    std::vector<std::pair<std::vector<std::string>, json>> taken;
    const json rest = parseJson(
        R"({"a": [{"b": 1, "c": [{"d": 2}, 3]}, 4, {}], "e": {"f": {"g": [5]}}, "h": [[{"i": 6}]]})",
        [&](const auto& members, const json& object) { taken.emplace_back(members, object); });
    using Members = std::vector<std::string>;
    const std::vector<std::pair<Members, json>> expected{
        {{"a", "", "c", ""}, {{"d", 2}}}, {{"a", ""}, {{"b", 1}, {"c", json::array({3})}}},
        {{"a", ""}, json::object()},      {{"e", "f"}, {{"g", json::array({5})}}},
        {{"e"}, json::object()},          {{"h", "", ""}, {{"i", 6}}}};
    EXPECT_EQ(taken, expected);
    EXPECT_EQ(rest, (json{{"a", json::array({4})}, {"h", json::array({json::array()})}}));
}

TEST(ParseJson, TakingObjectsIsAsStrict) {
    const TakeObject none = [](const auto&, const json&) {};
    for (const char* text : {"", "{", "[1]]", "\"open", "{\"a\"}", "nul", "[{}", "\"\xFF\""}) {
        EXPECT_THROW(parseJson(text, none), json::exception) << text;
    }
    EXPECT_NO_THROW(parseJson(nested("[", deepestJson, "1", "]"), none));
    EXPECT_THROW(parseJson(nested("[", deepestJson + 1, "1", "]"), none), json::exception);
    EXPECT_THROW(parseJson(nested("[{\"a\":", deepestJson / 2 + 1, "1", "}]"), none),
                 json::exception);
    EXPECT_THROW(parseJson(nested("[", 500'000, "", ""), none), json::exception);
}

TEST(ParseJson, OfAMemberThatIsNamedTwiceTheLastOneCounts) {
    const TakeObject none = [](const auto&, const json&) {};
    EXPECT_EQ(parseJson(R"({"a": 1, "a": 2})", none), (json{{"a", 2}}));
    EXPECT_EQ(parseJson(R"({"a": 1, "a": {}})", none), json::object());
}

}  // namespace
}  // namespace velto
