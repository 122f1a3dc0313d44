#include "bridge/MeasurementIntents.h"

#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "bridge/comparison.h"
#include "bridge/home_folders.h"
#include "platform/values/units.h"

namespace velto {

struct MeasurementIntents::Slice {
    ComparedPart part;
    bool isLast = false;
};

MeasurementIntents::MeasurementIntents(const Context& context)
    : context_(context), file_(*context.platform.files, context.platform.layout) {}

MeasurementIntents::~MeasurementIntents() { endComparison(); }

void MeasurementIntents::lookAtSaved(const DiskState& state, double stamp) {
    if (std::exchange(hasLooked_, true)) return;
    stamp_ = stamp;
    Platform& platform = context_.platform;
    platform.dispatcher->global(
        QualityOfService::utility,
        [&platform, weak = weak_from_this(), run = run_, files = state.files,
         groups = state.dupGroups, file = file_, stamp] {
            if (weak.expired()) return;
            auto details = listDetails(files, groups, *platform.files);
            auto measurement = file.load(stamp);
            platform.dispatcher->main(
                [weak, run, details = std::move(details), measurement = std::move(measurement)] {
                    const auto self = weak.lock();
                    if (!self || self->run_ != run) return;  // a newer analysis has come first
                    self->details_ = details;
                    self->measurement_ = measurement;
                    if (self->hasLoaded_) self->tellLists();
                    if (self->hasLoaded_) self->tellMeasurement();
                });
        });
}

void MeasurementIntents::takeAnalysis(const AnalysisOutput& output, double stamp, bool remembers) {
    endComparison();
    hasLooked_ = true;
    details_ = output.details;
    measurement_ = output.measurement;
    uncompared_ = output.uncompared;
    digests_ = output.digests;
    stamp_ = stamp;
    remembers_ = remembers;
    saveMeasurement();
    keepDigests();
    tellLists();
    tellMeasurement();
}

void MeasurementIntents::saveMeasurement() {
    if (!remembers_) return;
    context_.saves.put("measurement", [file = file_, measurement = *measurement_, stamp = stamp_] {
        file.save(measurement, stamp);
    });
}

/// What was read need not be read again at the next analysis. In its turn with a reset, which none
/// of it may outlive.
void MeasurementIntents::keepDigests() {
    if (!remembers_ || !digests_) return;
    context_.cleanups.run([&platform = context_.platform, digests = digests_](CleanupServices&) {
        DigestFile(*platform.files, platform.layout).save(*digests);
    });
}

void MeasurementIntents::forget() {
    endComparison();
    details_ = {};
    measurement_.reset();
    uncompared_.clear();
    digests_.reset();
    remembers_ = false;
}

void MeasurementIntents::onContinueComparison(const Payload&) {
    if (comparison_ || uncompared_.empty()) return;
    comparison_ = CancellationFlag();
    Platform& platform = context_.platform;
    platform.log->line(fmt::format("Velto ▶ duplicados: comparación sin límite de {} archivos",
                                   uncompared_.size()));
    platform.dispatcher->global(
        QualityOfService::utility,
        [&platform, weak = weak_from_this(), run = run_, files = uncompared_, digests = digests_,
         cancelled = *comparison_] {
            const auto tell = [&](ComparedPart part, bool isLast) {
                platform.dispatcher->main([weak, run, slice = Slice{std::move(part), isLast}] {
                    if (const auto self = weak.lock()) self->takeSlice(run, slice);
                });
            };
            ComparedPart last{.groups = {}, .details = {}, .left = files};
            compareInParts(platform, files, digests.get(), cancelled, [&](ComparedPart part) {
                last.left = part.left;
                tell(std::move(part), false);
            });
            tell(std::move(last), true);
        });
    tellMeasurement();
}

void MeasurementIntents::takeSlice(std::uint64_t run, const Slice& slice) {
    if (run != run_) return;  // another analysis has been made meanwhile
    const ComparedPart& part = slice.part;
    uncompared_ = part.left;
    if (slice.isLast) {
        context_.platform.log->line(fmt::format(
            "Velto ▶ duplicados: comparación terminada, quedan {} archivos", uncompared_.size()));
        comparison_.reset();
        keepDigests();
    }
    if (measurement_) {
        measurement_->compared = {.complete = uncompared_.empty(),
                                  .left = static_cast<std::int64_t>(uncompared_.size())};
        // Once: between two parts it changes by a number alone.
        if (slice.isLast) saveMeasurement();
    }
    if (!part.groups.empty()) {
        details_.copies.insert(part.details.copies.begin(), part.details.copies.end());
        details_.dates.insert(part.details.dates.begin(), part.details.dates.end());
        details_.linked.insert(part.details.linked.begin(), part.details.linked.end());
        tellLists();
        context_.found(part.groups);
    }
    tellMeasurement();
}

void MeasurementIntents::onStopComparison(const Payload&) {
    if (comparison_) comparison_->cancel();
}

void MeasurementIntents::endComparison() {
    ++run_;
    if (comparison_) comparison_->cancel();
    comparison_.reset();
}

void MeasurementIntents::tellAll() {
    hasLoaded_ = true;
    const HomeLayout& layout = context_.platform.layout;
    context_.link.evaluate(events::home(layout.home));
    context_.link.evaluate(events::homeFolders(homeFolders(layout)));
    tellLists();
    tellMeasurement();
}

/// What is not known is not told: an analysis without lists, or one that was saved and has not been
/// looked at yet.
void MeasurementIntents::tellLists() {
    if (!details_.files.empty() || !details_.copies.empty()) {
        context_.link.evaluate(events::exactListSizes(details_));
        context_.link.evaluate(events::linkedCopies(details_));
        context_.link.evaluate(events::copyDates(details_));
    }
}

void MeasurementIntents::tellCleanables(const std::vector<Candidate>& found) {
    events::SizesByKey sizes;
    for (const Candidate& candidate : found)
        sizes[candidate.path] = std::llround(candidate.gb * bytesPerGigabyte);
    context_.link.evaluate(events::exactCleanableSizes(sizes));
}

/// What has left the trash needs no word: no other item gets its id.
void MeasurementIntents::takeTrash(const SharedTrash& trash) {
    for (const auto& [id, bytes] : trash->bytes)
        hasNewTrash_ |= !trash_ || !trash_->bytes.contains(id);
    trash_ = trash;
}

void MeasurementIntents::tellTrash() {
    hasNewTrash_ = false;
    if (trash_ && !trash_->bytes.empty()) {
        context_.link.evaluate(events::exactTrashSizes(trash_->bytes));
    }
}

void MeasurementIntents::tellNewTrash(const std::string& script) {
    if (!hasNewTrash_) return;
    if (script.empty()) return tellTrash();
    hasNewTrash_ = false;
    context_.link.evaluate(script);
}

void MeasurementIntents::tellMeasurement() {
    if (!measurement_) return;
    context_.link.evaluate(events::measurement(
        *measurement_,
        {.canContinue = !uncompared_.empty(), .isRunning = comparison_.has_value()}));
}

}  // namespace velto
