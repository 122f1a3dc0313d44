#include "cleaning/TrashRecovery.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <iterator>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "cleaning/restored_name.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

using Kind = JournalEntry::Kind;

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

std::vector<TrashItem> inOrderOfReturn(const std::vector<TrashItem>& items) {
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t index = 0; index < items.size(); ++index)
        places.emplace(standardizedPath(items[index].originalPath), index);
    std::vector<TrashItem> ordered;
    std::vector<bool> isTaken(items.size());
    for (std::size_t index = 0; index < items.size(); ++index) {
        std::vector<std::size_t> chain{index};  // the item and the folders above it, upwards
        std::string above = parentFolder(standardizedPath(items[index].originalPath));
        for (; above.size() > 1; above = parentFolder(above)) {
            if (const auto found = places.find(above); found != places.end())
                chain.push_back(found->second);
        }
        for (; !chain.empty(); chain.pop_back()) {
            if (isTaken[chain.back()]) continue;
            isTaken[chain.back()] = true;
            ordered.push_back(items[chain.back()]);
        }
    }
    return ordered;
}

bool TrashRecovery::recover(const JournalEntry& entry, Waiting& waiting) {
    extraRoots_.clear();
    switch (entry.kind) {
        case Kind::move:
            return recoverMove(entry, waiting);
        case Kind::restore:
            return recoverRestore(entry, waiting);
        case Kind::remove:
        case Kind::purge:
        case Kind::empty:
            return recoverRemoval(entry);
        case Kind::keep:
            return keep(entry);
        case Kind::rest:
        case Kind::putBack:
            return false;  // only wait
    }
    return false;
}

/// A move that had brought everything in is finished; any other is taken back. What the lists hold
/// already was settled before.
bool TrashRecovery::recoverMove(const JournalEntry& entry, Waiting& waiting) {
    JournalEntry open = entry;
    std::erase_if(open.operation.items, [&](const TrashItem& item) { return isListed(item); });
    const bool isRecorded = std::ranges::find(lists_.operations, entry.operation.id,
                                              &Operation::id) != lists_.operations.end();
    const bool isNew = !isRecorded && open.operation.items.size() == entry.operation.items.size();
    if (!isNew && open.operation.items.empty()) return false;
    if (!isConsistent(open.operation)) return false;
    const auto folder = folder_.openOperation(open.operation.id);
    if (!folder) return false;
    open.operation = presentOf(open, *folder, waiting);
    const std::size_t present = open.operation.items.size();
    const bool isComplete = present > 0 && present == entry.operation.items.size();
    if (isNew && !isComplete) {
        return takeBackIf(
            open, *folder, [&](const TrashItem& item) { return !startsByItself(item); }, waiting);
    }
    if (present == 0) return false;
    record(std::move(open.operation));
    return true;
}

