#include "bridge/json_text.h"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace velto {
namespace {

using nlohmann::json;

TEST(JsonText, APathIsAJsonStringWhateverItsBytes) {
    std::string text;
    appendPathJson(text, "/h/a b.txt");
    appendPathJson(text, "/h/\"\\\n\xC3\xA9");
    EXPECT_EQ(text, R"("/h/a b.txt""/h/\"\\\né")");
}

TEST(ScriptLiteral, ShortJsonIsItsOwnLiteral) {
    EXPECT_EQ(scriptLiteral(R"({"a":"\"é"})"), R"({"a":"\"é"})");
}

TEST(ScriptLiteral, LongJsonIsATextThatThePageParses) {
    const std::string longName(20'000, 'x');
    const std::string value = json({{"path", "/h/a \"b\"\\\n\u2028é"}, {"name", longName}}).dump();
    const std::string script = scriptLiteral(value);
    const std::string begin = "JSON.parse(";
    ASSERT_TRUE(script.starts_with(begin + '"') && script.ends_with("\")"));
    // A script's text in double quotes with these escapes alone is one of JSON as well.
    const json text = json::parse(script.substr(begin.size(), script.size() - begin.size() - 1));
    EXPECT_EQ(text.get<std::string>(), value);
}

}  // namespace
}  // namespace velto
