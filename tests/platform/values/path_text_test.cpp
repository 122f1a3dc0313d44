#include "platform/values/path_text.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/values/text.h"

namespace velto {
namespace {

using namespace std::string_literals;

TEST(PathText, WhatIsTextIsItsOwnText) {
    for (const char* path : {"/home/ana/año \\u0000ff \\x.txt", "", "/h/日本 🎬", "/h/\uFFFD"}) {
        EXPECT_EQ(pathText(path), path);
        EXPECT_EQ(pathBytes(path), path);
    }
}

TEST(PathText, EveryByteThatIsNoTextIsKept) {
    EXPECT_EQ(pathText("/h/caf\xE9 ñ"), "/h/caf\0e9 ñ"s);
    EXPECT_EQ(pathText("\xF0\x9F\x8E"),
              "\0f0\0"
              "9f\0"
              "8e"s)
        << "a sequence that is cut off";
    EXPECT_EQ(pathBytes("/h/caf\0e9 ñ"s), "/h/caf\xE9 ñ");
}

TEST(PathText, NoTwoNamesShareATextAndNoTextStandsForTwo) {
    std::mt19937 random(4);
    const std::string letters =
        "\xC3\xA9\xFF\x80\xE2\x82\xAC"
        "ab0f/9";
    for (int round = 0; round < 20'000; ++round) {
        std::string name(random() % 8, ' ');
        for (char& letter : name)
            letter = letters[random() % letters.size()];
        const std::string text = pathText(name);
        ASSERT_TRUE(isValidUtf8(text));
        ASSERT_EQ(pathBytes(text), name);
        ASSERT_EQ(pathText(pathBytes(text)), text);
        // The page sends back what it was sent.
        ASSERT_EQ(nlohmann::json::parse(nlohmann::json(text).dump()), text);
    }
}

TEST(PathText, ATextThatNoNameHasStaysWhatNoFileCanBeCalled) {
    for (const std::string& text : {"/h/\0"s, "/h/\0f"s, "/h/\0zz"s, "/h/\0E9"s,
                                    "/h/\0"
                                    "2f"s,
                                    "/h/\0c3\0a9"s,
                                    "\0"
                                    "00"s}) {
        EXPECT_EQ(pathBytes(text), text);
    }
}

TEST(PathText, ListsGoThereAndBack) {
    const std::vector<std::string> paths{"/a", "/b\xFF"};
    EXPECT_THAT(pathTexts(paths), testing::ElementsAre("/a", "/b\0ff"s));
    EXPECT_EQ(pathsOfTexts(pathTexts(paths)), paths);
}

}  // namespace
}  // namespace velto
