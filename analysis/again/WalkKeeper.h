#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/again/kept_walk_text.h"
#include "analysis/again/readings.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"

namespace velto {

/// Why a walk reads every folder.
enum class WalkDoubt {
    none,             // it does not have to
    nothingTold,      // this system, or this volume, has no history of changes
    nothingKept,      // no earlier walk, or a damaged one
    otherConditions,  // see walkConditions
    otherHistory,     // the volume is another one, or its history was begun anew
    tooOld,           // what is never told would add up
    clock,            // it is earlier now than it was then
    changesUntold,    // events were lost, or more happened than can be told
    tooManyChanges,   // a walk of everything is as quick
    notOneWalk        // what was read did not fit what was kept
};

/// For the log.
std::string_view textOf(WalkDoubt doubt);

/// Where the last walk is kept, "walk.bin" of the data folder, and whether the next one can go by
/// it. One for each walk, made before it begins: then everything that changes later is told to the
/// next one. Blocking.
class WalkKeeper {
public:
    /// A walk that goes by an earlier one is made for so long, in seconds, after one that read
    /// every folder.
    static constexpr double longest = 7 * 86'400.0;
    /// What has changed so short a time before a walk, in seconds, is read again by the next one:
    /// whoever writes to a file for days does so now and then.
    static constexpr double recent = 3'600;

    WalkKeeper(Platform& platform, const std::vector<std::string>& excluded, bool hasAccess);

    /// False where nothing is ever told: nothing need be noted.
    bool isOn() const { return mark_.has_value(); }

    /// Times from here on count as recent, see NotingVisitor.
    double recentFrom() const { return begun_ - recent; }

    /// A kept walk and what of it has to be read again.
    struct Earlier {
        std::string text;  // holds the names
        KeptWalk walk;
        Readings readings;
        double whole = 0;  // as KeptStamp
    };
    /// Null for a doubt.
    std::unique_ptr<const Earlier> earlier(const CancellationFlag& cancelled);
    WalkDoubt doubt() const { return doubt_; }

    /// The text to be saved; null when it would be larger than is read again. `earlier` is what
    /// the walk went by.
    std::shared_ptr<const std::string> text(const KeptWalk& walk, const Earlier* earlier) const;

    /// Replaces what is kept. Silent when it cannot be saved: then the earlier one holds on.
    static void save(Platform& platform, const std::string& text);

private:
    std::unique_ptr<const Earlier> doubted(WalkDoubt doubt);

    Platform& platform_;
    std::optional<ChangeMark> mark_;
    double begun_ = 0;
    std::string conditions_;
    WalkDoubt doubt_ = WalkDoubt::nothingTold;
};

}  // namespace velto
