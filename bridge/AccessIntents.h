#pragma once

#include <memory>

#include "analysis/PermissionService.h"
#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/payload.h"
#include "platform/ApplicationShell.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"

namespace velto {

/// The intents about Full Disk Access and the watch on it. Main thread. Make it with
/// std::make_shared.
class AccessIntents : public std::enable_shared_from_this<AccessIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        BridgeState& state;
        const Platform& platform;
        PermissionService& permissions;
        ApplicationShell& shell;
        const AppLanguage& language;
    };

    explicit AccessIntents(const Context& context) : context_(context) {}

    void onOpenAccessSettings(const Payload& payload);
    void onRequestAccess(const Payload& payload);
    void onCheckAccess(const Payload& payload);
    void onResetAccess(const Payload& payload);

    /// Probes access, tells the page, and resumes a full analysis when it was granted.
    void check();

private:
    void measureEverything();
    void openSettings();
    void startWatch();
    void scheduleCheck(const CancellationFlag& watch, int checksLeft);

    Context context_;
};

}  // namespace velto
