#include "uninstall/Leftovers.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "UninstallWorld.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

using Leftovers::Candidate;
using Leftovers::Conf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class LeftoversTest : public testing::Test, protected UninstallWorld {
protected:
    AppEntry entryOf(const std::string& name) {
        AppEntry entry = *apps.readApp(application(name));
        entry.team = team;
        return entry;
    }
    nlohmann::json analyzed(const AppEntry& entry) {
        return Leftovers::analyze(machine.platform, apps, entry,
                                  [&](const std::string& name) { progress.push_back(name); });
    }
    static std::vector<nlohmann::json> itemsOf(const nlohmann::json& analysis) {
        std::vector<nlohmann::json> items;
        for (const auto& group : analysis["groups"]) {
            for (const auto& item : group["items"])
                items.push_back(item);
        }
        return items;
    }
    static std::vector<std::string> pathsOf(const nlohmann::json& analysis) {
        std::vector<std::string> paths;
        for (const auto& item : itemsOf(analysis))
            paths.push_back(item["path"]);
        return paths;
    }
    std::vector<std::string> found(const std::string& name, const std::string& root,
                                   int limit = Leftovers::searchLimit) {
        std::vector<std::string> paths;
        for (const Candidate& candidate : Leftovers::searchByName(files, *machine.platform.locale,
                                                                  name, {root}, "support", limit)) {
            EXPECT_EQ(
                candidate,
                (Candidate{.path = candidate.path, .cat = "support", .conf = Conf::possible}));
            paths.push_back(candidate.path);
        }
        return paths;
    }
    std::string support() const { return home.path("Library/Application Support"); }

    std::string team;
    std::vector<std::string> progress;
    WatchedFiles files{std::make_unique<PosixFileManager>()};
};

TEST_F(LeftoversTest, AnAnalysisHoldsTheApplicationAndAllThatExists) {
    team = "TEAM";
    AppEntry entry = entryOf("Foobar");
    entry.running = true;
    home.file("Library/Application Support/com.example.foobar/data", 2'000'000);
    home.file("Library/Caches/Foobar/cache", 3'000'000);
    systemLibrary("LaunchDaemons/com.example.foobar.plist");
    library("Group Containers/TEAM.com.example.foobar/x");
    machine.icons.icons[entry.path] = "data:image/png;base64,AAAA";
    const auto analysis = analyzed(entry);

    EXPECT_EQ(analysis["bid"], "com.example.foobar");
    EXPECT_EQ(analysis["name"], "Foobar");
    EXPECT_EQ(analysis["path"], entry.path);
    EXPECT_EQ(analysis["version"], "");
    EXPECT_EQ(analysis["icon"], "data:image/png;base64,AAAA");
    EXPECT_EQ(analysis["running"], true);
    EXPECT_EQ(analysis["team"], "TEAM");
    EXPECT_EQ(analysis["gb"], 0);
    EXPECT_EQ(analysis["count"], 5);
    EXPECT_EQ(analysis["adminCount"], 1);
    EXPECT_EQ(analysis["possibleCount"], 1);
    EXPECT_EQ(analysis["total"], 0.005);
    EXPECT_EQ(analysis["certain"], 0.002);
    EXPECT_EQ(analysis["possible"], 0.003);
    std::vector<std::string> keys;
    for (const auto& group : analysis["groups"])
        keys.push_back(group["key"]);
    EXPECT_THAT(keys, ElementsAre("app", "support", "caches", "group", "agents"));
    EXPECT_EQ(analysis["groups"][0]["items"][0], nlohmann::json({{"id", "un-app"},
                                                                 {"name", "Foobar"},
                                                                 {"path", entry.path},
                                                                 {"gb", 0.0},
                                                                 {"conf", "certain"},
                                                                 {"admin", false},
                                                                 {"nested", false},
                                                                 {"cat", "app"}}));
    EXPECT_EQ(analysis["groups"][1]["items"][0],
              nlohmann::json({{"id", "un-1"},
                              {"name", "com.example.foobar"},
                              {"path", support() + "/com.example.foobar"},
                              {"gb", 0.002},
                              {"conf", "certain"},
                              {"admin", false},
                              {"nested", false},
                              {"cat", "support"}}));
    EXPECT_EQ(analysis["groups"][4]["items"][0]["admin"], true);
    EXPECT_THAT(progress, ElementsAre("com.example.foobar", "TEAM.com.example.foobar", "Foobar",
                                      "com.example.foobar.plist"));
    EXPECT_EQ(analysis.size(), 15u);
}

