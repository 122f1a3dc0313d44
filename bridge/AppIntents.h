#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bridge/AppsWork.h"
#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/CleanupQueue.h"
#include "bridge/UninstallGate.h"
#include "bridge/WorkProgress.h"
#include "bridge/payload.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"

namespace velto {

/// The intents of the uninstaller: the list of applications, what one of them has left, and its
/// removal, which goes on without the window. Main thread. Make it with std::make_shared.
class AppIntents : public std::enable_shared_from_this<AppIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        BridgeState& state;
        const Platform& platform;
        const AppLanguage& language;
        UninstallGate& uninstalls;
        CleanupQueue& cleanups;
        std::shared_ptr<AppsWork> work;
        /// Tells whatever window there is by then what a removal has taken away.
        std::function<void(const CleanupOutcome&)> tell;
        const WorkProgress* progress = nullptr;  // null: shown in the page alone
    };

    explicit AppIntents(Context context);

    void onAppsList(const Payload& payload);
    void onAppAnalysis(const Payload& payload);
    void onUninstall(const Payload& payload);  // AppIntents_uninstall.cpp

private:
    void measure(const std::vector<std::string>& paths);

    Context context_;
};

}  // namespace velto
