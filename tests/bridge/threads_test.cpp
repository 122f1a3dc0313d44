#include "bridge/AppsFixture.h"
#include "support/ThreadDispatcher.h"

namespace velto {
namespace {

/// The bridge with real threads: what a thread sanitizer has to see.
struct Threads : BridgeFixture {
    ThreadDispatcher& threads = install<ThreadDispatcher>(machine.platform.dispatcher);

    // The monitor of a window that closes ends on another thread.
    Threads() { machine.platform.makeQueue = makeSerialQueue; }

    void fillHome() {
        for (int folder = 0; folder < 20; ++folder) {
            for (int file = 0; file < 20; ++file) {
                machine.home.text("Music/" + std::to_string(folder) + "/" + std::to_string(file),
                                  "content");
            }
        }
        machine.home.file("a.bin", 2_MB);
    }

    /// Opens the window on a home that was never analysed, up to the start of the first analysis.
    void start() {
        open();
        load();
        threads.runMainUntil([&] { return bridge->scanRunning; });
    }
};

TEST_F(Threads, AnAnalysisReachesThePageWhileIntentsArrive) {
    fillHome();
    start();
    for (int number = 0; number < 50; ++number) {
        post("addExclusion", machine.home.path("Music/" + std::to_string(number)));
        post("settings", {{"retention", number + 1}});
    }
    threads.runMainUntil([&] { return !bridge->scanRunning; });
    EXPECT_EQ(count("onScanFinished"), 1u);
    EXPECT_EQ(bridge->bootState->state.settings.retention, 50);
}

TEST_F(Threads, ClosingTheWindowDuringAnAnalysisEndsIt) {
    fillHome();
    start();
    const CancellationFlag task = *bridge->scanTask;
    bridge.reset();
    page.reset();
    EXPECT_TRUE(task.isCancelled());
    threads.join();
}

TEST_F(Threads, AWindowThatIsClosedAndOpenedAgainDuringLiveSamplingSharesTheMachineWithItself) {
    machine.platform.activity.set(true);
    open();
    for (int window = 0; window < 3; ++window) {
        page->scripts.clear();
        post("systemWatch", {{"on", true}});
        threads.runMainUntil([&] { return count("onSystem") > 0; });
        bridge.reset();  // its monitor may be at its last sample while the next takes its first
        openAnother();
    }
    threads.join();
}

TEST_F(Threads, AResetDuringAnAnalysisLeavesNoHalfState) {
    fillHome();
    start();
    post("resetVelto");
    threads.runMainUntil([&] { return !bridge->scanRunning && count("toast") > 0; });
    EXPECT_EQ(count("onScanFinished"), 1u);
}

TEST_F(Threads, CleanupsUndosAndResetsAskedForAtOnceAreDoneOneAfterTheOther) {
    fillHome();
    start();
    threads.runMainUntil([&] { return !bridge->scanRunning; });
    for (int number = 0; number < 10; ++number) {
        const std::string folder = machine.home.path("Music/" + std::to_string(number));
        post("deleteFiles", {{"paths", {folder}}});
        post("scanCleanables");
        bridge->refreshTrash();
        if (number % 2 == 1) post("undoLast");
    }
    post("clearHistory");
    post("moveCloud", {{"paths", {machine.home.path("a.bin")}}});
    threads.runMainUntil([&] { return count("onCloudMove") == 1; });
    threads.runMainUntil([&] { return count("onCleanables") == 10; });
    threads.join();
    EXPECT_EQ(count("toast"), 10u);
    EXPECT_EQ(trash.items().size(), 5u);
    EXPECT_TRUE(history.entries().empty());
    for (int number = 0; number < 10; ++number) {
        EXPECT_EQ(machine.home.exists("Music/" + std::to_string(number)), number % 2 == 1);
    }
}

TEST_F(Threads, AWindowClosedInTheMiddleOfACleanupLosesNothing) {
    fillHome();
    start();
    threads.runMainUntil([&] { return !bridge->scanRunning; });
    for (int number = 0; number < 10; ++number) {
        post("deleteFiles", {{"paths", {machine.home.path("Music/" + std::to_string(number))}}});
    }
    bridge.reset();
    page.reset();
    threads.join();
    int left = 0;
    for (int number = 0; number < 10; ++number) {
        left += machine.home.exists("Music/" + std::to_string(number)) ? 1 : 0;
    }
    EXPECT_EQ(trash.items().size() + static_cast<std::size_t>(left), 10u);
    EXPECT_EQ(history.entries().size(), trash.operations().size());
}

/// The same with applications; the queues of `AppsFixture` are real here too.
struct AppThreads : AppsFixture {
    ThreadDispatcher& threads = install<ThreadDispatcher>(machine.platform.dispatcher);

    AppThreads() { machine.platform.makeQueue = makeSerialQueue; }

    std::vector<std::string> applications(int count) {
        std::vector<std::string> paths;
        for (int number = 0; number < count; ++number) {
            const std::string name = std::to_string(number);
            paths.push_back(application("App" + name, "com.example.app" + name));
            machine.home.text("Library/Caches/com.example.app" + name, "cache");
        }
        return paths;
    }
};

TEST_F(AppThreads, ApplicationsAreListedAnalysedAndRemovedWhileTheyAreUsed) {
    const std::vector<std::string> paths = applications(10);
    const std::string kept = application("Kept", "com.example.kept");
    for (std::size_t index = 0; index < paths.size(); ++index) {
        post("appsList");
        post("appAnalysis", {{"path", kept}});
        post("uninstall", {{"path", paths[index]}, {"paths", {paths[index]}}});
        post("uninstall", {{"path", paths[index]}, {"paths", {paths[index]}}});  // refused
        bridge->refreshTrash();
        usage.record("com.example.app0", 1'600'000'000 + static_cast<double>(index));
        threads.runMainUntil([&] {
            return count("onUninstallResult") == index + 1 && count("onApps") == index + 1 &&
                   count("onAppAnalysis") == index + 1 && !bridge->appsMeasuring;
        });
    }
    post("resetVelto");
    post("appsList");
    usage.record("com.example.app0", 1'700'000'000);
    threads.join();
    EXPECT_EQ(count("onUninstallResult"), paths.size());
    for (std::size_t index = 0; index < paths.size(); ++index)
        EXPECT_FALSE(machine.platform.files->exists(paths[index])) << paths[index];
}

TEST_F(AppThreads, AWindowClosedInTheMiddleOfAnUninstallLosesNoEntry) {
    const std::vector<std::string> paths = applications(2);
    std::size_t removed = 0;
    for (const std::string& path : paths) {
        post("uninstall", {{"path", path}, {"paths", {path}}});
        threads.runMainUntil([&] { return count("onUninstallProgress") > 0; });
        bridge.reset();
        openAnother();
        post("uninstall", {{"path", path}, {"paths", {path}}});  // refused, unless it is over
        threads.join();
        ++removed;
        EXPECT_FALSE(machine.platform.files->exists(path));
        EXPECT_EQ(history.entries().size(), removed);
        bridge.reset();
        openAnother();
        page->scripts.clear();
    }
    threads.join();  // what the last window has asked for needs the services of the fixture
}

}  // namespace
}  // namespace velto
