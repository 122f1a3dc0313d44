#include "bridge/JSBridge.h"
#include "bridge/QuitIntents.h"
#include "bridge/events.h"
#include "bridge/system_events.h"

namespace velto {

std::unique_ptr<SystemMonitor> JSBridge::makeSystemMonitor() {
    Platform& platform = platform_;
    return std::make_unique<SystemMonitor>(
        MonitorContext{
            .counters = *platform.counters,
            .processes = *platform.processes,
            .volumes = *platform.volumes,
            .clock = *platform.clock,
            .activity = platform.activity,
            .startupVolume = platform.layout.home,
            .icon = [&platform](const std::string& path,
                                int points) { return platform.icons->pngDataURL(path, points); },
            .turn = &platform.sampling,
            .ownIdentifier = platform.bundleIdentifier},
        platform.makeQueue(SystemMonitor::queueLabel));
}

/// Not here: a monitor waits for the sample that it is taking, and the main thread waits for
/// nothing that may hang.
void JSBridge::endSystemMonitor() {
    system->letGo();
    platform_.dispatcher->global(QualityOfService::userInitiated,
                                 [monitor = std::shared_ptr<SystemMonitor>(
                                      std::move(system))]() mutable { monitor.reset(); });
}

/// The scripts are made on the monitor's queue; only the finished text goes to the main thread.
void JSBridge::sendSamples() {
    system->onSample = [&platform = platform_,
                        weak = weak_from_this()](const sampling::Dictionary& sample) {
        platform.dispatcher->main([weak, script = events::system(sample)] {
            if (const auto bridge = weak.lock()) bridge->evaluate(script);
        });
    };
    system->onActivity = [&platform = platform_, weak = weak_from_this()](const Activity& now) {
        platform.dispatcher->main(
            [weak, script = events::systemActivity(now.record), quittable = now.quittable] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                bridge->quitIntents_->know(quittable);
                bridge->evaluate(script);
            });
    };
}

void JSBridge::onSystemWatch(const Payload& payload) {
    system->watch(payload::boolMember(payload, "on").value_or(false));
}

}  // namespace velto
