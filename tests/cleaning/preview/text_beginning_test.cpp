#include <gmock/gmock.h>

#include <string>

#include "cleaning/preview/text_beginning.h"

namespace velto {
namespace {

using namespace std::string_literals;
using testing::Optional;

TEST(TextBeginning, IsTheTextItself) {
    EXPECT_THAT(textBeginning("uno\tdos\r\ntres\n", true), Optional("uno\tdos\r\ntres\n"s));
    EXPECT_THAT(textBeginning("\xEF\xBB\xBFniño", true), Optional("niño"s));
    EXPECT_THAT(textBeginning("\x1B[31mred\x1B[0m", true), Optional("\x1B[31mred\x1B[0m"s));
}

TEST(TextBeginning, ACharacterThatTheBoundCutsIsLeftOut) {
    const std::string text = "abcdefghijklmnopqrstuvwxyz €𝄞";
    for (std::size_t length = 27; length < text.size(); ++length) {
        const auto shown = textBeginning(std::string_view(text).substr(0, length), false);
        ASSERT_TRUE(shown) << length;
        EXPECT_TRUE(text.starts_with(*shown)) << length;
        EXPECT_EQ(shown->find("\xEF\xBF\xBD"), std::string::npos) << length;
    }
    EXPECT_THAT(textBeginning("a whole text of so many letters \xE2\x82", true),
                Optional(testing::HasSubstr("\xEF\xBF\xBD")));
}

TEST(TextBeginning, ALineInAnOlderEncodingShowsItsBytesThatAreNoText) {
    EXPECT_THAT(textBeginning("El ni\xF1o juega en el jard\xEDn de la casa", true),
                Optional("El ni\xEF\xBF\xBDo juega en el jard\xEF\xBF\xBDn de la casa"s));
}

TEST(TextBeginning, WhatIsNoTextSaysSo) {
    EXPECT_FALSE(textBeginning("a\0b"s, true));
    EXPECT_FALSE(
        textBeginning("\x7F"
                      "ELF\x02\x01\x01",
                      true));
    EXPECT_FALSE(textBeginning("\xF0\x80\xC3\x28\xFF\xFE\xFA", true));
    EXPECT_FALSE(textBeginning("a\x01z", true));
}

}  // namespace
}  // namespace velto
