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

TEST(Text, AToastTextIsOneLineWithoutBackslashes) {
    EXPECT_EQ(singleLine("a\nb\r\tc\\d"), "a b  c/d");
    EXPECT_EQ(singleLine("x\xE2\x80\xA8y\xC2\x85z"), "x y z");
    EXPECT_EQ(singleLine("a\xFF"), "a\xEF\xBF\xBD");
    EXPECT_EQ(singleLine(std::string_view("a\0b", 3)), "a b");
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

}  // namespace
}  // namespace velto
