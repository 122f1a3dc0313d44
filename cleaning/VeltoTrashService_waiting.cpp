// What was cut off, and what of it waits.

#include <algorithm>

#include <fmt/format.h>

#include "cleaning/VeltoTrashService.h"
#include "platform/values/text.h"

namespace velto {

namespace {

using Kind = JournalEntry::Kind;

bool isAbout(const JournalEntry& entry, const std::string& itemID) {
    const auto& items = entry.operation.items;
    return std::ranges::find(entry.itemIDs, itemID) != entry.itemIDs.end() ||
           std::ranges::find(items, itemID, &TrashItem::id) != items.end();
}

/// What is left to be done elsewhere once the waiting of an item was given up: an original goes
/// back to its place, a copy that was begun there goes.
JournalEntry afterwards(const JournalEntry& entry, const TrashItem& item) {
    JournalEntry rest = entry;
    rest.operation.items = {item};
    if (entry.kind == Kind::move) rest.kind = Kind::putBack;
    return rest;
}

}  // namespace

void VeltoTrashService::settleEarlierChange(Change& change) {
    try {
        const auto entry = journal_.read();
        waiting_ = journal_.readWaiting();
        if (!entry && waiting_.empty()) return;
        std::vector<JournalEntry> waiting;
        // Lists that have changed are saved whatever else fails.
        if (entry && recovery_.recover(*entry, waiting)) manifest_.noteChange();
        for (const JournalEntry& earlier : waiting_) {
            if (recovery_.recoverWaiting(earlier, waiting)) manifest_.noteChange();
        }
        // What is settled is forgotten last.
        std::vector<JournalEntry> all = waiting_;
        all.insert(all.end(), waiting.begin(), waiting.end());
        keepWaiting(all);
        if (!manifest_.isSaved()) change.unsettled = saveLists();
        change.isOnlyUnsaved = change.unsettled.has_value();
        leftJournal_ = change.isOnlyUnsaved;
        if (change.unsettled) return;
        keepWaiting(waiting);
        if (entry) journal_.clear();
    } catch (const FileError& error) {
        change.unsettled = error;
    }
}

void VeltoTrashService::keepWaiting(std::vector<JournalEntry> waiting) {
    std::vector<JournalEntry> once;
    for (JournalEntry& entry : waiting) {
        if (std::ranges::find(once, entry) == once.end()) once.push_back(std::move(entry));
    }
    if (once == waiting_) return;
    reserve_.sparing([&] { journal_.writeWaiting(once); });
    if (once.size() > waiting_.size()) {
        log_.line(
            fmt::format("Velto ▶ Papelera: {} movimientos interrumpidos esperan a su disco o "
                        "carpeta",
                        once.size()));
    }
    waiting_ = std::move(once);
}

/// A new move of an item is in the way of what an earlier one has left elsewhere: that stays. What
/// it leaves has names of its own only on another volume.
void VeltoTrashService::stopWaiting(const JournalEntry::Steps& steps) {
    std::vector<JournalEntry> others = waiting_;
    std::erase_if(others, [&](const JournalEntry& entry) {
        if (entry.kind == Kind::putBack) {
            const auto volume = entry.volumes.find(steps.itemID);
            const bool isApart = volume != entry.volumes.end() && !steps.volume.empty() &&
                                 volume->second != steps.volume;
            if (isApart) return false;
        }
        return isAbout(entry, steps.itemID);
    });
    keepWaiting(std::move(others));
}

void VeltoTrashService::requireSettled(const TrashItem& item, const FolderHandle* operation) const {
    if (!folder_.isUnderWay(item, operation)) return;
    for (const JournalEntry& entry : waiting_) {
        if (entry.steps && entry.steps->itemID == item.id) {
            throw ItemWaits(item, parentFolder(entry.steps->target));
        }
    }
    throw ItemWaits(item, parentFolder(item.originalPath));
}

std::vector<VeltoTrashService::Waiter> VeltoTrashService::waiters() const {
    std::vector<Waiter> found;
    const auto add = [&](const JournalEntry& entry, const TrashItem& item) {
        const bool isKnown = std::ranges::any_of(
            found, [&](const Waiter& known) { return known.item.id == item.id; });
        if (isKnown) return;
        const auto operation = folder_.openOperation(item.opID);
        if (folder_.isUnderWay(item, operation.get())) found.push_back({entry, item});
    };
    for (const JournalEntry& entry : waiting_) {
        if (entry.kind == Kind::move) {
            for (const TrashItem& item : entry.operation.items)
                add(entry, item);
        }
        for (const TrashItem& item : lists_.items) {
            if (std::ranges::find(entry.itemIDs, item.id) != entry.itemIDs.end()) add(entry, item);
        }
    }
    return found;
}

std::vector<TrashItem> VeltoTrashService::itemsUnderWay() const {
    std::vector<TrashItem> items;
    for (const Waiter& waiter : waiters())
        items.push_back(waiter.item);
    return items;
}

std::vector<WaitingItem> VeltoTrashService::waitingItems() {
    ensureLoaded();
    std::vector<WaitingItem> items;
    try {
        for (const Waiter& waiter : waiters())
            items.push_back(recovery_.describe(waiter.entry, waiter.item));
    } catch (const FileError&) {
        // The trash itself is out of reach, and nobody can tell what is in it.
    }
    return items;
}

bool VeltoTrashService::giveUpWaiting(const std::string itemID) {
    const Change change = beginStrictly();
    const std::vector<Waiter> all = waiters();
    const auto waiter =
        std::ranges::find_if(all, [&](const Waiter& one) { return one.item.id == itemID; });
    if (waiter == all.end()) return false;
    const JournalEntry plan = recovery_.planToKeep(waiter->entry, waiter->item, clock_.now());
    // Noted before anything is forgotten: whoever finds both does no harm by either.
    std::vector<JournalEntry> waiting = waiting_;
    waiting.push_back(afterwards(waiter->entry, waiter->item));
    keepWaiting(waiting);
    reserve_.sparing([&] { journal_.write(plan); });
    std::vector<JournalEntry> none;
    recovery_.recover(plan, none);
    saveAndSettle(change);
    std::erase(waiting, waiter->entry);
    keepWaiting(std::move(waiting));
    log_.line(fmt::format("Velto ▶ Papelera: «{}» ya no espera a su disco o carpeta",
                          singleLine(validUtf8(waiter->item.name))));
    return true;
}

}  // namespace velto
