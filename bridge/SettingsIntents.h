#pragma once

#include <functional>
#include <string>

#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"

namespace velto {

class MaintenanceIntents;

/// The intents that change the settings. Main thread.
class SettingsIntents {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        Platform& platform;
        VeltoSettings& settings;
        AppLanguage& language;
        MaintenanceIntents& maintenance;
        std::function<void()> askToNotify = nullptr;  // may be none
    };

    explicit SettingsIntents(const Context& context)
        : context_(context), scheduler_(context.platform) {}

    void onSettings(const Payload& payload);

private:
    void applyMaintenance(const std::string& frequencyBefore);

    Context context_;
    MaintenanceScheduler scheduler_;
};

}  // namespace velto
