#include "uninstall/Leftovers.h"

#include <mutex>
#include <set>

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "UninstallWorld.h"
#include "platform/privacy_gate.h"
#include "support/WatchedFiles.h"

namespace velto {
namespace {

using testing::ElementsAre;

class LeftoversTest : public testing::Test, protected UninstallWorld {
protected:
    AppEntry entryOf(const std::string& name) {
        AppEntry entry = *apps.readApp(application(name));
        entry.team = team;
        return entry;
    }
    nlohmann::json analyzed(const AppEntry& entry) {
        return Leftovers::analyze(machine.platform, apps, entry, hasAccess,
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
    std::string support() const { return home.path("Library/Application Support"); }

    std::string team;
    bool hasAccess = true;
    std::vector<std::string> progress;
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

TEST_F(LeftoversTest, AnApplicationSignedByNobodyHasNoTeamAndNoGroupContainers) {
    AppEntry entry = entryOf("Foobar");
    machine.tools.result.standardError = "Signature=adhoc\nTeamIdentifier=not set\n";
    entry.team = apps.teamID(entry.path).value_or("");
    for (const char* name :
         {".com.example.foobar", "not set.com.example.foobar", ".other", "com.example.foobar"})
        library("Group Containers/" + std::string(name) + "/x");
    const auto analysis = analyzed(entry);
    EXPECT_EQ(analysis["team"], "");
    EXPECT_THAT(pathsOf(analysis), ElementsAre(entry.path));
}

TEST_F(LeftoversTest, ALinkIsMeasuredByWhatItsRemovalWouldDelete) {
    const AppEntry entry = entryOf("Foobar");
    home.file("Elsewhere/data/x", 2'000'000);
    home.link("Library/Caches/com.example.foobar", home.path("Elsewhere/data"));
    home.file("Pictures/photo.jpg", 3'000'000);
    home.link("Library/Logs/com.example.foobar", home.path("Pictures"));
    home.link("Library/WebKit/com.example.foobar", disk.path());
    disk.file("x", 3'000'000);
    // Inside of what is chosen a link is only a link.
    home.link("Library/Application Support/com.example.foobar/link", home.path("Elsewhere/data"));
    std::vector<std::pair<std::string, double>> sizes;
    for (const auto& item : itemsOf(analyzed(entry)))
        sizes.emplace_back(item["cat"], item["gb"]);
    EXPECT_THAT(sizes,
                testing::UnorderedElementsAre(std::pair("app", 0.0), std::pair("support", 0.0),
                                              std::pair("caches", 0.002), std::pair("web", 0.0),
                                              std::pair("logs", 0.0)));
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
    // Whatever the order in which the volume lists them, the thirteenth by name is meant.
    const AppEntry entry = entryOf("Foobar");
    std::vector<std::string> names;
    for (int day = 24; day >= 10; --day) {
        names.push_back("Foobar_2024-05-" + std::to_string(day) + ".ips");
        library("Logs/DiagnosticReports/" + names.back(), "x");
    }
    auto listing = std::make_unique<WatchedFiles>(std::make_unique<PosixFileManager>());
    listing->listingOf[home.path("Library/Logs/DiagnosticReports")] = names;
    machine.platform.files = std::move(listing);
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

// Folders that the system guards

/// Keeps which folders were opened below the home. A walk opens them from several threads.
class OpenedFolders final : public DirectoryReader {
public:
    explicit OpenedFolders(std::unique_ptr<DirectoryReader> reader) : reader_(std::move(reader)) {}

    std::shared_ptr<OpenFolder> open(const std::string& path) override {
        {
            const std::lock_guard guard(lock_);
            paths_.push_back(path);
        }
        return reader_->open(path);
    }
    std::shared_ptr<OpenFolder> openChild(OpenFolder& parent, std::string_view name) override {
        return reader_->openChild(parent, name);
    }
    bool read(OpenFolder& folder, const ReadOptions& options, EntryList& entries) override {
        return reader_->read(folder, options, entries);
    }
    bool status(OpenFolder& folder, std::string_view name, FolderStatus& status) override {
        return reader_->status(folder, name, status);
    }

    std::vector<std::string> paths() const {
        const std::lock_guard guard(lock_);
        return paths_;
    }

private:
    std::unique_ptr<DirectoryReader> reader_;
    mutable std::mutex lock_;
    std::vector<std::string> paths_;
};

class LeftoversBehindTheGateTest : public LeftoversTest {
protected:
    LeftoversBehindTheGateTest() {
        team = "TEAM";
        library("Containers/com.example.foobar/data");
        library("Group Containers/TEAM.com.example.foobar/data");
        library("Group Containers/TEAM.shared/data");
        library("Application Support/com.apple.TCC/foobar");
        library("Application Support/Acme/foobar");
        home.file("Library/Caches/com.example.foobar/x", 2'000'000);
        auto watched = std::make_unique<WatchedFiles>(std::move(machine.platform.files));
        files = watched.get();
        machine.platform.files = std::move(watched);
        auto kept = std::make_unique<OpenedFolders>(std::move(machine.platform.directories));
        reader = kept.get();
        machine.platform.directories = std::move(kept);
    }

    WatchedFiles* files = nullptr;
    OpenedFolders* reader = nullptr;
};

TEST_F(LeftoversBehindTheGateTest, WithoutAccessNothingThereIsListedOrMeasured) {
    const AppEntry entry = entryOf("Foobar");
    hasAccess = false;
    const auto analysis = analyzed(entry);
    EXPECT_THAT(pathsOf(analysis),
                testing::UnorderedElementsAre(
                    entry.path, home.path("Library/Containers/com.example.foobar"),
                    home.path("Library/Group Containers/TEAM.com.example.foobar"),
                    support() + "/Acme/foobar", home.path("Library/Caches/com.example.foobar")))
        << "what is known by its name is a leftover all the same";
    EXPECT_EQ(analysis["certain"], 0.002) << "of the cache";
    std::set<std::string> looked = files->listed();
    const auto opened = reader->paths();
    looked.insert(opened.begin(), opened.end());
    EXPECT_THAT(looked, testing::Contains(support() + "/Acme"));
    for (const std::string& path : looked)
        EXPECT_FALSE(isBehindPrivacyGate(machine.platform.layout, path)) << path;
}

TEST_F(LeftoversBehindTheGateTest, WithAccessAllOfItIsFound) {
    const auto paths = pathsOf(analyzed(entryOf("Foobar")));
    EXPECT_THAT(paths, testing::IsSupersetOf({home.path("Library/Group Containers/TEAM.shared"),
                                              support() + "/com.apple.TCC/foobar"}));
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

}  // namespace
}  // namespace velto
