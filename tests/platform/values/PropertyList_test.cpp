#include "platform/values/PropertyList.h"

#include <gtest/gtest.h>

#include <random>

#include "support/exhaustive.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

PropertyList sample() {
    PropertyList list{PropertyList::List{{"one"}, {true}, {std::int64_t{7}}}};
    return {PropertyList::Dictionary{
        {"name", {"Café & Söhne"}}, {"list", list}, {"inner", textDictionary({{"key", "value"}})}}};
}

TEST(PropertyList, BothFormsAreReadInFull) {
    for (const std::string& bytes : {xmlPropertyList(sample()), binaryPropertyList(sample())}) {
        const auto read = readPropertyList(bytes);
        ASSERT_TRUE(read);
        ASSERT_NE(read->text("name"), nullptr);
        EXPECT_EQ(*read->text("name"), "Café & Söhne");
        const auto& list = std::get<PropertyList::List>(read->member("list")->value);
        ASSERT_EQ(list.size(), 3u);
        EXPECT_EQ(std::get<std::string>(list[0].value), "one");
        EXPECT_TRUE(std::get<bool>(list[1].value));
        EXPECT_EQ(std::get<std::int64_t>(list[2].value), 7);
    }
}

TEST(PropertyList, WhatIsNoTextIsNoTextAndWhatIsMissingIsMissing) {
    const auto read = readPropertyList(xmlPropertyList(sample()));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->text("list"), nullptr);
    EXPECT_EQ(read->text("nothing"), nullptr);
    EXPECT_EQ(read->member("name")->member("name"), nullptr);
}

TEST(PropertyList, WhatIsNoneGivesNothing) {
    for (const char* bytes : {"", "bplist00", "text", "<plist>", "<plist><dict><key>a</key>",
                              "<?xml version=\"1.0\"?><html></html>"}) {
        EXPECT_FALSE(readPropertyList(bytes)) << bytes;
    }
}

TEST(PropertyList, NestingThatWouldEndTheProgramIsRefused) {
    const auto nested = [](int depth) {
        std::string open, close;
        for (int level = 0; level < depth; ++level) {
            open += "<array>";
            close += "</array>";
        }
        return "<plist version=\"1.0\">" + open + close + "</plist>";
    };
    EXPECT_TRUE(readPropertyList(nested(2'000)));
    EXPECT_FALSE(readPropertyList(nested(300'000)));

    PropertyList deep{"bottom"};
    for (int level = 0; level < 1'000; ++level) {
        PropertyList::List list;
        list.push_back(std::move(deep));
        deep = {std::move(list)};
    }
    EXPECT_FALSE(readPropertyList(binaryPropertyList(deep)));
}

/// Each object is a list that names the next one twice.
std::string doublingPropertyList(int levels, bool isCircle) {
    std::string objects, offsets;
    for (int level = 0; level < levels; ++level) {
        offsets += static_cast<char>(8 + objects.size());
        const bool isLast = level + 1 == levels;
        const char next = static_cast<char>(isLast ? 0 : level + 1);
        objects += isLast && !isCircle ? std::string("\x09") : std::string("\xA2") + next + next;
    }
    std::string file = "bplist00" + objects + offsets + std::string(6, '\0') + "\x01\x01";
    for (std::size_t value :
         {static_cast<std::size_t>(levels), std::size_t{0}, 8 + objects.size()}) {
        file += std::string(7, '\0') + static_cast<char>(value);
    }
    return file;
}

TEST(PropertyList, AFewBytesThatStandForMoreThanTheMemoryHoldsAreRefused) {
    EXPECT_TRUE(readPropertyList(doublingPropertyList(10, false)));
    EXPECT_FALSE(readPropertyList(doublingPropertyList(60, false)));
}

TEST(PropertyList, AValueInsideItselfIsRefused) {
    EXPECT_FALSE(readPropertyList(doublingPropertyList(3, true)));
}

TEST(PropertyList, ANulByteInATextIsRefused) {
    // The parser of Linux would end the program.
    const std::string nul("a\0b", 3);
    EXPECT_FALSE(readPropertyList(binaryPropertyList(textDictionary({{nul, "value"}}))));
    EXPECT_FALSE(readPropertyList(binaryPropertyList(textDictionary({{"key", "é" + nul}}))));
    EXPECT_FALSE(readPropertyList(xmlPropertyList(textDictionary({{nul, "value"}}))));
    for (const char* zero : {"&#0;", "&#x0;", "&#000;", "&#X00;"}) {
        EXPECT_FALSE(readPropertyList("<plist version=\"1.0\"><dict><key>a" + std::string(zero) +
                                      "b</key><true/></dict></plist>"))
            << zero;
    }
}

TEST(PropertyList, EntitiesThatCostMoreThanTheyAreWorthAreRefused) {
    const auto list = [](const std::string& type, const std::string& text) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + type +
               "<plist version=\"1.0\"><dict><key>CFBundleName</key><string>" + text +
               "</string></dict></plist>\n";
    };
    const std::string type = R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" )"
                             R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)";
    std::string entities;
    for (int count = 0; count < 150'000; ++count)
        entities += "&amp;";
    const auto whole = readPropertyList(list(type, "Fish &amp; chips"));
    ASSERT_TRUE(whole && whole->text("CFBundleName"));
    EXPECT_EQ(*whole->text("CFBundleName"), "Fish & chips");
    EXPECT_TRUE(readPropertyList(list(type, entities.substr(0, 5 * 1'000))));
    EXPECT_FALSE(readPropertyList(list(type, entities)));
    EXPECT_FALSE(readPropertyList(list("<!DOCTYPE plist [<!ENTITY a \"b\">]>", "text")));
    EXPECT_FALSE(readPropertyList(list("<!DOCTYPE plist SYSTEM '[]' [ ]>", "text")));
    EXPECT_FALSE(readPropertyList(list("<!ENTITY a \"b\">", "text")));
}

TEST(PropertyList, AListLongerThanAnyProgramsIsRefused) {
    const auto list = [](const std::string& body) {
        return "<plist version=\"1.0\"><array>" + body + "</array></plist>";
    };
    std::string truths;
    for (int count = 0; count < 120'000; ++count)
        truths += "<true/>";
    EXPECT_TRUE(readPropertyList(list(truths.substr(0, 7 * 10'000))));
    EXPECT_FALSE(readPropertyList(list(truths)));
    EXPECT_FALSE(
        readPropertyList(list("<string>" + std::string(longestPropertyList, 'a') + "</string>")));
}

TEST(PropertyList, DamagedBytesNeverEndTheProgram) {
    const std::string originals[] = {
        xmlPropertyList(sample()),
        binaryPropertyList(textDictionary({{"CFBundleIdentifier", "com.example.app"},
                                           {"CFBundleNäme", "Ein Näme"},
                                           {"CFBundleName", "An application of some length"}}))};
    std::mt19937 random(20240229);
    const int rounds = isExhaustive() ? 400'000 : 4'000;
    int read = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string bytes = originals[round % 2];
        const auto changes = 1 + random() % 8;
        for (unsigned change = 0; change < changes; ++change) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        if (random() % 4 == 0) bytes.resize(random() % bytes.size());
        if (readPropertyList(bytes)) ++read;
    }
    EXPECT_GT(read, 0) << "every one was refused: nothing behind the first test was tried";
}

}  // namespace
}  // namespace velto
