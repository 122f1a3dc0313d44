#include <exception>

#include <fmt/format.h>

#include "bridge/JSBridge.h"
#include "bridge/ScannerWithAccess.h"
#include "bridge/events.h"
#include "platform/units.h"

namespace velto {
namespace {

double volumeGigabytes(std::optional<std::int64_t> bytes) { return gigabytes(bytes.value_or(0)); }

}  // namespace

void JSBridge::startAnalysis() {
    if (scanRunning) return;
    scanRunning = true;
    evaluate(events::scanStarted());
    log("Velto ▶ análisis iniciado");

    const CancellationFlag cancelled;
    scanTask = cancelled;
    Dispatcher& dispatcher = *platform_.dispatcher;
    const std::weak_ptr<JSBridge> weak = weak_from_this();
    // Back on the main thread, `finish` runs if the bridge still exists; then the analysis is over.
    const auto end = [&dispatcher, weak](std::function<void(JSBridge&)> finish) {
        dispatcher.main([weak, finish = std::move(finish)] {
            const auto bridge = weak.lock();
            if (!bridge) return;
            finish(*bridge);
            bridge->endAnalysis();
        });
    };
    const auto progress = [&dispatcher, weak](std::int64_t files, double gb) {
        dispatcher.main([weak, files, gb] {
            if (const auto bridge = weak.lock()) bridge->evaluate(events::scanProgress(files, gb));
        });
    };
    dispatcher.global(
        QualityOfService::userInitiated,
        [scanner = scanner_, excluded = exclusions_.paths(), cancelled, end, progress] {
            try {
                const auto output = std::make_shared<const AnalysisOutput>(
                    scanner->scanner.scan(excluded, cancelled, progress));
                end([output](JSBridge& bridge) { bridge.finishAnalysis(*output); });
            } catch (const CancellationError&) {
                end([](JSBridge& bridge) { bridge.failAnalysis("Velto ▶ análisis cancelado"); });
            } catch (const std::exception& error) {
                const std::string line = fmt::format("Velto ▶ error de análisis: {}", error.what());
                end([line](JSBridge& bridge) { bridge.failAnalysis(line); });
            }
        });
}

void JSBridge::finishAnalysis(const AnalysisOutput& output) {
    const double now = platform_.clock->now();
    bootState = BootState{.state = {.total = output.total,
                                    .free = output.free,
                                    .ser = freeSpaceScore(output.free, output.total),
                                    .cats = output.cats,
                                    .files = output.files,
                                    .dupGroups = output.dupGroups,
                                    .history = {},
                                    .settings = settings_.record(),
                                    .protected_ = output.protectedLocations},
                          .stamp = now};
    needsFirstScan = false;
    cache_.save(bootState->state, now);
    pushState();
    evaluate(events::scanFinished());
    log(fmt::format("Velto ▶ análisis terminado: {} archivos top, {} GB libres",
                    output.files.size(), tenths(output.free)));
}

void JSBridge::failAnalysis(const std::string& line) {
    log(line);
    evaluate(events::scanFailed());
}

void JSBridge::endAnalysis() {
    scanTask.reset();
    scanRunning = false;
    if (!pendingAccessRescan) return;
    pendingAccessRescan = false;
    startAnalysis();
}

DiskState JSBridge::stateToShow() const {
    if (bootState) return bootState->state;
    const std::string& home = platform_.layout.home;
    const double total = volumeGigabytes(platform_.volumes->totalCapacity(home));
    const double free = volumeGigabytes(platform_.volumes->availableCapacity(home));
    DiskState state;
    state.total = total;
    state.free = free;
    state.ser = freeSpaceScore(free, total);
    state.settings = settings_.record();
    return state;
}

}  // namespace velto
