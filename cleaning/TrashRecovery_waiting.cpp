// What waits for a volume or a folder, and what becomes of it when the user gives it up.

#include <algorithm>
#include <array>
#include <cerrno>

#include "cleaning/TrashRecovery.h"
#include "cleaning/restored_name.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Kind = JournalEntry::Kind;

/// Answers of the system that mean that a disk is not there.
bool meansDiskAbsent(const FileError& error) {
    constexpr std::array reasons{ENOENT, ENOTDIR,  ENODEV,    ENXIO,
                                 ESTALE, ENOTCONN, EHOSTDOWN, ETIMEDOUT};
    return std::ranges::find(reasons, error.code()) != reasons.end();
}

}  // namespace

bool TrashRecovery::recoverWaiting(const JournalEntry& entry, Waiting& waiting) {
    extraRoots_.clear();
    try {
        if (entry.kind == Kind::move) return recoverWaitingMove(entry, waiting);
        if (entry.kind == Kind::restore) return recoverRestore(entry, waiting);
        if (entry.kind == Kind::rest) return recoverRest(entry, waiting);
        if (entry.kind == Kind::putBack) return recoverPutBack(entry, waiting);
    } catch (const FileError&) {
        waiting.push_back(entry);
    }
    return false;
}

/// It was not known where the item is. When it turns out to be in the trash it stays there, for the
/// user to put back.
bool TrashRecovery::recoverWaitingMove(const JournalEntry& entry, Waiting& waiting) {
    if (entry.operation.items.empty() || isListed(entry.operation.items.front())) return false;
    if (!isConsistent(entry.operation)) return false;
    const auto folder = folder_.openOperation(entry.operation.id);
    if (!folder) return false;
    Operation present = presentOf(entry, *folder, waiting);
    folder_.removeOperationIfEmpty(entry.operation.id);
    if (present.items.empty()) return false;
    record(std::move(present));
    return true;
}

/// An item that came from another volume has its original still there, put aside. It goes once it
/// can be compared with the item; when that has left the trash meanwhile, nobody can.
bool TrashRecovery::recoverRest(const JournalEntry& entry, Waiting& waiting) {
    if (entry.operation.items.empty()) return false;
    const TrashItem& named = entry.operation.items.front();
    const auto item = std::ranges::find(lists_.items, named.id, &TrashItem::id);
    if (item == lists_.items.end() || !isScratchName(scratchName(named.id))) return false;
    const auto folder = folder_.openOperation(item->opID);
    if (!folder || !folder_.attributes(folder.get(), *item)) return false;
    const auto origin = originOf(*item);
    const std::string volume = volumeIn(entry, named);
    if (!origin || volume.empty()) return false;
    const Side side = reach(*origin, volume);
    if (side.reach == Side::Reach::gone) return false;
    if (side.reach == Side::Reach::hidden || folder_.holdsScratch(*item, *folder)) {
        waiting.push_back(entry);
    } else {
        settleBack(*item, *folder, *side.place);
        folder_.settleIn(*side.place, *folder, *item);
    }
    return false;
}

/// A move in was given up. Its original, when that was put aside, goes back to its place, whatever
/// the trash holds of it: the user may have deleted that, as a copy.
bool TrashRecovery::recoverPutBack(const JournalEntry& entry, Waiting& waiting) {
    if (entry.operation.items.empty()) return false;
    const TrashItem& given = entry.operation.items.front();
    const auto origin = originOf(given);
    if (!origin || !isScratchName(scratchName(given.id))) return false;
    const Side side = reach(*origin, volumeIn(entry, given));
    if (side.reach == Side::Reach::hidden) waiting.push_back(entry);
    if (!side.place) return false;
    const auto item = std::ranges::find(lists_.items, given.id, &TrashItem::id);
    if (item != lists_.items.end()) {
        const auto folder = folder_.openOperation(item->opID);
        if (folder && folder_.attributes(folder.get(), *item)) {
            settleBack(*item, *folder, *side.place);
        }
    }
    folder_.putOriginalBack(given, *side.place);
    return false;
}

