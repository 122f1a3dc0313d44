// A removal that is cut off, or that meets an error, at every single call that changes the disk:
// each item is whole at its place or gone from it, and the result names what is left.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "UninstallWorld.h"
#include "platform/values/uuid.h"
#include "support/tree_text.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;
namespace fs = std::filesystem;

class RemovalWorld : public UninstallWorld {
public:
    /// With the folder for what is being deleted on the volume of `elsewhere`, unless that is
    /// empty.
    explicit RemovalWorld(const std::string& elsewhere = "") {
        if (!elsewhere.empty()) {
            other.emplace(elsewhere);
            machine.platform.layout.removalFolder = other->path("Removing");
        }
        put(application("Foobar") + "/Contents/MacOS/Foobar", "program");
        entry = *apps.readApp(home.path("Applications/Foobar.app"));
        library("Caches/com.example.foobar/a/b", "cache");
        library("Caches/com.example.foobar/c", "cache");
        home.link("Library/Caches/com.example.foobar/link", home.folder("Pictures"));
        home.text("Pictures/photo.jpg", "photo");
        home.folder("Library/Caches/com.example.foobar/empty");
        library("Preferences/com.example.foobar.plist", "settings");
        paths = {entry.path, home.path("Library/Caches/com.example.foobar"),
                 home.path("Library/Preferences/com.example.foobar.plist")};
        for (const std::string& path : paths)
            whole.push_back(treeText(path));
        calls.count = 0;
    }

    AppRemover::Result run() { return remover.uninstall(entry, paths); }

    /// True when nothing is there any more.
    bool isGone(std::size_t index) const { return !fs::exists(fs::symlink_status(paths[index])); }
    bool isWhole(std::size_t index) const { return treeText(paths[index]) == whole[index]; }
    /// Nothing of the program's own making lies about.
    bool isTidy() const {
        for (const fs::path& folder :
             {fs::path(machine.platform.layout.removalFolder),
              fs::path(home.path("Library/Caches")), fs::path(home.path("Library/Preferences")),
              fs::path(home.path("Applications"))}) {
            if (!fs::exists(folder)) continue;
            for (const auto& item : fs::directory_iterator(folder)) {
                const std::string name = item.path().filename();
                const bool isItsFolder = folder == machine.platform.layout.removalFolder;
                if (isItsFolder || name.starts_with(".velto")) return false;
            }
        }
        return true;
    }

    std::optional<TempHome> other;
    AppEntry entry;
    std::vector<std::string> paths;
    std::vector<std::string> whole;
};

void dieEverywhere(const std::string& elsewhere) {
    int points = 0;
    for (const Action action : {Action::dieBefore, Action::dieAfter}) {
        bool isComplete = false;
        for (int at = 0; !isComplete; ++at) {
            SCOPED_TRACE(testing::Message() << "call " << at);
            RemovalWorld world(elsewhere);
            const pid_t child = fork();
            if (child == 0) {
                world.calls.action = action;
                world.calls.at = at;
                world.run();
                _exit(0);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status));
            ASSERT_THAT(WEXITSTATUS(status), testing::AnyOf(0, WatchedFileCalls::died));
            isComplete = WEXITSTATUS(status) == 0;
            for (std::size_t index = 0; index < world.paths.size(); ++index) {
                EXPECT_TRUE(world.isGone(index) || world.isWhole(index)) << world.paths[index];
            }
            EXPECT_EQ(world.home.read("Pictures/photo.jpg"), "photo");
            // The next run takes away what this one has left.
            world.remover.uninstall(world.entry, {});
            EXPECT_TRUE(world.isTidy());
            if (testing::Test::HasFailure()) return;
            ++points;
        }
    }
    EXPECT_GT(points, 20) << "the calls are not counted";
}

TEST(RemovalCrash, WhereverItDiesEachItemIsWholeOrGoneAndTheNextRunFinishes) { dieEverywhere(""); }

TEST(RemovalCrash, TheSameWhereTheRemovalFolderIsOnAnotherVolume) {
    if (!UninstallWorld::hasTwoVolumes()) {
        GTEST_SKIP() << "memory and build folder are one volume here";
    }
    dieEverywhere(buildVolume());
}

