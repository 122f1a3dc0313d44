#include "uninstall/bundle_information.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <random>

#include <nlohmann/json.hpp>

#include "UninstallWorld.h"
#include "support/exhaustive.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

/// What an application of some size says of itself.
PropertyList information() {
    PropertyList types{PropertyList::List{
        {PropertyList::Dictionary{{"CFBundleTypeExtensions", {PropertyList::List{{"a"}, {"b"}}}},
                                  {"CFBundleTypeName", {"A & B"}},
                                  {"LSTypeIsPackage", {true}}}},
        {PropertyList::Dictionary{{"CFBundleIdentifier", {"inner"}}}}}};
    return {PropertyList::Dictionary{{"BuildMachineOSBuild", {"23A344"}},
                                     {"CFBundleDocumentTypes", types},
                                     {"CFBundleDisplayName", {"Foobar Café"}},
                                     {"CFBundleExecutable", {"Foobar"}},
                                     {"CFBundleIdentifier", {"com.example.foobar"}},
                                     {"CFBundleName", {"Foobar"}},
                                     {"CFBundleShortVersionString", {"2.1"}},
                                     {"CFBundleVersion", {"417"}},
                                     {"LSMinimumSystemVersion", {"11.0"}},
                                     {"NSHighResolutionCapable", {true}},
                                     {"Number", {std::int64_t{7}}},
                                     {"Empty", {PropertyList::Dictionary{}}}}};
}

const BundleInformation expected{.identifier = "com.example.foobar",
                                 .displayName = "Foobar Café",
                                 .name = "Foobar",
                                 .shortVersion = "2.1",
                                 .version = "417",
                                 .executable = "Foobar"};

std::string xmlOf(const std::string& inside) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n" +
           inside + "</dict>\n</plist>\n";
}

TEST(BundleInformation, TheQuickWayReadsWhatApplicationsWrite) {
    EXPECT_EQ(quickBundleInformation(xmlPropertyList(information())), expected);
    EXPECT_EQ(bundleInformationFrom(xmlPropertyList(information())), expected);
    EXPECT_EQ(bundleInformationFrom(binaryPropertyList(information())), expected);
}

TEST(BundleInformation, WhatIsOutOfTheOrdinaryIsLeftToTheParser) {
    const std::string identifier = "<key>CFBundleIdentifier</key>\n<string>com.a</string>\n";
    EXPECT_TRUE(quickBundleInformation(xmlOf(identifier)));
    for (const std::string& inside :
         {"<!-- <key>CFBundleName</key> -->" + identifier,
          std::string("<key>CFBundleIdentifier</key><string>com&amp;a</string>"),
          std::string("<key>CFBundleIdentifier</key><string><![CDATA[com.a]]></string>"),
          identifier + identifier, identifier + "<key>x</key><array><unknown/></array>",
          identifier + "<key>x</key>", std::string("<key>CFBundleName</key><integer>1</integer>"),
          std::string("<key>CFBundleIdentifier</key><string>\xFF</string>")}) {
        EXPECT_FALSE(quickBundleInformation(xmlOf(inside))) << inside;
    }
    EXPECT_EQ(
        bundleInformationFrom(xmlOf("<key>CFBundleIdentifier</key><string>com&amp;a</string>"))
            ->identifier,
        "com&a");
    EXPECT_EQ(bundleInformationFrom(xmlOf("<!-- a comment -->" + identifier))->identifier, "com.a");
}

TEST(BundleInformation, TheQuickWayNeverSaysAnythingElseThanTheParser) {
    // Whatever is done to the bytes: when the quick way has an answer, the parser has the same.
    const std::string original = xmlPropertyList(information());
    const char* const pieces[] = {"<dict>",       "</dict>",   "<array>",   "</array>", "<key>",
                                  "</key>",       "<string>",  "</string>", "<true/>",  "<!--",
                                  "-->",          "&lt;",      "<string/>", "\n",       " ",
                                  "CFBundleName", "<![CDATA[", "]]>",       "</plist>", "x"};
    const int rounds = isExhaustive() ? 100'000 : 4'000;
    std::mt19937 random(20240505);
    int answered = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string bytes = original;
        const auto changes = 1 + random() % 3;
        for (unsigned change = 0; change < changes; ++change) {
            const std::size_t at = random() % bytes.size();
            switch (random() % 4) {
                case 0:
                    bytes[at] = static_cast<char>(random());
                    break;
                case 1:
                    bytes.erase(at, random() % 12);
                    break;
                case 2:
                    bytes.insert(at, pieces[random() % std::size(pieces)]);
                    break;
                default: {
                    const std::string part = bytes.substr(at, random() % 80);
                    bytes.insert(random() % bytes.size(), part);
                }
            }
        }
        const auto quick = quickBundleInformation(bytes);
        if (!quick) continue;
        ++answered;
        const auto list = readPropertyList(bytes);
        ASSERT_TRUE(list && list->isDictionary()) << bytes;
        for (const auto& [key, member] : bundleInformationKeys) {
            const std::string* const text = list->text(key);
            const std::optional<std::string>& own = (*quick).*member;
            ASSERT_EQ(own.has_value(), text != nullptr) << key << "\n" << bytes;
            if (text == nullptr) continue;
            ASSERT_EQ(*own, *text) << bytes;
        }
    }
    EXPECT_GT(answered, rounds / 50) << "hardly ever was there anything to compare";
}

