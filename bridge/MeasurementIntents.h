#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/AnalysisOutput.h"
#include "analysis/MeasurementFile.h"
#include "bridge/BridgeLink.h"
#include "bridge/CleanupQueue.h"
#include "bridge/SaveQueue.h"
#include "bridge/TrashSnapshot.h"
#include "bridge/measurement_events.h"
#include "bridge/payload.h"
#include "cleaning/CleaningRules.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// What the page is told beside the state: sizes to the byte, what was not measured, which copies
/// are none; and the comparison of files that the analysis has no time for. Main thread. Make it
/// with std::make_shared.
class MeasurementIntents : public std::enable_shared_from_this<MeasurementIntents> {
public:
    /// Everything outlives the object, which belongs to the bridge behind `link`.
    struct Context {
        BridgeLink& link;
        Platform& platform;
        CleanupQueue& cleanups;  // in whose turn digests are written, as a reset takes them away
        const SaveQueue& saves;  // the same of the measurement
        /// Duplicates that the continued comparison has found; they come one time each.
        std::function<void(const std::vector<DupGroup>&)> found;
    };

    explicit MeasurementIntents(const Context& context);
    ~MeasurementIntents();
    MeasurementIntents(const MeasurementIntents&) = delete;
    MeasurementIntents& operator=(const MeasurementIntents&) = delete;

    /// Compares what the analysis has left, at the lowest priority and without a limit; nothing
    /// when there is nothing left, or while it runs.
    void onContinueComparison(const Payload& payload);
    /// Ends it; what was found until then stays found.
    void onStopComparison(const Payload& payload);

    /// A saved analysis is shown: what its lists do not say is found out elsewhere, and told.
    void lookAtSaved(const DiskState& state, double stamp);

    /// A new analysis takes the place of the last one; the page is told before its state comes.
    /// `remembers`: for the next start, too.
    void takeAnalysis(const AnalysisOutput& output, double stamp, bool remembers);

    /// Nothing is known any more.
    void forget();

    void tellCleanables(const std::vector<Candidate>& found);

    void takeTrash(const SharedTrash& trash);
    void tellTrash();
    /// Only when there is something that the page has not been told; `script` tells it, if it was
    /// made already.
    void tellNewTrash(const std::string& script);

    /// All that is known but for the trash; the page has loaded.
    void tellAll();

private:
    struct Slice;

    void takeSlice(std::uint64_t run, const Slice& slice);
    void tellLists();
    void tellMeasurement();
    void endComparison();
    void saveMeasurement();
    void keepDigests();

    Context context_;
    MeasurementFile file_;
    bool hasLoaded_ = false;  // the page has
    bool hasLooked_ = false;  // at what was saved, or there is something newer
    ListDetails details_;
    std::optional<Measurement> measurement_;
    double stamp_ = 0;
    bool remembers_ = false;
    SharedTrash trash_;  // null until it has been read
    bool hasNewTrash_ = false;

    std::vector<FileRecord> uncompared_;
    std::shared_ptr<DigestStore> digests_;        // of the last analysis; null: none
    std::optional<CancellationFlag> comparison_;  // the running one
    std::uint64_t run_ = 0;                       // tells what a comparison brings from what an
                                                  // earlier one does
};

}  // namespace velto
