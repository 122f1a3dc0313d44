#pragma once

#include <memory>

#include "bridge/BridgeLink.h"
#include "bridge/CleanupQueue.h"
#include "bridge/payload.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"
#include "uninstall/AppUsage.h"

namespace velto {

/// The intents about the record of when applications were last used. Main thread. Make it with
/// std::make_shared.
class UsageIntents : public std::enable_shared_from_this<UsageIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const AppLanguage& language;
        AppUsage& usage;
        CleanupQueue& cleanups;
    };

    explicit UsageIntents(const Context& context) : context_(context) {}

    /// Tells whether uses are recorded, and of how many applications one is.
    void onAppUses(const Payload& payload);

    /// Switches it; off, what was recorded is deleted. The page has asked the user.
    void onRecordAppUses(const Payload& payload);

private:
    void finish(bool isFileLeft);

    Context context_;
};

}  // namespace velto
