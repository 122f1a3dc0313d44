// What was cut off, and what of it waits.

#include <algorithm>

#include <fmt/format.h>

#include "cleaning/VeltoTrashService.h"
#include "platform/values/text.h"

namespace velto {

namespace {
using Kind = JournalEntry::Kind;
}

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

/// A new move of an item is in the way of what an earlier one has left elsewhere: that stays.
void VeltoTrashService::stopWaiting(const std::string& itemID) {
    std::vector<JournalEntry> others = waiting_;
    std::erase_if(others, [&](const JournalEntry& entry) {
        const auto& items = entry.operation.items;
        return std::ranges::find(entry.itemIDs, itemID) != entry.itemIDs.end() ||
               std::ranges::find(items, itemID, &TrashItem::id) != items.end();
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

std::vector<TrashItem> VeltoTrashService::itemsUnderWay() const {
    std::vector<TrashItem> items;
    const auto add = [&](const TrashItem& item) {
        const bool isKnown = std::ranges::find(items, item.id, &TrashItem::id) != items.end();
        if (isKnown) return;
        const auto operation = folder_.openOperation(item.opID);
        if (folder_.isUnderWay(item, operation.get())) items.push_back(item);
    };
    for (const JournalEntry& entry : waiting_) {
        if (entry.kind == Kind::move) std::ranges::for_each(entry.operation.items, add);
        for (const TrashItem& item : lists_.items) {
            if (std::ranges::find(entry.itemIDs, item.id) != entry.itemIDs.end()) add(item);
        }
    }
    return items;
}

std::vector<TrashItem> VeltoTrashService::waitingItems() {
    ensureLoaded();
    return itemsUnderWay();
}

}  // namespace velto
