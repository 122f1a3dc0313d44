#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/values/parse_json.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

TEST(WriteJson, AValueReadsAsItselfAgain) {
    const json value = {{"texts", {"", "plain", "\"\\\n\x01 ñ 🗑"}},
                        {"numbers", {0, -7, 18446744073709551615U, 2.0, -0.5, 1e300}},
                        {"others", {nullptr, true, json::object(), json::array()}}};
    EXPECT_EQ(parseJson(writeJson(value)), value);
    EXPECT_EQ(writeJson(value), value.dump());
}

TEST(WriteJson, FieldsKeepTheirOrder) {
    EXPECT_EQ(writeJson(ordered_json{{"z", 1}, {"a", {2.0, 0.1}}}), R"({"z":1,"a":[2.0,0.1]})");
}

// The library's own writer gives each of these a digit or more too many.
TEST(WriteJson, RealsTakeTheirShortestForm) {
    for (const char* text : {"1859.25002164", "228.693772697", "99.489952744", "943.770896725"}) {
        EXPECT_EQ(writeJson(parseJson(text)), text);
    }
    EXPECT_EQ(writeJson(json(5e-324)), "5e-324");
    EXPECT_EQ(writeJson(json{{"stamp", 1794500000.25}}), R"({"stamp":1794500000.25})");
}

TEST(WriteJson, WhatIsNoNumberIsNull) {
    EXPECT_EQ(writeJson(json(std::numeric_limits<double>::infinity())), "null");
    EXPECT_EQ(writeJson(json(std::nan(""))), "null");
}

TEST(WriteJson, ATextThatIsNotUtf8IsRefusedOrMended) {
    const json value = {{"name", "a\xff"}};
    EXPECT_THROW(writeJson(value), json::type_error);
    EXPECT_EQ(writeJson(value, BadText::replaced), "{\"name\":\"a\uFFFD\"}");
}

}  // namespace
}  // namespace velto
