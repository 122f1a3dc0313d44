#include "bridge/MaintenanceIntents.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/units.h"

namespace velto {

MaintenanceStatus MaintenanceIntents::status() const {
    MaintenanceStatus status = maintenanceStatus(context_.platform, context_.settings.frequency(),
                                                 context_.state.accessGranted);
    status.held = holdings(held_, keptFor(context_.settings));
    status.cacheDays = context_.settings.cacheDays();
    status.fullDiskGB = context_.settings.fullDiskGB();
    if (cacheBytes_) {
        status.foretold =
            foretold(*cacheBytes_, context_.settings.retention(), context_.settings.frequency());
    }
    return status;
}

void MaintenanceIntents::tell() { context_.link.evaluate(events::maintenance(toJson(status()))); }

void MaintenanceIntents::onMaintenanceStatus(const Payload&) { tell(); }

bool MaintenanceIntents::takeHeld(const std::vector<HeldItem>& held) {
    if (held == held_) return false;
    held_ = held;
    return true;
}

void MaintenanceIntents::onKeepCaches(const Payload& payload) {
    const auto days = payload::integerMember(payload, "days");
    if (!days || *days < 0) return;
    context_.settings.setCacheDays(std::min(*days, longestRetentionDays));
    tell();
}

void MaintenanceIntents::onFullDiskNotice(const Payload& payload) {
    const auto gigabytes = payload::integerMember(payload, "gb");
    if (!gigabytes || *gigabytes < 0) return;
    context_.settings.setFullDiskGB(std::min(*gigabytes, largestFullDiskGB));
    context_.settings.setFullDiskTold(0);  // another threshold: what was said is no answer to it
    tell();
}

/// Measuring takes a while; one is enough at a time.
void MaintenanceIntents::onMeasureMaintenance(const Payload&) {
    if (std::exchange(context_.state.maintenanceMeasuring, true)) return;
    measure(status().rules, &MaintenanceIntents::tellMeasured);
}

/// Of the rules only that of the caches, which compares no files.
void MaintenanceIntents::onForetellCaches(const Payload&) {
    if (std::exchange(isForetelling_, true)) return;
    measure({{std::string(cachesRule), {}}}, &MaintenanceIntents::foretell);
}

void MaintenanceIntents::measure(RuleStatuses rules,
                                 void (MaintenanceIntents::*report)(const RuleStatuses& rules)) {
    Platform& platform = context_.platform;
    const MaintenanceRules::Limits limits{.hasAccess = context_.permissions.hasAccess(),
                                          .excluded = context_.exclusions.paths()};
    platform.dispatcher->global(
        QualityOfService::userInitiated,
        [&platform, limits, rules = std::move(rules), report, weak = weak_from_this()]() mutable {
            if (weak.expired()) return;
            measureRules(rules, platform, limits);
            platform.dispatcher->main([weak, rules, report] {
                if (const auto self = weak.lock()) ((*self).*report)(rules);
            });
        });
}

void MaintenanceIntents::tellMeasured(const RuleStatuses& rules) {
    context_.state.maintenanceMeasuring = false;
    noteCaches(rules);
    MaintenanceStatus now = status();
    now.rules = rules;
    context_.link.evaluate(events::maintenance(toJson(now)));
}

void MaintenanceIntents::foretell(const RuleStatuses& rules) {
    isForetelling_ = false;
    noteCaches(rules);
    tell();
}

void MaintenanceIntents::noteCaches(const RuleStatuses& rules) {
    const auto caches = rules.find(std::string(cachesRule));
    if (caches != rules.end() && caches->second.gb)
        cacheBytes_ = std::llround(*caches->second.gb * bytesPerGigabyte);
}

}  // namespace velto