TEST_F(LeftoversTest, ASizeThatIsKnownIsNotMeasuredAgain) {
    AppEntry entry = entryOf("Foobar");
    entry.gb = 1.23456;
    const auto analysis = analyzed(entry);
    EXPECT_EQ(analysis["gb"], 1.235);
    EXPECT_EQ(analysis["total"], 1.235);
    EXPECT_EQ(analysis["icon"], "");
}

TEST_F(LeftoversTest, APathThatTwoRowsNameIsListedOnceUnderTheEarlier) {
    const std::string path = bundle(userApplications(), "Foo.app",
                                    {{"CFBundleIdentifier", "Foobar"}, {"CFBundleName", "Foobar"}});
    library("Application Support/Foobar/x");
    const auto items = itemsOf(analyzed(*apps.readApp(path)));
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[1]["conf"], "certain");
}

TEST_F(LeftoversTest, TheBundleItselfIsListedOnce) {
    const std::string path =
        bundle(support(), "com.example.foo", {{"CFBundleIdentifier", "com.example.foo"}});
    EXPECT_THAT(pathsOf(analyzed(*apps.readApp(path))), ElementsAre(path));
}

TEST_F(LeftoversTest, WhatIsInsideTheBundleIsNotListedBesideIt) {
    const AppEntry entry = entryOf("Foobar");
    put(entry.path + "/Contents/Library/LoginItems/Helper.app/x", "x");
    put(entry.path + "/Contents/Library/LaunchServices/com.example.helper", "x");
    EXPECT_THAT(pathsOf(analyzed(entry)), ElementsAre(entry.path));
}

TEST_F(LeftoversTest, CrashReportsOfThisProgramAreFoundAndNoOthers) {
    const AppEntry entry = entryOf("Foo");
    const std::string own =
        library("Logs/DiagnosticReports/Foo_2024-05-01-101010_host.ips", "report");
    library("Logs/DiagnosticReports/FooBar_2024-05-01.ips", "report");
    library("Logs/DiagnosticReports/foo_2024-05-01.ips", "report");
    EXPECT_THAT(pathsOf(analyzed(entry)), ElementsAre(entry.path, own));
}

TEST_F(LeftoversTest, TheThirteenthCrashReportIsNotListed) {
    const AppEntry entry = entryOf("Foobar");
    for (int day = 10; day < 25; ++day)
        library("Logs/DiagnosticReports/Foobar_2024-05-" + std::to_string(day) + ".ips", "x");
    const auto paths = pathsOf(analyzed(entry));
    EXPECT_EQ(paths.size(), 13u);
    EXPECT_EQ(paths.back(), home.path("Library/Logs/DiagnosticReports/Foobar_2024-05-21.ips"));
}

TEST_F(LeftoversTest, ALinkThatLeadsNowhereIsNoLeftover) {
    const AppEntry entry = entryOf("Foobar");
    home.link("Library/Caches/com.example.foobar", "/nothing/there");
    EXPECT_THAT(pathsOf(analyzed(entry)), ElementsAre(entry.path));
}

TEST_F(LeftoversTest, AnAnalysisWithoutALibraryIsStillOne) {
    const AppEntry entry = entryOf("Foobar");
    std::filesystem::remove_all(home.path("Library"));
    EXPECT_EQ(analyzed(entry)["count"], 1);
}

// The search by name

TEST_F(LeftoversTest, AFolderNamedLikeTheApplicationIsFound) {
    library("Application Support/FOOBAR/x");
    EXPECT_THAT(found("Foobar Pro", support()), ElementsAre(support() + "/FOOBAR"));
}

TEST_F(LeftoversTest, AFolderOneLevelDeeperIsFound) {
    library("Application Support/Acme/Foobar/x");
    library("Application Support/Acme/Inner/Foobar/x");
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/Acme/Foobar"));
}

TEST_F(LeftoversTest, OneLevelDeeperAFileCountsToo) {
    library("Application Support/Acme/foobar");
    library("Application Support/foobar", "a file at the top does not");
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/Acme/foobar"));
}

TEST_F(LeftoversTest, TheSecondWordsFolderIsSearchedAndNotTaken) {
    library("Application Support/widgets/foobar/x");
    library("Application Support/widgets/other/x");
    EXPECT_THAT(found("Acme Widgets Foobar", support()),
                ElementsAre(support() + "/widgets/foobar"));
    library("Application Support/Studio/Foobar/x");
    EXPECT_THAT(found("Acme Studio Foobar", support()), Contains(support() + "/Studio/Foobar"));
}

TEST_F(LeftoversTest, ANameWithoutTokensFindsNothingAndOpensNothing) {
    library("Application Support/Foo/x");
    EXPECT_THAT(found("Foo Pro", support()), IsEmpty());
    EXPECT_THAT(files.looked(), IsEmpty());
}