class ReadAppTest : public testing::Test, protected UninstallWorld {
protected:
    std::string withInformation(const std::string& bytes) {
        put(userApplications() + "/Foobar.app/Contents/Info.plist", bytes);
        return userApplications() + "/Foobar.app";
    }
};

TEST_F(ReadAppTest, ADamagedPropertyListIsNeverTheProgramsEnd) {
    const std::string originals[] = {xmlPropertyList(information()),
                                     binaryPropertyList(information())};
    const int rounds = isExhaustive() ? 200'000 : 2'000;
    std::mt19937 random(20240612);
    int read = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string bytes = originals[round % 2];
        for (auto change = random() % 6; change > 0; --change)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        if (random() % 5 == 0) bytes.resize(random() % bytes.size());
        const auto entry = apps.readApp(withInformation(bytes));
        if (!entry) continue;
        ++read;
        ASSERT_FALSE(entry->bid.empty());
        ASSERT_FALSE(toJson(*entry).dump().empty()) << "bytes that are not UTF-8 would throw";
    }
    EXPECT_GT(read, rounds / 20);
}

TEST_F(ReadAppTest, AHugePropertyListIsNotRead) {
    const std::string path = withInformation("");
    home.sparse("Applications/Foobar.app/Contents/Info.plist", 50'000'000'000);
    EXPECT_FALSE(apps.readApp(path));
}

TEST_F(ReadAppTest, ADeeplyNestedPropertyListIsNoApplication) {
    std::string nested;
    for (int level = 0; level < 200'000; ++level)
        nested += "<dict><key>a</key>";
    EXPECT_FALSE(apps.readApp(withInformation(xmlOf(nested))));
}

TEST_F(ReadAppTest, WhatIsNoFileIsNoPropertyList) {
    const std::string path = home.folder("Applications/Foobar.app");
    home.folder("Applications/Foobar.app/Contents/Info.plist");
    EXPECT_FALSE(apps.readApp(path));
    std::filesystem::remove_all(path + "/Contents");
    home.folder("Applications/Foobar.app/Contents");
    home.link("Applications/Foobar.app/Contents/Info.plist", "/dev/zero");
    EXPECT_FALSE(apps.readApp(path));
    std::filesystem::remove(path + "/Contents/Info.plist");
    ASSERT_EQ(mkfifo((path + "/Contents/Info.plist").c_str(), 0600), 0);
    EXPECT_FALSE(apps.readApp(path));
    EXPECT_FALSE(apps.readApp(""));
    EXPECT_FALSE(apps.readApp(std::string("/a\0b", 4)));
}

TEST_F(ReadAppTest, ABundleOfAnotherShapeIsRead) {
    const std::string bytes = xmlPropertyList(information());
    const std::string shallow = home.folder("Applications/Shallow.app");
    put(shallow + "/Info.plist", bytes);
    ASSERT_TRUE(apps.readApp(shallow));
    EXPECT_EQ(apps.readApp(shallow)->bid, "com.example.foobar");
    // An application made for a telephone: a link inside leads to the bundle proper.
    const std::string wrapped = home.folder("Applications/Wrapped.app");
    put(wrapped + "/Wrapper/Foobar.app/Info.plist", bytes);
    home.link("Applications/Wrapped.app/WrappedBundle", "Wrapper/Foobar.app");
    ASSERT_TRUE(apps.readApp(wrapped));
    EXPECT_EQ(apps.readApp(wrapped)->path, wrapped);
}

TEST_F(ReadAppTest, TheUsualPlaceOfThePropertyListComesFirst) {
    const auto named = [](const std::string& bid) {
        return xmlPropertyList(textDictionary({{"CFBundleIdentifier", bid}}));
    };
    const std::string path = home.folder("Applications/Foobar.app");
    const auto identifier = [&] {
        const auto entry = apps.readApp(path);
        return entry ? entry->bid : "none";
    };
    put(path + "/Info.plist", named("com.example.top"));
    EXPECT_EQ(identifier(), "com.example.top");
    put(path + "/WrappedBundle/Info.plist", named("com.example.wrapped"));
    EXPECT_EQ(identifier(), "com.example.wrapped");
    put(path + "/Contents/Info.plist", named("com.example.usual"));
    EXPECT_EQ(identifier(), "com.example.usual");
    put(path + "/Contents/Info.plist", "damaged");
    EXPECT_FALSE(apps.readApp(path)) << "damaged is not missing";
}

TEST_F(ReadAppTest, APropertyListBehindALinkInsideTheBundleIsRead) {
    const std::string path = home.folder("Applications/Foobar.app/Contents");
    put(path + "/Real.plist", xmlPropertyList(information()));
    home.link("Applications/Foobar.app/Contents/Info.plist", "Real.plist");
    EXPECT_TRUE(apps.readApp(home.path("Applications/Foobar.app")));
}

}  // namespace
}  // namespace velto
