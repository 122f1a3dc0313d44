#include "bridge/SystemIntents.h"

#include <utility>

#include "bridge/events.h"
#include "bridge/system_events.h"

namespace velto {
namespace {

std::unique_ptr<SystemMonitor> makeMonitor(Platform& platform) {
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

}  // namespace

SystemIntents::SystemIntents(const Context& context) : context_(context) {
    context_.state.system = makeMonitor(context_.platform);
}

/// The monitor does not end here: it waits for the sample that it is taking, and the main thread
/// waits for nothing that may hang.
SystemIntents::~SystemIntents() {
    context_.state.system->letGo();
    context_.platform.dispatcher->global(
        QualityOfService::userInitiated,
        [monitor = std::shared_ptr<SystemMonitor>(std::move(context_.state.system))]() mutable {
            monitor.reset();
        });
}

/// The scripts are made on the monitor's queue; only the finished text goes to the main thread.
void SystemIntents::sendSamples() {
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    context_.state.system->onSample =
        [&dispatcher, weak = weak_from_this()](const sampling::Dictionary& sample) {
            dispatcher.main([weak, script = events::system(sample)] {
                if (const auto self = weak.lock()) self->context_.link.evaluate(script);
            });
        };
    context_.state.system->onActivity = [&dispatcher,
                                         weak = weak_from_this()](const Activity& now) {
        dispatcher.main([weak, activity = events::systemActivity(now.record),
                         details = events::systemDetails(now.details), quittable = now.quittable] {
            const auto self = weak.lock();
            if (!self) return;
            self->context_.quitting.know(quittable);
            self->context_.link.evaluate(activity);
            self->context_.link.evaluate(details);
        });
    };
}

void SystemIntents::onSystemWatch(const Payload& payload) {
    context_.state.system->watch(payload::boolMember(payload, "on").value_or(false));
}

}  // namespace velto
