#include "uninstall/AppRemover.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "UninstallWorld.h"
#include "cleaning/TrashRecords.h"
#include "support/made_property_list.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Failure = AppRemover::Failure;

class AppRemoverTest : public testing::Test, protected UninstallWorld {
protected:
    void SetUp() override {
        entry = *apps.readApp(application("Foobar"));
        put(entry.path + "/Contents/MacOS/Foobar", std::string(500'000, 'x'));
        machine.platform.userIdentifier = 501;
    }
    AppRemover::Result uninstall(const std::vector<std::string>& paths) {
        return remover.uninstall(
            entry, paths,
            [&](std::string_view stage, const std::optional<AppRemover::Item>& item,
                double percent) {
                steps.push_back({std::string(stage), percent});
                if (item) items.push_back(item->name + " " + item->path);
            },
            shown);
    }

    AppEntry entry;
    AppRemover::ShownTargets shown;
    std::vector<std::pair<std::string, double>> steps;
    std::vector<std::string> items;
};

// The whole

TEST_F(AppRemoverTest, TheApplicationAndWhatWasChosenAreDeletedAndNothingElse) {
    const std::string caches = library("Caches/com.example.foobar/a/b", "cache");
    const std::string kept = library("Caches/com.example.other/a");
    const std::string settings = library("Preferences/com.example.foobar.plist");
    const std::string folder = home.path("Library/Caches/com.example.foobar");
    const auto result = uninstall({folder, entry.path});
    EXPECT_EQ(result.name, "Foobar");
    EXPECT_EQ(result.removed, 2);
    EXPECT_EQ(result.closed, 0);
    EXPECT_EQ(result.freed, 0.001) << "half a megabyte, rounded";
    EXPECT_THAT(result.failures, IsEmpty());
    EXPECT_FALSE(isThere(entry.path));
    EXPECT_FALSE(isThere(folder));
    EXPECT_TRUE(isThere(kept));
    EXPECT_TRUE(isThere(settings));
    EXPECT_THAT(machine.platform.files->list(machine.platform.layout.removalFolder), IsEmpty());
}

TEST_F(AppRemoverTest, ProgressGoesThroughItsStages) {
    const std::string cache = library("Caches/com.example.foobar");
    const std::string log = library("Logs/com.example.foobar");
    uninstall({cache, log, entry.path});
    EXPECT_THAT(
        steps,
        ElementsAre(std::pair("stop", 3.0), std::pair("stop", 16.0), std::pair("stop", 20.0),
                    std::pair("files", 40.0), std::pair("files", 40.0), std::pair("files", 56.0),
                    std::pair("files", 72.0), std::pair("clean", 92.0), std::pair("done", 100.0)));
    EXPECT_THAT(items, ElementsAre("Foobar.app " + entry.path, "com.example.foobar " + cache,
                                   "com.example.foobar " + log));
}

TEST_F(AppRemoverTest, TheResultHasItsKeys) {
    EXPECT_EQ(toJson(AppRemover::Result{.name = "Foobar",
                                        .removed = 2,
                                        .freed = 0.5,
                                        .closed = 1,
                                        .failures = {{"x", "/x", "admin"}}}),
              nlohmann::json::parse(R"({"name": "Foobar", "removed": 2, "freed": 0.5, "closed": 1,
                "failures": [{"name": "x", "path": "/x", "reason": "admin"}]})"));
}

TEST_F(AppRemoverTest, NothingChosenIsNoHarm) {
    const auto result = uninstall({});
    EXPECT_EQ(result.removed, 0);
    EXPECT_EQ(steps.back(), std::pair(std::string("done"), 100.0));
    EXPECT_TRUE(isThere(entry.path));
}

TEST_F(AppRemoverTest, APathChosenTwiceIsDeletedOnce) {
    const std::string cache = library("Caches/com.example.foobar");
    const auto result = uninstall({cache, cache + "/", cache});
    EXPECT_EQ(result.removed, 1);
    EXPECT_THAT(result.failures, IsEmpty());
}

// What is not deleted

TEST_F(AppRemoverTest, NothingOutsideTheHomeIsEverDeleted) {
    const std::string bundlePath =
        bundle(systemApplications(), "Far.app", {{"CFBundleIdentifier", "com.example.far"}});
    const std::string daemon =
        agent(systemLibrary("LaunchDaemons/com.example.far.plist"), "com.example.far");
    entry = *apps.readApp(bundlePath);
    const auto result = uninstall({bundlePath, daemon});
    EXPECT_THAT(result.failures, ElementsAre(Failure{"Far.app", bundlePath, "admin"},
                                             Failure{"com.example.far.plist", daemon, "admin"}));
    EXPECT_EQ(result.removed, 0);
    EXPECT_TRUE(isThere(bundlePath));
    EXPECT_TRUE(isThere(daemon));
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: no se pudo quitar " + daemon + ": " +
                                  TrashError(TrashError::Reason::outsideHome).what()));
}

