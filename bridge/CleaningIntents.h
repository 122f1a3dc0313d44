#pragma once

#include <memory>
#include <vector>

#include "bridge/AnalysisLists.h"
#include "bridge/BridgeLink.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/payload.h"
#include "cleaning/CleaningRules.h"
#include "platform/Platform.h"

namespace velto {

/// The intents that look for what can be cleaned, and that move files to the cloud folder and back.
/// Main thread. Make it with std::make_shared.
class CleaningIntents : public std::enable_shared_from_this<CleaningIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        Platform& platform;
        AnalysisLists& lists;
        MeasurementIntents& measurement;  // tells the sizes to the byte
    };

    explicit CleaningIntents(const Context& context) : context_(context) {}

    void onScanCleanables(const Payload& payload);
    void onMoveCloud(const Payload& payload);

    /// What was proposed last at this path; null for anything else. Valid until the next proposals.
    const Candidate* proposal(const std::string& path) const;

    /// All that was proposed last.
    const std::vector<Candidate>& proposals() const { return proposed_; }

private:
    void show(std::vector<Candidate> found, AnalysisLists::Mark begun);

    Context context_;
    std::vector<Candidate> proposed_;
};

}  // namespace velto
