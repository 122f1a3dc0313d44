#include "bridge/JSBridge.h"
#include "bridge/events.h"

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
                                int points) { return platform.icons->pngDataURL(path, points); }},
        platform.makeQueue(SystemMonitor::queueLabel));
}

/// The scripts are made on the monitor's queue; only the finished text goes to the main thread.
void JSBridge::sendSamples() {
    system->onSample = [&platform = platform_,
                        weak = weak_from_this()](const sampling::Dictionary& sample) {
        platform.dispatcher->main([weak, script = events::system(sample)] {
            if (const auto bridge = weak.lock()) bridge->evaluate(script);
        });
    };
}

void JSBridge::onSystemWatch(const Payload& payload) {
    system->watch(payload::boolMember(payload, "on").value_or(false));
}

}  // namespace velto