TEST_F(AppRemoverTest, WhatIsGoneMeanwhileIsReportedAsGone) {
    const std::string path = home.path("Library/Caches/com.example.foobar");
    const std::string deep = home.path("Library/NoSuchFolder/x");
    EXPECT_THAT(
        uninstall({path, deep}).failures,
        ElementsAre(Failure{"com.example.foobar", path, "gone"}, Failure{"x", deep, "gone"}));
}

TEST_F(AppRemoverTest, SharedAndProtectedFoldersStayAndAreReported) {
    const std::string mail = library("Mail/V10/x");
    home.file("Documents/thesis.pages", 1000);
    const std::vector<std::string> paths{
        home.path("Library/Caches"), mail,   home.path(),
        home.path("Documents"),      "/tmp", machine.platform.layout.dataFolder + "/history.json"};
    library("Application Support/Velto/history.json");
    const auto failures = uninstall(paths).failures;
    std::vector<std::string> told;
    for (const Failure& failure : failures)
        told.push_back(failure.reason + " " + failure.path);
    EXPECT_THAT(told, ElementsAre("protected " + paths[0], "protected " + paths[2], "admin /tmp",
                                  "protected " + paths[1], "protected " + paths[3],
                                  "protected " + paths[5]));
    EXPECT_TRUE(isThere(mail));
    EXPECT_TRUE(isThere(home.path("Documents/thesis.pages")));
    EXPECT_TRUE(isThere(paths[5]));
}

TEST_F(AppRemoverTest, WhatIsOutsideTheHomeIsOutOfReachEvenWhenItIsProtectedThere) {
    for (const char* path : {"/Users/other/Library/Mail", "/Users/other/Pictures/a.photoslibrary/x",
                             "/System/Library/x", "/Users/anaMail"}) {
        const auto failures = uninstall({path}).failures;
        ASSERT_EQ(failures.size(), 1u);
        EXPECT_EQ(failures[0].reason, "admin") << path;
    }
}

TEST_F(AppRemoverTest, AHomeThatCallsItselfAnApplicationIsNotDeleted) {
    for (const std::string& path : {home.path(), home.path("Library"), home.path("Documents")}) {
        put(path + "/Contents/Info.plist",
            xmlPropertyList(textDictionary({{"CFBundleIdentifier", "com.example.hostile"}})));
        entry = *apps.readApp(path);
        const auto result = uninstall({path});
        EXPECT_EQ(result.removed, 0) << path;
        EXPECT_TRUE(isThere(path + "/Contents/Info.plist"));
    }
}

// Links

TEST_F(AppRemoverTest, BelowTheChosenPathALinkIsRemovedAndItsTargetStays) {
    const std::string photo = home.file("Pictures/photo.jpg", 1000).path();
    library("Caches/com.example.foobar/data");
    home.link("Library/Caches/com.example.foobar/photo", photo);
    home.link("Library/Caches/com.example.foobar/pictures", home.path("Pictures"));
    EXPECT_EQ(uninstall({home.path("Library/Caches/com.example.foobar")}).removed, 1);
    EXPECT_TRUE(isThere(photo));
}

TEST_F(AppRemoverTest, TheChosenPathIsJudgedByWhatItLeadsTo) {
    const std::string elsewhere = home.text("Elsewhere/data/x", "x").path();
    home.link("Library/Caches/com.example.foobar", home.path("Elsewhere/data"));
    home.link("Library/Caches/far", "/etc");
    home.link("Library/Caches/documents", home.folder("Documents"));
    home.link("Library/Caches/shared", home.path("Library"));
    const std::string chosen = home.path("Library/Caches/com.example.foobar");
    shown[chosen] = home.path("Elsewhere/data");
    EXPECT_EQ(uninstall({chosen}).removed, 1);
    EXPECT_FALSE(isThere(elsewhere));
    const auto failures =
        uninstall({home.path("Library/Caches/far"), home.path("Library/Caches/documents"),
                   home.path("Library/Caches/shared")})
            .failures;
    ASSERT_EQ(failures.size(), 3u);
    EXPECT_EQ(failures[0].reason, "admin");
    EXPECT_EQ(failures[1].reason, "protected");
    EXPECT_EQ(failures[2].reason, "protected");
    EXPECT_TRUE(isThere(home.path("Documents")));
}

