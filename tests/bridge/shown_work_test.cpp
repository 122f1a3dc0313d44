// What runs is shown in the task bar while it takes its time, and taken away however it ends.
#include <utility>

#include "bridge/AppsFixture.h"
#include "platform/posix/PosixFileManager.h"
#include "support/FakeTaskBar.h"
#include "support/WatchedFileCalls.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ShownWork : AppsFixture {
    void SetUp() override {
        progress.emplace(machine.dispatcher, machine.clock).show(&taskBar);
        AppsFixture::SetUp();
    }

    /// Time passes in which no work comes to its end.
    void wait(double seconds = 2) {
        machine.dispatcher.runMain();
        machine.clock.time += seconds;
        machine.dispatcher.advance(seconds);
    }

    FakeTaskBar taskBar;
};

TEST_F(ShownWork, AnAnalysisUntilItHasEnded) {
    post("scan");
    wait();
    EXPECT_THAT(taskBar.told, ElementsAre("busy"));
    machine.dispatcher.runAll();
    EXPECT_FALSE(bridge->scanRunning);
    EXPECT_THAT(taskBar.told, ElementsAre("busy", "hidden"));
}

TEST_F(ShownWork, AnAnalysisUntilItIsStopped) {
    post("scan");
    wait();
    post("stopAnalysis");
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onAnalysisStopped"), 1U);
    EXPECT_THAT(taskBar.told, ElementsAre("busy", "hidden"));
}

TEST_F(ShownWork, AnAnalysisUntilItsWindowIsClosed) {
    post("scan");
    wait();
    bridge.reset();
    machine.dispatcher.runMain();
    EXPECT_THAT(taskBar.told, ElementsAre("busy", "hidden"));
}

TEST_F(ShownWork, ARemovalAndOneThatFails) {
    machine.home.file("Documents/a.txt", 100);
    for (const char* const path : {"Documents/a.txt", "nowhere/b.txt"}) {
        taskBar.told.clear();
        post("cleanPaths", {{"paths", {machine.home.path(path)}}});
        wait();
        EXPECT_THAT(taskBar.told, ElementsAre("busy")) << path;
        machine.dispatcher.runAll();
        EXPECT_THAT(taskBar.told, ElementsAre("busy", "hidden")) << path;
    }
}

TEST_F(ShownWork, AnUninstallWithHowMuchOfItIsDone) {
    const std::string path = application("Notes", "com.example.notes");
    machine.running.add({.bundlePath = path}).ignoresTerminate = true;
    machine.sleeper.onSleep = [this, isOver = false]() mutable {
        if (!std::exchange(isOver, true)) wait();
    };
    post("uninstall", {{"path", path}, {"paths", {path}}});
    machine.dispatcher.runAll();
    ASSERT_FALSE(machine.platform.files->exists(path));
    ASSERT_EQ(taskBar.told.size(), 2U);
    EXPECT_THAT(taskBar.told[0], testing::EndsWith("%"));
    EXPECT_EQ(taskBar.told[1], "hidden");
}

/// A trash of three items of two cleanups, each of whose removals takes a second.
struct ShownDeletion : BridgeFixture {
    WatchedFileCalls calls;
    PosixFileManager files{calls};
    VeltoTrashService slowTrash{files, files, machine.clock, machine.log, machine.platform.layout};
    FakeTaskBar taskBar;

    void SetUp() override {
        progress.emplace(machine.dispatcher, machine.clock).show(&taskBar);
        cleanups = std::make_unique<CleanupQueue>(
            machine.dispatcher,
            CleanupServices{.trash = slowTrash, .history = history, .cloud = cloud}, progress);
        openAnother();
        load();
        machine.dispatcher.runAll();
        for (const char* name : {"a", "b", "c"})
            machine.home.text(std::string("Documents/") + name, name);
        slowTrash.moveToTrash({machine.home.path("Documents/a"), machine.home.path("Documents/b")},
                              "wind");
        slowTrash.moveToTrash({machine.home.path("Documents/c")}, "wind");
        page->scripts.clear();
        taskBar.told.clear();
        calls.before = [this](const char* call, std::string_view name) {
            if (std::string_view(call) != "remove" || !name.starts_with("it")) return;
            machine.dispatcher.runMain();
            machine.clock.time += 1;
            machine.dispatcher.advance(1);
        };
    }

    std::vector<std::string> emptyingTold() const {
        std::vector<std::string> told;
        for (const std::string& script : page->calls("onTrashEmptying"))
            told.push_back(script.substr(script.rfind('(')));
        return told;
    }
};

TEST_F(ShownDeletion, OfTheTrashWithHowManyItemsAreGone) {
    post("purgeTrash");
    machine.dispatcher.runAll();
    EXPECT_THAT(slowTrash.items(), IsEmpty());
    EXPECT_THAT(taskBar.told, ElementsAre("busy", "33%", "66%", "hidden"));
    EXPECT_THAT(emptyingTold(), ElementsAre("(1, 3);", "(2, 3);", "(3, 3);"));
}

TEST_F(ShownDeletion, OfTheTrashThatIsOverInAMomentWithoutAWord) {
    calls.before = nullptr;
    post("purgeTrash");
    machine.dispatcher.runAll();
    EXPECT_THAT(taskBar.told, IsEmpty());
    EXPECT_THAT(emptyingTold(), IsEmpty());
}

TEST_F(ShownDeletion, OfOneCleanupWithHowManyItemsAreGone) {
    post("purgeOperation", {{"id", slowTrash.operations().back().id}});
    post("purgeTrash");
    machine.dispatcher.runAll();
    EXPECT_THAT(taskBar.told, ElementsAre("busy", "50%", "busy", "hidden"))
        << "of the single item that was left nobody knows how much of it is gone";
}

TEST_F(ShownWork, NothingOfWhatIsOverInAMoment) {
    machine.home.file("Documents/a.txt", 100);
    post("cleanPaths", {{"paths", {machine.home.path("Documents/a.txt")}}});
    machine.dispatcher.runAll();
    wait();
    post("scan");
    machine.dispatcher.runAll();
    wait();
    EXPECT_THAT(taskBar.told, IsEmpty());
}

}  // namespace
}  // namespace velto
