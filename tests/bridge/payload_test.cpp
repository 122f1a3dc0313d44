#include "bridge/payload.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

using nlohmann::json;

TEST(PayloadConversions, OnlyAStringIsAString) {
    EXPECT_EQ(payload::string(json("a")), "a");
    EXPECT_FALSE(payload::string(json(1)));
    EXPECT_FALSE(payload::string(std::nullopt));
}

TEST(PayloadConversions, AListOfPathsHoldsStringsAndAtLeastOne) {
    const auto paths = [](json list) {
        return payload::pathsMember(json{{"paths", list}}, "paths");
    };
    EXPECT_EQ(paths({"a", "b"}), (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(paths(json::array()));
    EXPECT_FALSE(paths({"a", 1}));
    EXPECT_FALSE(paths("a"));
    EXPECT_FALSE(payload::pathsMember(json("x"), "paths"));
}

TEST(PayloadConversions, AListOfStringsMayBeEmpty) {
    const auto strings = [](json list) {
        return payload::stringsMember(json{{"paths", list}}, "paths");
    };
    EXPECT_EQ(strings({"a", "b"}), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(strings(json::array()), std::vector<std::string>());
    EXPECT_FALSE(strings({"a", 1}));
    EXPECT_FALSE(strings("a"));
    EXPECT_FALSE(payload::stringsMember(json::object(), "paths"));
}

TEST(PayloadConversions, NumbersCountAsSwitches) {
    const auto on = [](json value) { return payload::boolMember(json{{"on", value}}, "on"); };
    EXPECT_EQ(on(true), true);
    EXPECT_EQ(on(0), false);
    EXPECT_EQ(on(1.0), true);
    EXPECT_FALSE(on("true"));
    EXPECT_FALSE(payload::boolMember(json::object(), "on"));
}

TEST(PayloadConversions, OnlyWholeNumbersAreIntegers) {
    const auto days = [](json value) { return payload::integerMember(json{{"n", value}}, "n"); };
    EXPECT_EQ(days(30), 30);
    EXPECT_EQ(days(30.0), 30);
    EXPECT_EQ(days(true), 1);
    EXPECT_FALSE(days(30.5));
    EXPECT_FALSE(days(1e300));
    EXPECT_FALSE(days("30"));
    EXPECT_FALSE(days(nullptr));
}

TEST(PayloadDescription, TheWholeIsJsonOnOneLine) {
    const auto whole = payload::Detail::whole;
    EXPECT_EQ(payload::description(std::nullopt, whole), "nil");
    EXPECT_EQ(payload::description(json{{"a", "line\nbreak"}}, whole), "{\"a\":\"line\\nbreak\"}");
    EXPECT_EQ(payload::description(json{{"paths", {"/home/ana/a", "/home/ana/b"}}}, whole),
              R"({"paths":["/home/ana/a","/home/ana/b"]})");
}

TEST(PayloadDescription, ASummaryTellsWhatHappensAndNotWhatFilesAreCalled) {
    EXPECT_EQ(payload::description(std::nullopt), "nil");
    EXPECT_EQ(payload::description(json("apps")), R"("apps")");
    EXPECT_EQ(payload::description(json(true)), "true");
    EXPECT_EQ(payload::description(json("/home/ana/secret plans/a.dmg")), R"("…/a.dmg")");
    EXPECT_EQ(payload::description(json{{"language", "en"}, {"retentionDays", 30}}),
              R"({"language":"en","retentionDays":30})");
    EXPECT_EQ(payload::description(json{{"paths", {"/home/ana/a/1.mov", "/home/ana/b", "/c"}}}),
              R"({"paths":[3: "…/1.mov", …]})");
    EXPECT_EQ(payload::description(json::array()), "[]");
    EXPECT_EQ(payload::description(json{{"sizes", {{"/home/ana/x", 1}, {"/home/ana/y", 2}}}}),
              R"({"sizes":{"…/x","…/y"}})");
}

TEST(PayloadDescription, ASummaryIsShortWhateverThePageSends) {
    const std::string endless(100'000, 'a');
    json wide = json::object(), deep = 1;
    for (int key = 0; key < 1'000; ++key)
        wide[endless.substr(0, 100) + std::to_string(key)] = endless;
    for (int level = 0; level < 100; ++level)
        deep = json::array({deep});
    EXPECT_LT(payload::description(json(endless)).size(), 100u);
    EXPECT_LT(payload::description(wide).size(), 2'000u);
    EXPECT_EQ(payload::description(deep), "[1: [1: [1: …]]]");
    EXPECT_EQ(payload::description(json("a\nb")), "\"a\\u000ab\"");
}

}  // namespace
}  // namespace velto