bool TrashRecovery::isListed(const TrashItem& item) const {
    return std::ranges::find(lists_.items, item.id, &TrashItem::id) != lists_.items.end();
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

bool TrashRecovery::takeBack(const JournalEntry& entry, const std::vector<std::string>& extraRoots,
                             Waiting& waiting) {
    extraRoots_ = extraRoots;
    const auto folder = folder_.openOperation(entry.operation.id);
    if (!folder) return false;
    JournalEntry present = entry;
    present.operation = presentOf(entry, *folder, waiting);
    return takeBackIf(
        present, *folder, [](const TrashItem&) { return true; }, waiting);
}

std::string TrashRecovery::volumeIn(const JournalEntry& entry, const TrashItem& item) {
    const auto known = entry.volumes.find(item.id);
    return known == entry.volumes.end() ? std::string() : known->second;
}

/// The operation with those of its items that are in the trash. What nobody can tell of waits.
Operation TrashRecovery::presentOf(const JournalEntry& entry, const FolderHandle& folder,
                                   Waiting& waiting) {
    Operation present = entry.operation;
    std::erase_if(present.items, [&](const TrashItem& item) {
        const std::string known = volumeIn(entry, item);
        const std::size_t before = waiting.size();
        const Whereabouts where = whereIs(item, folder, known, waiting);
        if (waiting.size() > before) {
            JournalEntry& one = waiting.back();
            one.operation = entry.operation;
            one.operation.items = {item};
            if (!known.empty()) one.volumes[item.id] = known;
        }
        return where != Whereabouts::inTrash;
    });
    return present;
}

/// Of items that are in the trash.
bool TrashRecovery::takeBackIf(const JournalEntry& entry, const FolderHandle& folder,
                               const std::function<bool(const TrashItem&)>& mayGo,
                               Waiting& waiting) {
    Operation present = entry.operation;
    std::unordered_set<std::string> back;
    for (const TrashItem& item : inOrderOfReturn(present.items)) {
        const bool isBack = mayGo(item) && moveBack(item, folder, volumeIn(entry, item), waiting);
        if (isBack) back.insert(item.id);
    }
    std::erase_if(present.items, [&](const TrashItem& item) { return back.contains(item.id); });
    mover_.sync(folder);  // what has gone back is there before its way back is forgotten
    folder_.removeOperationIfEmpty(present.id);
    if (present.items.empty()) return false;
    record(std::move(present));
    return true;
}

/// The items that are out of the trash are forgotten. They were restored in order, but a loss of
/// power need not have kept it: each is looked for by itself.
bool TrashRecovery::recoverRestore(const JournalEntry& entry, Waiting& waiting) {
    const std::vector<TrashItem> items = inOrderOfReturn(itemsOf(entry));
    if (items.empty()) return false;
    const std::string operationID = items.front().opID;
    const auto folder = folder_.openOperation(operationID);
    std::vector<std::string> restored;
    for (const TrashItem& item : items) {
        const bool isStepped = folder && entry.steps && entry.steps->itemID == item.id;
        const bool isSettled = !isStepped || settleSteps(item, *folder, entry);
        const bool isThere = folder_.attributes(folder.get(), item).has_value();
        const bool isUnderWay = folder_.isUnderWay(item, folder.get());
        if (!isSettled && (isThere || isUnderWay)) {
            waiting.push_back({.kind = Kind::restore,
                               .operation = entry.operation,
                               .itemIDs = {item.id},
                               .steps = entry.steps,
                               .volumes = {}});
        }
        if (!isThere && !isUnderWay) restored.push_back(item.id);
    }
    if (restored.empty()) return false;
    forgetItems(lists_, restored);
    folder_.removeOperationIfEmpty(operationID);
    return true;
}

/// False when the place that the item went to is out of reach.
bool TrashRecovery::settleSteps(const TrashItem& item, const FolderHandle& operation,
                                const JournalEntry& entry) {
    const JournalEntry::Steps& steps = *entry.steps;
    try {
        if (!isStepsTarget(nameBefore(item, entry), item.id, steps.target)) return true;
        const Side side = reach(steps.target, steps.volume);
        // Gone for good: what was put aside is the item again.
        if (side.reach == Side::Reach::gone) folder_.adoptScratch(item, operation);
        if (side.place) {
            settleBack(item, operation, *side.place);
            folder_.settleOut(item, operation, *side.place);
        }
        return side.reach != Side::Reach::hidden;
    } catch (const TrashError&) {
        return true;  // no place that anything goes to
    } catch (const FileError&) {
        return false;
    }
}

/// Its own name, or the one beside a taken place, where something may come back to: the place that
/// it came from, or one that the user has chosen.
bool TrashRecovery::isStepsTarget(const std::string& name, const std::string& itemID,
                                  const std::string& target) const {
    guard_.judgeReturn(target);
    return isScratchName(scratchName(itemID)) && isRestoredName(lastPathComponent(target), name);
}

/// Only what the lists hold, each by its id: an entry that names nothing means nothing. What was
/// half deleted is finished. What stands whole stays, listed: the one who ended the program may
/// have wanted to stop it, and can ask again.
bool TrashRecovery::recoverRemoval(const JournalEntry& entry) {
    if (entry.itemIDs.empty()) return false;
    const std::vector<TrashItem> items = itemsOf(entry);
    std::vector<std::string> gone;
    for (const TrashItem& item : items) {
        try {
            if (folder_.isBegun(item)) folder_.finishRemoval(item);
        } catch (const FileError& error) {
            if (folder_.isBegun(item)) throw;
            if (entry.kind == Kind::purge && !isForMount(error)) gone.push_back(item.id);
            continue;
        }
        const auto operation = folder_.openOperation(item.opID);
        const bool isThere = folder_.attributes(operation.get(), item).has_value();
        if (!isThere && !folder_.isUnderWay(item, operation.get())) gone.push_back(item.id);
    }
    if (gone.empty()) return false;
    forgetItems(lists_, gone);
    for (const TrashItem& item : items)
        folder_.removeOperationIfEmpty(item.opID);
    return true;
}

/// One of which a part was recorded before gets the rest.
void TrashRecovery::record(Operation operation) {
    lists_.items.insert(lists_.items.end(), operation.items.begin(), operation.items.end());
    auto recorded = std::ranges::find(lists_.operations, operation.id, &Operation::id);
    if (recorded == lists_.operations.end()) {
        recorded = lists_.operations.insert(lists_.operations.begin(), std::move(operation));
    } else {
        recorded->items.insert(recorded->items.end(), operation.items.begin(),
                               operation.items.end());
    }
    const double total = roundedToTenth(sumOf(recorded->items));
    recorded->gb = std::isfinite(total) ? total : 0;
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
