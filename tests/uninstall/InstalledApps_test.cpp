#include "uninstall/InstalledApps.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "UninstallWorld.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Answers for another place with what lies below `root`.
class MovedContents final : public FileContentReader {
public:
    explicit MovedContents(std::string root) : root_(std::move(root)) {}
    std::unique_ptr<FileContent> open(const std::string& path) override {
        return contents_->open(root_ + path);
    }

private:
    std::string root_;
    std::unique_ptr<FileContentReader> contents_ = makeFileContentReader();
};

class InstalledAppsTest : public testing::Test, protected UninstallWorld {
protected:
    AppEntry listed(const std::string& path) {
        for (AppEntry& entry : apps.listApps()) {
            if (entry.path == path) return entry;
        }
        ADD_FAILURE() << path << " is not listed";
        return {};
    }
};

TEST_F(InstalledAppsTest, ABundleIsReadFromItsPropertyListInBothForms) {
    const PropertyList list = textDictionary({{"CFBundleIdentifier", "com.example.foo"},
                                              {"CFBundleName", "Foo"},
                                              {"CFBundleDisplayName", "Foo for Friends"},
                                              {"CFBundleVersion", "417"},
                                              {"CFBundleShortVersionString", "2.1"},
                                              {"CFBundleExecutable", "foo-bin"}});
    const std::string path = userApplications() + "/Foo.app";
    const AppEntry expected{.bid = "com.example.foo",
                            .name = "Foo for Friends",
                            .version = "2.1",
                            .exec = "foo-bin",
                            .path = path};
    for (const std::string& bytes : {xmlPropertyList(list), binaryPropertyList(list)}) {
        put(path + "/Contents/Info.plist", bytes);
        EXPECT_EQ(apps.readApp(path), expected);
    }
}

TEST_F(InstalledAppsTest, WithoutItsOwnNamesItHasTheFilesName) {
    const auto read = [&](const Texts& texts) {
        Texts all{{"CFBundleIdentifier", "com.example.foo"}};
        all.insert(all.end(), texts.begin(), texts.end());
        return *apps.readApp(bundle(userApplications(), "Some File.app", all));
    };
    EXPECT_EQ(read({}).name, "Some File");
    EXPECT_EQ(read({}).exec, "Some File");
    EXPECT_EQ(read({}).version, "");
    EXPECT_EQ(read({{"CFBundleName", "Short"}}).name, "Short");
    EXPECT_EQ(read({{"CFBundleVersion", "417"}}).version, "417");
}

TEST_F(InstalledAppsTest, WithoutAnIdentifierItIsNotListed) {
    bundle(userApplications(), "Nameless.app", {{"CFBundleName", "Nameless"}});
    bundle(userApplications(), "Empty.app", {{"CFBundleIdentifier", ""}});
    put(userApplications() + "/Number.app/Contents/Info.plist",
        xmlPropertyList({PropertyList::Dictionary{{"CFBundleIdentifier", {std::int64_t{7}}}}}));
    home.folder("Applications/Hollow.app");
    EXPECT_THAT(listedNames(), IsEmpty());
}

TEST_F(InstalledAppsTest, OnlyBundlesDirectlyInTheThreeFoldersAreListed) {
    const Texts texts{{"CFBundleIdentifier", "com.example.foo"}};
    bundle(systemApplications(), "System.app", texts);
    bundle(systemApplications() + "/Utilities", "Utility.app", texts);
    bundle(userApplications(), "User.app", texts);
    bundle(systemApplications() + "/Suite", "Deep.app", texts);
    bundle(userApplications(), "Folder", texts);
    bundle(userApplications(), ".app", texts);
    EXPECT_THAT(listedNames(), ElementsAre("System", "User", "Utility"));
}

TEST_F(InstalledAppsTest, TwoCopiesOfOneApplicationAreListedTwice) {
    const Texts texts{{"CFBundleIdentifier", "com.example.foo"}};
    const std::string one = bundle(systemApplications(), "Foo.app", texts);
    const std::string other = bundle(userApplications(), "Foo.app", texts);
    std::vector<std::string> paths;
    for (const AppEntry& entry : apps.listApps())
        paths.push_back(entry.path);
    EXPECT_THAT(paths, testing::UnorderedElementsAre(one, other));
}

