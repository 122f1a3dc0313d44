#include "platform/values/text.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

TEST(Text, ValidNamesStayAndBadBytesShowAsReplacements) {
    EXPECT_EQ(validUtf8("año 日本 🎬"), "año 日本 🎬");
    EXPECT_EQ(validUtf8("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(validUtf8("\xE2\x82"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "cut short";
}

TEST(Text, OverlongFormsSurrogatesAndTooHighAreNotUtf8) {
    for (const char* bytes : {"\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                              "\xF5\x80\x80\x80", "\x80"}) {
        EXPECT_FALSE(isValidUtf8(bytes)) << bytes;
    }
    for (const char* bytes : {"\xC2\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(isValidUtf8(bytes)) << bytes;
    }
}

TEST(Text, TheLengthOfASequence) {
    EXPECT_EQ(utf8SequenceLength(""), 0u);
    EXPECT_EQ(utf8SequenceLength("ab"), 1u);
    EXPECT_EQ(utf8SequenceLength(std::string_view("\0b", 2)), 1u);
    EXPECT_EQ(utf8SequenceLength("\xC3\xB1o"), 2u);
    EXPECT_EQ(utf8SequenceLength("\xE2\x82"), 0u) << "cut short";
}

TEST(Text, OnlyLettersOfAsciiAreLowered) {
    EXPECT_EQ(lowerCasedAscii("AZaz09@[`{"), "azaz09@[`{");
    EXPECT_EQ(lowerCasedAscii("A\xC3\x91O"), "a\xC3\x91o");
    EXPECT_EQ(lowerCasedAscii(std::string_view("A\0B", 3)), std::string_view("a\0b", 3));
}

TEST(Text, AToastTextIsOneLineWithoutBackslashes) {
    EXPECT_EQ(singleLine("a\nb\r\tc\\d"), "a b  c/d");
    EXPECT_EQ(singleLine("x\xE2\x80\xA8y\xC2\x85z"), "x y z");
    EXPECT_EQ(singleLine("a\xFF"), "a\xEF\xBF\xBD");
    EXPECT_EQ(singleLine(std::string_view("a\0b", 3)), "a b");
}

TEST(Text, OccurrencesDoNotOverlap) {
    EXPECT_EQ(occurrences("", "a"), 0u);
    EXPECT_EQ(occurrences("banana", "an"), 2u);
    EXPECT_EQ(occurrences("aaaaa", "aa"), 2u);
    EXPECT_EQ(occurrences("a", "aa"), 0u);
}

TEST(Text, TheLastComponentIgnoresATrailingSlash) {
    EXPECT_EQ(lastPathComponent("/a/b.txt"), "b.txt");
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent("b"), "b");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(Text, TheFolderThatHoldsAnEntry) {
    EXPECT_EQ(parentFolder("/a/b.txt"), "/a");
    EXPECT_EQ(parentFolder("/a/b/"), "/a/b");
    EXPECT_EQ(parentFolder("/a"), "/");
    EXPECT_EQ(parentFolder("/"), "");
    EXPECT_EQ(parentFolder("b"), "");
    EXPECT_EQ(parentFolder(""), "");
}

TEST(Text, AnExtensionIsWhatFollowsTheLastStop) {
    EXPECT_EQ(lowerCaseExtension("Film.MOV"), "mov");
    EXPECT_EQ(lowerCaseExtension("a.tar.gz"), "gz");
    EXPECT_EQ(lowerCaseExtension(".profile"), "");
    EXPECT_EQ(lowerCaseExtension("name."), "");
    EXPECT_EQ(lowerCaseExtension("name"), "");
}

TEST(Text, BelowAFolderMeansBehindItsSlash) {
    EXPECT_TRUE(isAtOrBelow("/h/Music", "/h/Music"));
    EXPECT_TRUE(isAtOrBelow("/h/Music/a", "/h/Music"));
    EXPECT_FALSE(isAtOrBelow("/h/Musicals/a", "/h/Music"));
    EXPECT_FALSE(isAtOrBelow("/h", "/h/Music"));
}

TEST(LogText, NothingInALineMovesTheCursorOrTurnsTheWriting) {
    constexpr std::size_t any = 1000;
    EXPECT_EQ(logText("Velto ▶ añadido: «x» \\ 中文 🎉", any), "Velto ▶ añadido: «x» \\ 中文 🎉");
    EXPECT_EQ(logText("a\nb\r\tc\x1B[31md\x7F", any),
              "a\\u000ab\\u000d\\u0009c\\u001b[31md\\u007f");
    EXPECT_EQ(logText(std::string_view("\0", 1), any), "\\u0000");
    EXPECT_EQ(logText("\u0085\u009b\u2028\u2029\u202e\u2066\u2069\u200f\u061c", any),
              "\\u0085\\u009b\\u2028\\u2029\\u202e\\u2066\\u2069\\u200f\\u061c");
    EXPECT_EQ(logText("bad \xFF\xC3", any), "bad \uFFFD\uFFFD");
}

TEST(LogText, ALongLineIsCutBetweenLetters) {
    EXPECT_EQ(logText("abcdef", 6), "abcdef");
    EXPECT_EQ(logText("abcdefg", 6), "abc…");
    EXPECT_EQ(logText("ñññññ", 7), "ññ…");
    EXPECT_EQ(logText("abc\n", 8), "abc…");
    EXPECT_EQ(logText("", 0), "");
}

}  // namespace
}  // namespace velto
