#include "cleaning/TrashRecovery.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <optional>
#include <unordered_set>

#include "cleaning/restored_name.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

bool isAbsence(const FileError& error) { return error.code() == ENOENT || error.code() == ENOTDIR; }

}  // namespace

void forgetItems(Manifest& lists, const std::vector<std::string>& itemIDs) {
    const std::unordered_set<std::string> gone(itemIDs.begin(), itemIDs.end());
    const auto isGone = [&](const TrashItem& item) { return gone.contains(item.id); };
    std::erase_if(lists.items, isGone);
    for (Operation& operation : lists.operations)
        std::erase_if(operation.items, isGone);
    std::erase_if(lists.operations,
                  [](const Operation& operation) { return operation.items.empty(); });
}

bool TrashRecovery::recover(const JournalEntry& entry) {
    extraRoots_.clear();
    switch (entry.kind) {
        case JournalEntry::Kind::move:
            return recoverMove(entry.operation);
        case JournalEntry::Kind::restore:
            return recoverRestore(entry);
        case JournalEntry::Kind::remove:
        case JournalEntry::Kind::purge:
            return recoverRemoval(entry);
        case JournalEntry::Kind::empty:
            return recoverEmptying(entry);
    }
    return false;
}

/// A move that had brought everything in is finished; any other is taken back.
bool TrashRecovery::recoverMove(const Operation& operation) {
    const bool isRecorded = std::ranges::find(lists_.operations, operation.id, &Operation::id) !=
                            lists_.operations.end();
    if (isRecorded || !isConsistent(operation)) return false;
    const auto folder = folder_.openOperation(operation.id);
    if (!folder) return false;
    const bool isComplete =
        !operation.items.empty() && std::ranges::all_of(operation.items, [&](const auto& item) {
            return isInTrash(item, *folder);
        });
    if (!isComplete) {
        return takeBackIf(operation, [&](const TrashItem& item) { return !startsByItself(item); });
    }
    record(operation);
    return true;
}

/// As this program writes an operation that is not recorded yet.
bool TrashRecovery::isConsistent(const Operation& operation) const {
    std::unordered_set<std::string> ids;
    for (const TrashItem& item : lists_.items)
        ids.insert(item.id);
    return isComponent(operation.id) &&
           std::ranges::all_of(operation.items, [&](const TrashItem& item) {
               return item.opID == operation.id && isScratchName(scratchName(item.id)) &&
                      isComponent(item.name) && ids.insert(item.id).second;
           });
}

/// What lies there is run with the session. No file tells this program to put something there: it
/// stays in the trash, listed, for the user to put back.
bool TrashRecovery::startsByItself(const TrashItem& item) const {
    const std::string path = standardizedPath(item.originalPath);
    return std::ranges::any_of(
        std::array{&layout_.autostart, &layout_.agentsFolder},
        [&](const std::string* folder) { return !folder->empty() && isAtOrBelow(path, *folder); });
}

bool TrashRecovery::takeBack(const Operation& operation,
                             const std::vector<std::string>& extraRoots) {
    extraRoots_ = extraRoots;
    return takeBackIf(operation, [](const TrashItem&) { return true; });
}

bool TrashRecovery::takeBackIf(const Operation& operation,
                               const std::function<bool(const TrashItem&)>& mayGo) {
    const auto folder = folder_.openOperation(operation.id);
    if (!folder) return false;
    Operation stuck = operation;
    std::erase_if(stuck.items, [&](const TrashItem& item) {
        return !isInTrash(item, *folder) || (mayGo(item) && moveBack(item, *folder));
    });
    mover_.sync(*folder);  // what has gone back is there before its way back is forgotten
    folder_.removeOperationIfEmpty(operation.id);
    if (stuck.items.empty()) return false;
    record(std::move(stuck));
    return true;
}

/// Where an item came from. Nothing when the item cannot have come from there. A link that has got
/// into the path since is not followed. Throws FileError.
std::optional<HeldPlace> TrashRecovery::openOrigin(const TrashItem& item) const {
    try {
        HeldPlace place =
            openPlace(mover_, guard_.formerPath(item, extraRoots_), FolderPath::withoutLinks);
        guard_.refuseOwnData(*place.folder);
        return place;
    } catch (const TrashError&) {
        return std::nullopt;
    }
}

bool TrashRecovery::isInTrash(const TrashItem& item, const FolderHandle& operation) {
    try {
        if (const auto place = openOrigin(item)) {
            if (folder_.isOnWayBack(item, operation, *place)) {
                folder_.settleBack(item, operation, *place);
            }
            folder_.settleIn(*place, operation, item);
        }
        // Not where the move has got to: something new may stand in the place that it came from.
        return folder_.attributes(&operation, item).has_value();
    } catch (const FileError& error) {
        // EEXIST: both places are taken and nothing may be replaced; all pieces stay. In all other
        // cases the place that it came from is out of reach. Without a scratch name nothing is
        // under way: the item is in the trash, or it never came.
        if (error.code() == EEXIST || !folder_.holdsScratch(item, operation)) {
            return folder_.attributes(&operation, item).has_value();
        }
        if (!isAbsence(error)) throw;  // the original may be there, put aside
        folder_.adoptScratch(item, operation);
        return true;
    }
}