TEST_F(AppRemoverTest, AFolderSwappedForALinkWhileItIsDeletedLeadsNowhere) {
    // Before every single change that the removal makes, whatever is left of the chosen folder and
    // of the folder inside is swapped for a link to the photographs.
    const std::string photo = home.file("Pictures/photo.jpg", 1000).path();
    const std::string chosen = home.path("Library/Caches/com.example.foobar");
    const std::string staging = machine.platform.layout.removalFolder;
    for (int swapAt = 0; swapAt < 12; ++swapAt) {
        std::filesystem::remove_all(chosen);
        library("Caches/com.example.foobar/inner/data");
        library("Caches/com.example.foobar/more");
        int change = 0;
        calls.before = [&](const char*, const char*) {
            if (change++ != swapAt) return;
            std::vector<std::filesystem::path> folders{chosen};
            if (std::filesystem::is_directory(staging)) {
                for (const auto& item : std::filesystem::directory_iterator(staging))
                    folders.push_back(item.path());
            }
            for (const auto& folder : folders) {
                for (const auto& place : {folder / "inner", folder}) {
                    std::error_code ignored;
                    std::filesystem::rename(place, home.path("swapped"), ignored);
                    if (ignored) continue;
                    std::filesystem::create_directory_symlink(home.path("Pictures"), place);
                    std::filesystem::remove_all(home.path("swapped"));
                }
            }
        };
        uninstall({chosen});
        calls.before = nullptr;
        ASSERT_TRUE(isThere(photo)) << "swapped before change " << swapAt;
    }
}

// Quitting

TEST_F(AppRemoverTest, WhatDoesNotRunIsNotWaitedFor) {
    machine.running.add({.bundleIdentifier = "com.example.other", .bundlePath = "/x/Other.app"});
    EXPECT_EQ(remover.quitApp(entry), 0);
    EXPECT_EQ(machine.sleeper.sleeps, 0);
    EXPECT_THAT(machine.log.lines(), IsEmpty());
}

TEST_F(AppRemoverTest, TheApplicationAndItsHelpersAreQuit) {
    auto& byIdentifier =
        machine.running.add({.bundleIdentifier = entry.bid, .bundlePath = "/elsewhere/A.app"});
    auto& byPath = machine.running.add({.bundleIdentifier = "", .bundlePath = entry.path});
    auto& helper =
        machine.running.add({.bundleIdentifier = "com.example.helper",
                             .bundlePath = entry.path + "/Contents/Library/LoginItems/Helper.app"});
    auto& neighbour = machine.running.add(
        {.bundleIdentifier = "com.example.pro", .bundlePath = entry.path + "Pro.app"});
    auto& inner = machine.running.add(
        {.bundleIdentifier = "com.example.inner", .bundlePath = "/x" + entry.path});
    EXPECT_EQ(remover.quitApp(entry), 3);
    EXPECT_TRUE(byIdentifier.terminated && byPath.terminated && helper.terminated);
    EXPECT_FALSE(neighbour.terminated || inner.terminated);
    EXPECT_EQ(machine.sleeper.sleeps, 0) << "all had ended at the first look";
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: 3 procesos de Foobar cerrados"));
}

TEST_F(AppRemoverTest, OneThatDoesNotQuitIsForcedAfterTwoSecondsAndNotSooner) {
    auto& stubborn = machine.running.add({.bundleIdentifier = entry.bid});
    stubborn.ignoresTerminate = true;
    const double start = machine.clock.time;
    machine.sleeper.onSleep = [&] {
        EXPECT_EQ(stubborn.forced, 0) << machine.clock.time - start << " seconds";
    };
    EXPECT_EQ(remover.quitApp(entry), 1);
    EXPECT_EQ(stubborn.asked, 1);
    EXPECT_EQ(stubborn.forced, 1);
    EXPECT_EQ(machine.sleeper.sleeps, 14);  // of 150 ms each
    EXPECT_GE(machine.clock.time - start, 2.0);
}

TEST_F(AppRemoverTest, OneThatQuitsInTimeIsNotForced) {
    auto& slow = machine.running.add({.bundleIdentifier = entry.bid});
    slow.ignoresTerminate = true;
    machine.sleeper.onSleep = [&] { slow.terminated = machine.sleeper.sleeps == 3; };
    remover.quitApp(entry);
    EXPECT_EQ(slow.forced, 0);
    EXPECT_EQ(machine.sleeper.sleeps, 3);
}

TEST_F(AppRemoverTest, TheProgramNeverQuitsItself) {
    auto& own = machine.running.add(
        {.bundleIdentifier = entry.bid, .executable = machine.platform.executablePath});
    EXPECT_EQ(remover.quitApp(entry), 0);
    EXPECT_FALSE(own.terminated);
}

}  // namespace
}  // namespace velto
