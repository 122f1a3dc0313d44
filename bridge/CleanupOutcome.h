#pragma once

#include <optional>
#include <string>
#include <vector>

#include "analysis/post_processing.h"
#include "cleaning/HistoryRecords.h"
#include "cleaning/TrashRecords.h"

namespace velto {

/// What a work item on the trash, the history and the cloud folder brings to the main thread.
struct CleanupOutcome {
    bool hasActed = true;                // false: it failed, or there was nothing to do
    std::optional<std::string> failure;  // the reason; part of it may have been done all the same
    double gb = 0;                       // of the operation

    // Paths that have left their place, and paths that stand at it again.
    std::vector<std::string> gone;
    std::vector<std::string> back;

    // As all is when the item ends.
    std::vector<TrashItem> trash;  // oldest first
    std::vector<HistoryEntry> history;
    VolumeFigures volume;
};

}  // namespace velto
