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

TEST(PayloadConversions, TheDescriptionIsOneLine) {
    EXPECT_EQ(payload::description(std::nullopt), "nil");
    EXPECT_EQ(payload::description(json{{"a", "line\nbreak"}}), "{\"a\":\"line\\nbreak\"}");
}

}  // namespace
}  // namespace velto
