#pragma once

#include <functional>
#include <memory>
#include <string>

#include "analysis/ExclusionService.h"
#include "analysis/PermissionService.h"
#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/payload.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"

namespace velto {

/// The intents that change the settings, and those that ask about automatic maintenance. Main
/// thread. Make it with std::make_shared.
class SettingsIntents : public std::enable_shared_from_this<SettingsIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        BridgeState& state;
        Platform& platform;
        VeltoSettings& settings;
        AppLanguage& language;
        const PermissionService& permissions;
        const ExclusionService& exclusions;
        std::function<void()> askToNotify = nullptr;  // may be none
    };

    explicit SettingsIntents(const Context& context)
        : context_(context), scheduler_(context.platform) {}

    void onSettings(const Payload& payload);
    void onMaintenanceStatus(const Payload& payload);
    void onMeasureMaintenance(const Payload& payload);

private:
    void applyMaintenance(const std::string& frequencyBefore);

    Context context_;
    MaintenanceScheduler scheduler_;
};

}  // namespace velto