TEST_F(InstalledAppsTest, TheProgramNeverListsItself) {
    bundle(userApplications(), "Velto.app", {{"CFBundleIdentifier", "app.velto"}});
    EXPECT_THAT(listedNames(), IsEmpty());
}

TEST_F(InstalledAppsTest, MissingFoldersAreSkipped) {
    std::filesystem::remove_all(systemApplications());
    application("Foo");
    EXPECT_THAT(listedNames(), ElementsAre("Foo"));
}

TEST_F(InstalledAppsTest, WhatComesWithTheSystemIsMarked) {
    const std::string apple =
        bundle(userApplications(), "A.app", {{"CFBundleIdentifier", "com.apple.safari"}});
    EXPECT_TRUE(apps.readApp(apple)->apple);
    EXPECT_FALSE(apps.readApp(application("Foo"))->apple);
    const std::string almost =
        bundle(userApplications(), "B.app", {{"CFBundleIdentifier", "com.applesauce"}});
    EXPECT_FALSE(apps.readApp(almost)->apple);
}

TEST_F(InstalledAppsTest, WhatLiesWithTheSystemIsMarkedWhateverItsIdentifier) {
    machine.platform.contents = std::make_unique<MovedContents>(disk.path());
    const Texts texts{{"CFBundleIdentifier", "com.example.foo"}};
    bundle(disk.path("System/Applications"), "Foo.app", texts);
    bundle(disk.path("Systematic/Applications"), "Foo.app", texts);
    ASSERT_TRUE(apps.readApp("/System/Applications/Foo.app"));
    EXPECT_TRUE(apps.readApp("/System/Applications/Foo.app")->apple);
    ASSERT_TRUE(apps.readApp("/Systematic/Applications/Foo.app"));
    EXPECT_FALSE(apps.readApp("/Systematic/Applications/Foo.app")->apple);
}

TEST_F(InstalledAppsTest, AnApplicationOfTheStoreIsMarked) {
    const std::string path = application("Foo");
    EXPECT_FALSE(apps.readApp(path)->store);
    put(path + "/Contents/_MASReceipt/receipt", "receipt");
    EXPECT_TRUE(apps.readApp(path)->store);
}

TEST_F(InstalledAppsTest, OneThatRunsNowForTheFirstTimeWasUsedNowAndStaysSo) {
    const std::string path = application("Foo");
    machine.running.add({.bundleIdentifier = "com.example.foo", .bundlePath = path});
    const AppEntry entry = listed(path);
    EXPECT_TRUE(entry.running);
    EXPECT_EQ(entry.last, machine.clock.time);
    EXPECT_EQ(usage.launches().at("com.example.foo"), machine.clock.time);
}

TEST_F(InstalledAppsTest, OneApplicationCanBeAskedWhetherItRuns) {
    const AppEntry entry = *apps.readApp(application("Foo"));
    EXPECT_FALSE(apps.isRunning(entry));
    auto& process = machine.running.add({.bundleIdentifier = "com.example.foo"});
    EXPECT_TRUE(apps.isRunning(entry));
    process.terminated = true;
    EXPECT_FALSE(apps.isRunning(entry));
}

