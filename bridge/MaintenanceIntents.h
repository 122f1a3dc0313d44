#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "analysis/ExclusionService.h"
#include "analysis/PermissionService.h"
#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/payload.h"
#include "maintenance/MaintenanceStatus.h"
#include "maintenance/holdings.h"
#include "platform/Platform.h"
#include "settings/VeltoSettings.h"

namespace velto {

/// The intents that ask about the automatic maintenance, and those that say how long it keeps
/// caches and when it speaks of a full disk. Main thread. Make it with std::make_shared.
class MaintenanceIntents : public std::enable_shared_from_this<MaintenanceIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        BridgeState& state;
        Platform& platform;
        VeltoSettings& settings;
        const PermissionService& permissions;
        const ExclusionService& exclusions;
    };

    explicit MaintenanceIntents(const Context& context) : context_(context) {}

    void onMaintenanceStatus(const Payload& payload);
    void onMeasureMaintenance(const Payload& payload);
    void onForetellCaches(const Payload& payload);
    void onKeepCaches(const Payload& payload);
    void onFullDiskNotice(const Payload& payload);

    /// Tells the page what is known without measuring.
    void tell();

    /// What the maintenance holds in the trash; true when that has changed, and the page is to be
    /// told.
    bool takeHeld(const std::vector<HeldItem>& held);

private:
    MaintenanceStatus status() const;
    void measure(RuleStatuses rules, void (MaintenanceIntents::*report)(const RuleStatuses& rules));
    void tellMeasured(const RuleStatuses& rules);
    void foretell(const RuleStatuses& rules);
    void noteCaches(const RuleStatuses& rules);

    Context context_;
    std::vector<HeldItem> held_;
    bool isForetelling_ = false;
    std::optional<std::int64_t> cacheBytes_;  // of the caches that would be taken, once measured
};

}  // namespace velto