TEST_F(LeftoversTest, TheFirstHiddenEntryEndsTheSearch) {
    library("Application Support/foobar/x");
    library("Application Support/acme/foobar/x");
    library("Application Support/.DS_Store");
    files.listingOf[support()] = {"acme", ".DS_Store", "foobar"};
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/acme/foobar"));
    files.listingOf[support()] = {".DS_Store", "acme", "foobar"};
    EXPECT_THAT(found("Foobar", support()), IsEmpty());
    files.listingOf[support()] = {"acme", "foobar", ".DS_Store"};
    EXPECT_THAT(found("Foobar", support()),
                ElementsAre(support() + "/acme/foobar", support() + "/foobar"));
}

TEST_F(LeftoversTest, ThreeHundredOpenedFoldersEndTheSearch) {
    std::vector<std::string> names;
    for (int number = 0; number < 300; ++number) {
        names.push_back("folder" + std::to_string(1000 + number));
        home.folder("Library/Application Support/" + names.back());
    }
    library("Application Support/" + names.back() + "/foobar/x");
    library("Application Support/last/foobar/x");
    library("Application Support/foobar/x");
    names.push_back("last");
    names.push_back("foobar");
    files.listingOf[support()] = names;
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/folder1299/foobar"));
    EXPECT_THAT(found("Foobar", support(), 301),
                ElementsAre(support() + "/folder1299/foobar", support() + "/last/foobar"));
    // What is taken whole is not opened and does not count.
    files.listingOf[support()] = {"foobar", "last"};
    EXPECT_THAT(found("Foobar", support(), 1),
                ElementsAre(support() + "/foobar", support() + "/last/foobar"));
}

TEST_F(LeftoversTest, UnreadableRootsAndFoldersContributeNothing) {
    library("Application Support/acme/foobar/x");
    library("Application Support/foobar/x");
    files.listingOf[support()] = {"acme", "foobar"};
    files.unlistable.insert(support() + "/acme");
    EXPECT_THAT(found("Foobar", support()), ElementsAre(support() + "/foobar"));
    EXPECT_THAT(found("Foobar", home.path("nothing")), IsEmpty());
}

TEST_F(LeftoversTest, AllThreeRootsAreSearched) {
    const AppEntry entry = entryOf("Foobar");
    const std::string paths[] = {library("Application Support/Acme/Foobar"),
                                 library("Caches/Acme/Foobar"), library("Logs/Acme/Foobar")};
    const auto items = itemsOf(analyzed(entry));
    ASSERT_EQ(items.size(), 4u);
    const char* const cats[] = {"support", "caches", "logs"};
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(items[index + 1]["path"], paths[index]);
        EXPECT_EQ(items[index + 1]["cat"], cats[index]);
        EXPECT_EQ(items[index + 1]["conf"], "possible");
    }
}

// Expansion

TEST_F(LeftoversTest, APrefixStandsForTheFirstTwelveEntriesByName) {
    for (char letter = 'o'; letter >= 'a'; --letter)
        library(std::string("Logs/Foo_") + letter);
    library("Logs/Foobar");
    library("Logs/foo_a");
    const Candidate candidate{.path = home.path("Library/Logs/Foo_"),
                              .cat = "logs",
                              .conf = Conf::possible,
                              .prefix = true};
    const auto expanded = Leftovers::expand(files, candidate);
    ASSERT_EQ(expanded.size(), 12u);
    EXPECT_EQ(expanded.front(),
              (Candidate{
                  .path = home.path("Library/Logs/Foo_a"), .cat = "logs", .conf = Conf::possible}));
    EXPECT_EQ(expanded.back().path, home.path("Library/Logs/Foo_l"));
    EXPECT_EQ(Leftovers::expand(files, candidate, 2).size(), 2u);
}

TEST_F(LeftoversTest, APlainCandidateIsItself) {
    const Candidate candidate{.path = "/nothing", .cat = "logs", .admin = true};
    EXPECT_THAT(Leftovers::expand(files, candidate), ElementsAre(candidate));
}

TEST_F(LeftoversTest, APrefixWithoutAFolderOrWithoutLettersStandsForNothing) {
    for (const char* path : {"noslash", "/atroot", "", "/"}) {
        EXPECT_THAT(Leftovers::expand(files, {.path = path, .prefix = true}), IsEmpty()) << path;
    }
    EXPECT_THAT(Leftovers::expand(files, {.path = home.path("Library/"), .prefix = true}),
                IsEmpty());
    EXPECT_THAT(Leftovers::expand(files, {.path = home.path("nothing/a"), .prefix = true}),
                IsEmpty());
}

}  // namespace
}  // namespace velto