bool TrashRecovery::moveBack(const TrashItem& item, const FolderHandle& operation) {
    std::optional<HeldPlace> place;
    try {
        place = openOrigin(item);
        if (!place) return false;
        folder_.moveBack(item, operation, *place);
        return true;
    } catch (const FileError&) {
        // Nowhere to go back to, or the move itself failed and may have left something.
        return place && folder_.settleBack(item, operation, *place) != MoveState::atSource;
    }
}

/// The items that are out of the trash are forgotten. They were restored in order, but a loss of
/// power need not have kept it: each is looked for by itself.
bool TrashRecovery::recoverRestore(const JournalEntry& entry) {
    const std::vector<TrashItem> items = itemsOf(entry);
    if (items.empty()) return false;
    const std::string operationID = items.front().opID;
    const auto folder = folder_.openOperation(operationID);
    std::vector<std::string> restored;
    for (const TrashItem& item : items) {
        if (folder && entry.steps && entry.steps->itemID == item.id) {
            settleSteps(item, *folder, entry.steps->target);
        }
        if (!folder_.attributes(folder.get(), item)) restored.push_back(item.id);
    }
    if (restored.empty()) return false;
    forgetItems(lists_, restored);
    folder_.removeOperationIfEmpty(operationID);
    return true;
}

void TrashRecovery::settleSteps(const TrashItem& item, const FolderHandle& operation,
                                const std::string& target) {
    std::optional<HeldPlace> place;
    try {
        if (!isStepsTarget(item, target)) return;
        place = openPlace(mover_, target, FolderPath::withoutLinks);
        guard_.refuseOwnData(*place->folder);
    } catch (const TrashError&) {
        return;
    } catch (const FileError&) {
        // The place that it went to is out of reach: what was put aside is the item again.
        folder_.adoptScratch(item, operation);
        return;
    }
    folder_.settleOut(item, operation, *place);
}

/// Its own name, or the one beside a taken place, where something may come back to: the place that
/// it came from, or one that the user has chosen.
bool TrashRecovery::isStepsTarget(const TrashItem& item, const std::string& target) const {
    guard_.judgeReturn(target);
    return isScratchName(scratchName(item.id)) &&
           isRestoredName(lastPathComponent(target), item.name);
}

/// Only what the lists hold, each by its id: an entry that names nothing means nothing.
bool TrashRecovery::recoverRemoval(const JournalEntry& entry) {
    std::vector<std::string> gone;
    if (entry.itemIDs.empty()) return false;
    const std::vector<TrashItem> items = itemsOf(entry);
    for (const TrashItem& item : items) {
        try {
            folder_.remove(item);
            gone.push_back(item.id);
        } catch (const FileError&) {
            if (entry.kind == JournalEntry::Kind::purge) gone.push_back(item.id);
        }
    }
    if (gone.empty()) return false;
    forgetItems(lists_, gone);
    for (const TrashItem& item : items)
        folder_.removeOperationIfEmpty(item.opID);
    return true;
}

/// Emptying names all that it deletes. What the lists hold besides was not meant.
bool TrashRecovery::recoverEmptying(const JournalEntry& entry) {
    const std::unordered_set<std::string> named(entry.itemIDs.begin(), entry.itemIDs.end());
    const bool isMeant =
        !lists_.items.empty() && std::ranges::all_of(lists_.items, [&](const TrashItem& item) {
            return named.contains(item.id);
        });
    if (!isMeant) return false;
    try {
        folder_.removeEverything();
    } catch (const FileError&) {
        return false;  // what resists stays listed, as when emptying fails
    }
    lists_ = {};
    return true;
}

void TrashRecovery::record(Operation operation) {
    const double total = roundedToTenth(sumOf(operation.items));
    operation.gb = std::isfinite(total) ? total : 0;
    lists_.items.insert(lists_.items.end(), operation.items.begin(), operation.items.end());
    lists_.operations.insert(lists_.operations.begin(), std::move(operation));
}

std::vector<TrashItem> TrashRecovery::itemsOf(const JournalEntry& entry) const {
    const std::unordered_set<std::string> wanted(entry.itemIDs.begin(), entry.itemIDs.end());
    std::vector<TrashItem> items;
    std::ranges::copy_if(lists_.items, std::back_inserter(items), [&](const TrashItem& item) {
        return wanted.empty() ? item.opID == entry.operation.id : wanted.contains(item.id);
    });
    return items;
}

}  // namespace velto