void failEverywhere(const std::string& elsewhere, Action action, const std::vector<int>& errors) {
    for (const int error : errors) {
        bool isComplete = false;
        for (int at = 0; !isComplete; ++at) {
            SCOPED_TRACE(testing::Message() << "error " << error << " at call " << at);
            RemovalWorld world(elsewhere);
            world.calls.action = action;
            world.calls.error = error;
            world.calls.at = at;
            const auto result = world.run();
            isComplete = world.calls.count <= at;
            int gone = 0;
            for (std::size_t index = 0; index < world.paths.size(); ++index) {
                EXPECT_TRUE(world.isGone(index) || world.isWhole(index)) << world.paths[index];
                gone += world.isGone(index) ? 1 : 0;
            }
            EXPECT_EQ(result.removed + static_cast<int>(result.failures.size()), 3);
            for (const auto& failure : result.failures) {
                EXPECT_TRUE(fs::exists(fs::symlink_status(failure.path)))
                    << failure.path << " is named as left, and is not there";
            }
            EXPECT_GE(gone, result.removed);
            EXPECT_EQ(world.home.read("Pictures/photo.jpg"), "photo");
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(RemovalFault, WhateverFailsEachItemIsWholeOrGoneAndTheResultNamesTheRest) {
    failEverywhere("", Action::fail, {EIO, EACCES, EBUSY});
}

TEST(RemovalFault, TheSameWhenADoneCallIsReportedAsFailed) {
    failEverywhere("", Action::doThenFail, {EIO, ENOENT, EEXIST});
}

TEST(RemovalFault, TheSameWhereTheRemovalFolderIsOnAnotherVolume) {
    if (!UninstallWorld::hasTwoVolumes()) {
        GTEST_SKIP() << "memory and build folder are one volume here";
    }
    failEverywhere(buildVolume(), Action::fail, {EIO, EACCES, EBUSY});
}

TEST(RemovalFault, TheSameWhenADoneCallIsReportedAsFailedOnAnotherVolume) {
    if (!UninstallWorld::hasTwoVolumes()) {
        GTEST_SKIP() << "memory and build folder are one volume here";
    }
    failEverywhere(buildVolume(), Action::doThenFail, {EIO, ENOENT, EEXIST});
}

TEST(RemovalSweep, ARecordThatNamesSomethingElseDeletesNothing) {
    RemovalWorld world;
    const std::string folder = world.machine.platform.layout.removalFolder;
    const std::string one = newUUID(), two = newUUID(), three = newUUID();
    const std::string far = world.disk.path(".velto-removing-" + three);
    world.put(folder + "/" + one + ".path", world.home.path("Pictures/photo.jpg"));
    world.put(folder + "/" + two + ".path", world.home.path("Pictures/.velto-removing-" + one));
    world.put(world.home.path("Pictures/.velto-removing-" + one), "not of this record");
    world.put(folder + "/" + three + ".path", far);
    world.put(far, "outside the home");
    world.remover.uninstall(world.entry, {});
    EXPECT_TRUE(world.home.exists("Pictures/photo.jpg"));
    EXPECT_TRUE(world.home.exists("Pictures/.velto-removing-" + one));
    EXPECT_TRUE(fs::exists(far));
    EXPECT_TRUE(fs::is_empty(folder)) << "the records themselves go";
}

TEST(RemovalFault, APathBehindAnErrorHasItsReason) {
    const auto reasonFor = [](int error) {
        RemovalWorld world;
        world.library("Application Support/Velto/Removing/.keep");  // so that nothing is made first
        int call = 0;
        world.calls.before = [&](const char* what, const char*) {
            if (std::string(what) != "rename") return;
            world.calls.action = Action::fail;
            world.calls.at = world.calls.count;
            ++call;
        };
        world.calls.error = error;
        const auto result = world.run();
        return result.failures.empty() ? std::string("none") : result.failures.front().reason;
    };
    EXPECT_EQ(reasonFor(EACCES), "perm");
    EXPECT_EQ(reasonFor(EPERM), "perm");
    EXPECT_EQ(reasonFor(EBUSY), "busy");
    EXPECT_EQ(reasonFor(ETXTBSY), "busy");
    EXPECT_EQ(reasonFor(EIO), "other");
}

}  // namespace
}  // namespace velto
