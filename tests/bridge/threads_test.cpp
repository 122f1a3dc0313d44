#include "bridge/BridgeFixture.h"
#include "support/ThreadDispatcher.h"

namespace velto {
namespace {

/// The bridge with real threads: what a thread sanitizer has to see.
struct Threads : BridgeFixture {
    ThreadDispatcher& threads = install<ThreadDispatcher>(machine.platform.dispatcher);

    void fillHome() {
        for (int folder = 0; folder < 20; ++folder) {
            for (int file = 0; file < 20; ++file) {
                machine.home.text("Music/" + std::to_string(folder) + "/" + std::to_string(file),
                                  "content");
            }
        }
        machine.home.file("a.bin", 2_MB);
    }
};

TEST_F(Threads, AnAnalysisReachesThePageWhileIntentsArrive) {
    fillHome();
    open();
    load();
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
    open();
    load();
    const CancellationFlag task = *bridge->scanTask;
    bridge.reset();
    page.reset();
    EXPECT_TRUE(task.isCancelled());
    threads.join();
}

TEST_F(Threads, AResetDuringAnAnalysisLeavesNoHalfState) {
    fillHome();
    open();
    load();
    post("resetVelto");
    threads.runMainUntil([&] { return !bridge->scanRunning && count("toast") > 0; });
    EXPECT_EQ(count("onScanFinished"), 1u);
}

}  // namespace
}  // namespace velto
