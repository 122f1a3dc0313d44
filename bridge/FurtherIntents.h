#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "analysis/ExclusionService.h"
#include "bridge/AnalysisLists.h"
#include "bridge/BridgeLink.h"
#include "bridge/CleaningIntents.h"
#include "bridge/payload.h"
#include "cleaning/further/FurtherDiscovery.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// The intent that looks for what the rules of `rules/` name. Main thread. Make it with
/// std::make_shared.
class FurtherIntents : public std::enable_shared_from_this<FurtherIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        Platform& platform;
        AnalysisLists& lists;
        const ExclusionService& exclusions;
        const CleaningIntents& cleaning;  // what it has proposed is not proposed again
        std::int64_t smallest = FurtherDiscovery::smallestItem;
    };

    explicit FurtherIntents(const Context& context) : context_(context) {}
    /// Ends the search; what tools are asked is waited for by nobody.
    ~FurtherIntents() { cancelled_.cancel(); }
    FurtherIntents(const FurtherIntents&) = delete;
    FurtherIntents& operator=(const FurtherIntents&) = delete;

    /// A second one while it looks does nothing.
    void onScanFurther(const Payload& payload);

private:
    void show(std::vector<FurtherGroup> found, AnalysisLists::Mark begun, bool isLast);

    Context context_;
    CancellationFlag cancelled_;
    bool isLooking_ = false;
};

/// `groups` without what lies at, below or above anything of `proposed`. Groups that have lost all
/// their items go; explained ones stay.
std::vector<FurtherGroup> withoutProposed(std::vector<FurtherGroup> groups,
                                          const std::vector<Candidate>& proposed);

}  // namespace velto
