#pragma once

#include <functional>
#include <memory>
#include <string>

#include "bridge/AppsWork.h"
#include "bridge/BridgeLink.h"
#include "bridge/UninstallGate.h"
#include "bridge/WorkProgress.h"
#include "bridge/payload.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"

namespace velto {

/// The intents for applications that the system has installed and removes. Main thread. Make it
/// with std::make_shared.
class PackageIntents : public std::enable_shared_from_this<PackageIntents> {
public:
    /// Everything but `work` outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const AppLanguage& language;
        UninstallGate& uninstalls;
        std::shared_ptr<AppsWork> work;
        const WorkProgress* progress = nullptr;  // null: shown in the page alone
    };

    explicit PackageIntents(Context context) : context_(std::move(context)) {}

    void onAppPackage(const Payload& payload);
    void onRemovePackage(const Payload& payload);
    void onRemoveUnusedRuntimes(const Payload& payload);

private:
    /// Runs work that removes, while no other removal runs; its script is for the page.
    void removeAlone(std::function<std::string()> work);

    Context context_;
};

}  // namespace velto
