#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "bridge/JSBridge.h"
#include "support/FakeWebView.h"
#include "support/TestPlatform.h"

namespace velto {

/// A bridge over a made home, with its page and its queues in the test's hands.
struct BridgeFixture : testing::Test {
    TestPlatform machine;
    VeltoSettings settings{machine.defaults, machine.locale};
    AppLanguage language{settings};
    ExclusionService exclusions{*machine.platform.files, machine.platform.layout};
    VeltoTrashService trash{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
    HistoryService history{*machine.platform.files, *machine.platform.mover, machine.log,
                           machine.platform.layout};
    CloudFolder cloud{*machine.platform.files, *machine.platform.mover, machine.log,
                      machine.platform.layout};
    std::unique_ptr<CleanupQueue> cleanups;
    UninstallGate uninstalls;
    AppUsage usage{machine.platform};
    FakeApplicationShell shell;
    std::shared_ptr<FakeWebView> page = std::make_shared<FakeWebView>();
    std::shared_ptr<JSBridge> bridge;
    int questions = 0;                     // whether notifications may be shown
    std::optional<WorkProgress> progress;  // where a test looks at the task bar; before `open`

    /// Makes the bridge and attaches the page, as opening the window does. The trash is read by the
    /// time that the page has loaded.
    void open() {
        cleanups = std::make_unique<CleanupQueue>(
            *machine.platform.dispatcher,
            CleanupServices{.trash = trash, .history = history, .cloud = cloud}, progress);
        openAnother();
        if (auto* queues = dynamic_cast<FakeDispatcher*>(machine.platform.dispatcher.get())) {
            queues->runAll();
        }
    }

    void openAnother() {
        bridge =
            std::make_shared<JSBridge>(BridgeContext{.platform = machine.platform,
                                                     .settings = settings,
                                                     .language = language,
                                                     .exclusions = exclusions,
                                                     .shell = shell,
                                                     .usage = usage,
                                                     .cleanups = *cleanups,
                                                     .uninstalls = uninstalls,
                                                     .askToNotify = [this] { ++questions; },
                                                     .progress = progress ? &*progress : nullptr,
                                                     .version = "1.2.3",
                                                     .smallestFurther = 1});
        bridge->attach(page);
    }

    void load() { bridge->applyBootState(); }

    /// Saves an analysis as an earlier run of the program would have.
    void saveAnalysis(double ts) {
        DiskState state;
        state.total = 500;
        state.free = 100;
        state.ser = 62;
        state.cats.push_back({.id = "fotos", .name = "Fotos y vídeo", .gb = 1.5});
        ScanCache(*machine.platform.files, machine.platform.layout).save(state, ts);
    }

    void post(const char* type) { page->post({{"type", type}}); }
    void post(const char* type, const nlohmann::json& payload) {
        page->post({{"type", type}, {"payload", payload}});
    }

    std::size_t count(const char* callback) const { return page->calls(callback).size(); }
};

}  // namespace velto
