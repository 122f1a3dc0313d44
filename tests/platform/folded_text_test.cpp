#include "platform/folded_text.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

TEST(FoldedText, LettersCountAlikeWithAndWithoutMarksAndCapitals) {
    EXPECT_EQ(foldedText("Información"), "informacion");
    EXPECT_EQ(foldedText("Informacio\xCC\x81n"), "informacion") << "the accent by itself";
    EXPECT_EQ(foldedText("ÑANDÚ_2024"), "nandu_2024");
    EXPECT_EQ(foldedText("ÅSE Straße"), "ase straße");
    EXPECT_EQ(foldedText("Москва й"), "москва и");
    EXPECT_EQ(foldedText("東京"), "東京");
    EXPECT_EQ(foldedText(""), "");
}

TEST(FoldedText, WhatIsNotUtf8IsShownAsSuch) { EXPECT_EQ(foldedText("A\xFF"), "a\xEF\xBF\xBD"); }

}  // namespace
}  // namespace velto