TEST_F(InstalledAppsTest, ARecordedLaunchCountsBeforeEverythingElse) {
    const std::string path = application("Foo");
    usage.record("com.example.foo", 1'600'000'000);
    library("Preferences/com.example.foo.plist");
    machine.running.add({.bundleIdentifier = "com.example.foo", .bundlePath = path});
    EXPECT_EQ(listed(path).last, 1'600'000'000);
}

TEST_F(InstalledAppsTest, OneNeverSeenWasUsedWhenItsOwnFilesLastChanged) {
    const std::string path = application("Foo");
    EXPECT_EQ(listed(path).last, 0);
    home.text("Library/Preferences/com.example.foo.plist", "x").dated(1, 1'500'000'000);
    home.text("Library/HTTPStorages/com.example.foo", "x").dated(1, 1'400'000'000);
    EXPECT_EQ(listed(path).last, 1'500'000'000);
    EXPECT_THAT(usage.launches(), IsEmpty()) << "an estimate is no launch";
}

TEST_F(InstalledAppsTest, TheListIsInTheOrderOfItsNames) {
    for (const char* name : {"Delta", "Alpha", "Charlie", "Bravo"})
        application(name);
    EXPECT_THAT(listedNames(), ElementsAre("Alpha", "Bravo", "Charlie", "Delta"));
}

/// An order of its own: the letters from the last to the first.
class BackwardsLocale final : public Locale {
public:
    std::vector<std::string> preferredLanguages() const override { return {}; }
    std::string decimal(double value, std::string_view) const override {
        return std::to_string(value);
    }
    int compare(std::string_view left, std::string_view right) const override {
        return right.compare(left);
    }
    std::string lowerCased(std::string_view text) const override { return std::string(text); }
};

TEST_F(InstalledAppsTest, TheOrderIsThatOfTheUsersLanguageAndNotOfTheBytes) {
    for (const char* name : {"Alpha", "Bravo", "Charlie"})
        application(name);
    machine.platform.locale = std::make_unique<BackwardsLocale>();
    EXPECT_THAT(listedNames(), ElementsAre("Charlie", "Bravo", "Alpha"));
}

TEST_F(InstalledAppsTest, TheTeamIsWhatTheSigningToolSays) {
    const std::string path = application("Foo");
    const auto answer = [&](const std::string& text) {
        machine.tools.result.standardError = text;
        return apps.teamID(path);
    };
    EXPECT_EQ(answer("Executable=/x\nTeamIdentifier= ABCDE12345 \r\nTeamIdentifier=LATER\n"),
              "ABCDE12345");
    EXPECT_THAT(machine.tools.commands.back(),
                ElementsAre("/usr/bin/codesign", "-dv", "--verbose=4", path));
    EXPECT_EQ(answer("TeamIdentifier=not set\n"), std::nullopt);
    EXPECT_EQ(answer("Identifier=com.example.foo\n"), std::nullopt);
    EXPECT_EQ(answer(" TeamIdentifier=ABCDE12345\n"), std::nullopt);
    EXPECT_EQ(answer("\xFF\nTeamIdentifier=ABCDE12345\n"), std::nullopt);
    machine.tools.result.exitStatus = 1;
    EXPECT_EQ(answer("TeamIdentifier=ABCDE12345"), "ABCDE12345");
    machine.tools.result.started = false;
    EXPECT_EQ(answer("TeamIdentifier=ABCDE12345"), std::nullopt);
}

TEST_F(InstalledAppsTest, ASizeIsTheSpaceOnDiskOfEverythingInside) {
    home.file("Applications/Foo.app/Contents/MacOS/Foo", 1'000'000);
    home.file("Applications/Foo.app/Contents/Resources/.hidden", 200'000);
    home.sparse("Applications/Foo.app/Contents/Resources/sparse", 50'000'000);
    home.link("Applications/Foo.app/Contents/link", home.file("big", 3'000'000).path());
    const std::int64_t size = apps.sizeOf(home.path("Applications/Foo.app"));
    EXPECT_GE(size, 1'200'000);
    EXPECT_LT(size, 1'300'000);
    EXPECT_GE(apps.sizeOf(home.path("big")), 3'000'000);
    EXPECT_EQ(apps.sizeOf(home.path("Applications/Foo.app/Contents/link")), 0);
    EXPECT_EQ(apps.sizeOf(home.path("nothing")), 0);
}

TEST_F(InstalledAppsTest, TheIconIsAskedForAtItsSize) {
    machine.icons.icons["/x/Foo.app"] = "data:image/png;base64,AAAA";
    EXPECT_EQ(apps.iconDataURL("/x/Foo.app", 32), "data:image/png;base64,AAAA");
    EXPECT_EQ(apps.iconDataURL("/x/Bar.app", 32), std::nullopt);
    EXPECT_EQ(machine.icons.asked.front(), std::pair(std::string("/x/Foo.app"), 32));
}

}  // namespace
}  // namespace velto
