#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bridge/AnalysisLists.h"
#include "bridge/BridgeLink.h"
#include "bridge/payload.h"
#include "platform/ApplicationShell.h"
#include "platform/Platform.h"
#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"

namespace velto {

/// The intents that put files into the program's trash, bring them back or delete them for good,
/// and the one that empties the history. Main thread. Make it with std::make_shared.
class TrashIntents : public std::enable_shared_from_this<TrashIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        const VeltoSettings& settings;
        const AppLanguage& language;
        ApplicationShell& shell;
        const AnalysisLists& lists;
    };

    explicit TrashIntents(const Context& context);

    void onDeleteFiles(const Payload& payload);
    void onCleanPaths(const Payload& payload);
    void onUndoLast(const Payload& payload);
    void onRestoreItem(const Payload& payload);
    void onRestoreItemTo(const Payload& payload);
    void onGiveUpWaiting(const Payload& payload);
    void onPurgeItem(const Payload& payload);
    void onPurgeOperation(const Payload& payload);
    void onPurgeTrash(const Payload& payload);
    void onClearHistory(const Payload& payload);

private:
    void moveToTrash(const std::vector<std::string>& paths, const std::string& kind);
    void tellMoved(const CleanupOutcome& outcome);
    VeltoTrashService::KnownSizes knownSizes(const std::vector<std::string>& paths) const;
    VeltoTrashService::Progress emptyingTold();
    void restoreTo(const std::string& itemID, const std::string& name, const std::string& folder);

    BridgeLink& link_;
    const Platform& platform_;
    const VeltoSettings& settings_;
    const AppLanguage& language_;
    ApplicationShell& shell_;
    const AnalysisLists& lists_;
};

}  // namespace velto