WaitingItem TrashRecovery::describe(const JournalEntry& entry, const TrashItem& item) const {
    const bool isOut = entry.kind == Kind::restore;
    const std::string path = isOut && entry.steps ? entry.steps->target : item.originalPath;
    const std::string volume = isOut && entry.steps ? entry.steps->volume : volumeIn(entry, item);
    const auto folder = folder_.openOperation(item.opID);
    return {.item = item,
            .way = isOut ? WaitingItem::Way::out : WaitingItem::Way::in,
            .folder = parentFolder(standardizedPath(path)),
            .reason = whyItWaits(path, volume),
            .isWhole = folder && folder_.isScratchWhole(item, *folder, isOut)};
}

WaitingItem::Reason TrashRecovery::whyItWaits(const std::string& path,
                                              const std::string& volume) const {
    using Reason = WaitingItem::Reason;
    try {
        const auto folder =
            mover_.openFolder(parentFolder(standardizedPath(path)), FolderPath::withoutLinks);
        const bool isThere = volume.empty() || mover_.volumeOf(*folder) == volume;
        return isThere ? Reason::unsettled : Reason::absent;
    } catch (const FileError& error) {
        return meansDiskAbsent(error) ? Reason::absent : Reason::refused;
    }
}

JournalEntry TrashRecovery::planToKeep(const JournalEntry& entry, const TrashItem& item,
                                       double now) const {
    JournalEntry plan{.kind = Kind::keep,
                      .operation = entry.operation,
                      .itemIDs = {},
                      .steps = {},
                      .volumes = {}};
    const auto recorded = std::ranges::find(lists_.operations, item.opID, &Operation::id);
    if (recorded != lists_.operations.end()) plan.operation = *recorded;
    TrashItem kept = item;
    // Counted from now: the retention must not take at once what was waiting for so long.
    kept.taken = now;
    if (!describe(entry, item).isWhole) {
        kept.name = unfinishedName(item.name);
        kept.originalPath = parentFolder(standardizedPath(item.originalPath)) + "/" + kept.name;
    }
    plan.operation.id = item.opID;
    plan.operation.ts = now;
    plan.operation.items = {kept};
    return plan;
}

/// What stands in the trash under a scratch name becomes the item that the entry tells of.
bool TrashRecovery::keep(const JournalEntry& entry) {
    if (entry.operation.items.size() != 1) return false;
    const TrashItem& kept = entry.operation.items.front();
    const auto listed = std::ranges::find(lists_.items, kept.id, &TrashItem::id);
    if (listed == lists_.items.end() ? !isConsistent(entry.operation)
                                     : !isItOrUnfinished(kept, *listed)) {
        return false;
    }
    const auto folder = folder_.openOperation(kept.opID);
    if (!folder) return false;
    folder_.adoptScratch(kept, *folder);
    if (!folder_.attributes(folder.get(), kept)) return false;
    forgetItems(lists_, {kept.id});
    record(entry.operation);
    // The last thing that happened, also for who takes the last operation back.
    const auto recorded = std::ranges::find(lists_.operations, kept.opID, &Operation::id);
    recorded->ts = entry.operation.ts;
    std::rotate(lists_.operations.begin(), recorded, recorded + 1);
    return true;
}

bool TrashRecovery::isItOrUnfinished(const TrashItem& kept, const TrashItem& listed) {
    const bool isNamed = kept.name == listed.name || kept.name == unfinishedName(listed.name);
    return isNamed && kept.opID == listed.opID && isComponent(kept.opID) &&
           isScratchName(scratchName(kept.id)) &&
           parentFolder(standardizedPath(kept.originalPath)) ==
               parentFolder(standardizedPath(listed.originalPath));
}

/// The name that an item had before it was given up: what was on its way elsewhere bears that.
std::string TrashRecovery::nameBefore(const TrashItem& item, const JournalEntry& entry) {
    const auto& items = entry.operation.items;
    const auto before = std::ranges::find(items, item.id, &TrashItem::id);
    const bool isIt = before != items.end() && item.name == unfinishedName(before->name);
    return isIt ? before->name : item.name;
}

}  // namespace velto
