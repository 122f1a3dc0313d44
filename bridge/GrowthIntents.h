#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/folders/FolderTree.h"
#include "analysis/growth/GrowthAnswers.h"
#include "bridge/BridgeLink.h"
#include "bridge/CleanupQueue.h"
#include "bridge/payload.h"
#include "platform/Platform.h"

namespace velto {

/// The intents that ask what has grown since an earlier analysis, and what keeps each analysis for
/// that. Main thread. Make it with std::make_shared.
class GrowthIntents : public std::enable_shared_from_this<GrowthIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        const Platform& platform;
        CleanupQueue& cleanups;
    };

    explicit GrowthIntents(const Context& context);

    /// The newest question is answered; an older one no longer.
    void onGrowth(const Payload& payload);
    void onFolderGrowth(const Payload& payload);
    void onForgetGrowth(const Payload& payload);

    /// An analysis has ended `now` (seconds since 1970): keeps what its folders hold, in its turn
    /// among the changes, so that a reset that is asked for afterwards takes it along, and tells a
    /// page that has asked before. `leftOut` is what was excluded from it. Nothing for null.
    void keep(std::shared_ptr<const FolderTree> folders, double now,
              std::vector<std::string> leftOut);

    /// A reset has removed all snapshots: tells a page that has asked before.
    void tellAnew();

private:
    void answer(const GrowthSince& since);
    void finishForgetting(const std::optional<std::string>& failure);

    BridgeLink& link_;
    const Platform& platform_;
    CleanupQueue& cleanups_;
    std::shared_ptr<GrowthAnswers> answers_;  // shared with work that may outlive the bridge
    std::optional<GrowthSince> asked_;        // what the page shows
    std::uint64_t questions_ = 0;
    std::uint64_t stored_ = 0;  // how often what is stored has changed
};

}  // namespace velto
