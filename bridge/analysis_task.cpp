#include <atomic>
#include <exception>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "analysis/post_processing.h"
#include "bridge/FolderIntents.h"
#include "bridge/GrowthIntents.h"
#include "bridge/JSBridge.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/ScannerWithAccess.h"
#include "bridge/events.h"
#include "platform/background_priority.h"
#include "platform/values/units.h"

namespace velto {

void JSBridge::startAnalysis() {
    if (scanRunning) return;
    scanRunning = true;
    analysisBegun_ = lists_.mark();
    analysisExcluded_ = exclusions_.paths();
    evaluate(events::scanStarted());
    log("Velto ▶ análisis iniciado");
    if (progress_ != nullptr) analysisWork_ = progress_->begin();

    const CancellationFlag cancelled;
    scanTask = cancelled;
    Dispatcher& dispatcher = *platform_.dispatcher;
    const std::weak_ptr<JSBridge> weak = weak_from_this();
    // Back on the main thread, `finish` runs if the bridge still exists.
    const auto end = [&dispatcher, weak](std::function<void(JSBridge&)> finish) {
        dispatcher.main([weak, finish = std::move(finish)] {
            const auto bridge = weak.lock();
            if (bridge) finish(*bridge);
        });
    };
    const auto progress = [&dispatcher, weak](std::int64_t files, double gb) {
        dispatcher.main([weak, files, gb] {
            if (const auto bridge = weak.lock()) bridge->evaluate(events::scanProgress(files, gb));
        });
    };
    const auto comparing = [&dispatcher, weak](std::int64_t files, double gb) {
        dispatcher.main([weak, script = events::analysisPhase("comparing", files, gb)] {
            if (const auto bridge = weak.lock()) bridge->evaluate(script);
        });
    };
    const auto unwatched = std::make_shared<std::atomic<bool>>(false);
    analysisWatch_ = platform_.activity.observe(
        [unwatched, &activity = platform_.activity](bool) { *unwatched = activity.isLeft(); });
    dispatcher.global(QualityOfService::userInitiated, [scanner = scanner_, unwatched,
                                                        excluded = analysisExcluded_, cancelled,
                                                        end, progress, comparing] {
        try {
            const auto output = std::make_shared<AnalysisOutput>();
            runLettingOthersGoFirst(
                [&] { *output = scanner->scanner.scan(excluded, cancelled, progress, comparing); },
                unwatched);
            end([output](JSBridge& bridge) { bridge.finishAnalysis(*output); });
        } catch (const CancellationError&) {
            end([](JSBridge& bridge) { bridge.failAnalysis("Velto ▶ análisis cancelado"); });
        } catch (const std::exception& error) {
            const std::string line = fmt::format("Velto ▶ error de análisis: {}", error.what());
            end([line](JSBridge& bridge) { bridge.failAnalysis(line); });
        }
    });
}

/// The state stays as it is. Nothing when no analysis runs.
void JSBridge::onStopAnalysis(const Payload&) {
    if (!scanTask) return;
    scanTask->cancel();
    pendingAccessRescan = false;  // whoever stops one does not want the next
}

/// Takes the analysis over and has it saved; the page hears of it after that. It cannot be stopped
/// any more.
void JSBridge::finishAnalysis(const AnalysisOutput& output) {
    // Stopped in its last moment: it ends as if it had been noticed.
    if (scanTask->isCancelled()) {
        failAnalysis("Velto ▶ análisis cancelado");
        return;
    }
    const double now = platform_.clock->now();
    bootState = BootState{.state = {.total = output.total,
                                    .free = output.free,
                                    .ser = freeSpaceScore(output.free, output.total),
                                    .cats = output.cats,
                                    .files = output.files,
                                    .dupGroups = output.dupGroups,
                                    .history = history_,
                                    .settings = settings_.record(),
                                    .protected_ = output.protectedLocations},
                          .stamp = now};
    lists_.replace(bootState->state, analysisBegun_);
    lists_.show(bootState->state);  // without what has left while the walk was on its way
    needsFirstScan = false;
    scanTask.reset();
    const std::string line =
        fmt::format("Velto ▶ análisis terminado: {} archivos top, {} GB libres",
                    output.files.size(), tenths(output.free));
    rememberState([weak = weak_from_this(), line] {
        if (const auto bridge = weak.lock()) bridge->tellAnalysis(line);
    });
    keepFolders(now);
    measurementIntents_->takeAnalysis(output, now, resetsAhead_ == 0);
}

void JSBridge::tellAnalysis(const std::string& line) {
    pushState();
    evaluate(events::scanFinished());
    log(line);
    endAnalysis();
}

/// The scanner is at rest until this analysis has ended.
void JSBridge::keepFolders(double measured) {
    const ScannerService& scanner = scanner_->scanner;
    if (!scanner.folders()) return;
    auto folders = std::make_shared<MeasuredFolders>();
    folders->tree = scanner.folders();
    folders->measured = measured;
    folders->hiddenBytes = scanner.hiddenBytes();
    const bool isKept = resetsAhead_ == 0;
    folderIntents_->replace(folders, isKept);
    if (isKept) growthIntents_->keep(folders->tree, measured, analysisExcluded_);
    if (const auto walk = scanner.keptWalk(); walk && isKept) {
        // In its turn with a reset, which it may not outlive.
        cleanups_.run(
            [&platform = platform_, walk](CleanupServices&) { WalkKeeper::save(platform, *walk); });
    }
}

/// Of files that the analysis had no time for.
void JSBridge::addDuplicates(const std::vector<DupGroup>& groups) {
    if (!bootState) return;
    lists_.add(groups);
    lists_.show(bootState->state);
    rememberState();
    pushState();
}

void JSBridge::failAnalysis(const std::string& line) {
    log(line);
    // What it has read of files need not be read again.
    if (const auto digests = scanner_->scanner.digests(); digests && resetsAhead_ == 0) {
        cleanups_.run([&platform = platform_, digests](CleanupServices&) {
            DigestFile(*platform.files, platform.layout).save(*digests);
        });
    }
    if (scanTask->isCancelled()) evaluate(events::analysisStopped());
    evaluate(events::scanFailed());
    endAnalysis();
}

void JSBridge::endAnalysis() {
    analysisWork_.reset();
    analysisWatch_.reset();
    scanTask.reset();
    scanRunning = false;
    if (!pendingAccessRescan) return;
    pendingAccessRescan = false;
    startAnalysis();
}

DiskState JSBridge::stateToShow() const {
    if (bootState) return bootState->state;
    const VolumeFigures volume = volumeFigures(*platform_.volumes, platform_.layout.home);
    DiskState state;
    state.total = volume.total;
    state.free = volume.free;
    state.ser = freeSpaceScore(volume.free, volume.total);
    state.history = history_;
    state.settings = settings_.record();
    return state;
}

}  // namespace velto
