#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/post_processing.h"
#include "bridge/CleanupQueue.h"
#include "bridge/Refusal.h"
#include "bridge/TrashSnapshot.h"
#include "bridge/failure_text.h"
#include "cleaning/HistoryRecords.h"
#include "maintenance/holdings.h"
#include "platform/Platform.h"

namespace velto {

/// An item that could not be restored, and what stands on the way to its place.
struct RestoreBlock {
    std::string itemID;
    std::string obstacle;  // absolute path
};

/// What a work item on the trash, the history and the cloud folder brings to the main thread.
struct CleanupOutcome {
    bool hasActed = true;                 // false: it failed, or there was nothing to do
    std::optional<FailureText> failure;   // the reason; part of it may have been done all the same
    std::optional<RestoreBlock> blocked;  // set besides when an item could go to another folder
    std::optional<Refusal> refusal;       // set besides when the trash's rules were the reason
    double gb = 0;                        // of the operation

    // Paths that have left their place, and paths that stand at it again.
    std::vector<std::string> gone;
    std::vector<std::string> back;
    std::vector<VeltoTrashService::Returned> returned;  // items that went back, wherever to

    // As all is when the item ends.
    SharedTrash trash;
    /// Tell the page of its items and of their sizes; empty when the work has not changed them.
    std::string trashScript;
    std::string sizesScript;
    std::vector<HeldItem> held;  // what the maintenance has moved there
    std::vector<WaitingItem> waiting;
    std::vector<HistoryEntry> history;
    VolumeFigures volume;
};

/// Does the work and finds what follows from it; an exception of the work is the outcome's failure.
/// For an item of the process's CleanupQueue.
std::shared_ptr<const CleanupOutcome> carryOut(
    const Platform& platform, CleanupServices& services,
    const std::function<void(CleanupServices&, CleanupOutcome&)>& work);

}  // namespace velto
