#include <nlohmann/json.hpp>

#include "bridge/JSBridge.h"
#include "bridge/events.h"
#include "maintenance/MaintenanceStatus.h"

namespace velto {

void JSBridge::onMaintenanceStatus(const Payload&) {
    evaluate(events::maintenance(toJson(maintenanceStatus(platform_, settings_.frequency()))));
}

/// Measuring takes a while; one is enough at a time.
void JSBridge::onMeasureMaintenance(const Payload&) {
    if (maintenanceMeasuring) return;
    maintenanceMeasuring = true;
    Platform& platform = platform_;
    const MaintenanceRules::Limits limits{.hasAccess = permissions_.hasAccess(),
                                          .excluded = exclusions_.paths()};
    platform.dispatcher->global(
        QualityOfService::userInitiated,
        [&platform, limits, frequency = settings_.frequency(), weak = weak_from_this()] {
            if (weak.expired()) return;
            MaintenanceStatus status = maintenanceStatus(platform, frequency);
            measureRules(status, platform, limits);
            platform.dispatcher->main([weak, script = events::maintenance(toJson(status))] {
                const auto bridge = weak.lock();
                if (!bridge) return;
                bridge->maintenanceMeasuring = false;
                bridge->evaluate(script);
            });
        });
}

}  // namespace velto
