#include "cleaning/VeltoTrashService.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "cleaning/own_folder.h"
#include "platform/Platform.h"
#include "platform/values/units.h"

namespace velto {
namespace {

using Kind = JournalEntry::Kind;
using Reason = TrashError::Reason;

std::vector<std::string> idsOf(const std::vector<TrashItem>& items) {
    std::vector<std::string> ids;
    ids.reserve(items.size());
    for (const TrashItem& item : items)
        ids.push_back(item.id);
    return ids;
}

}  // namespace

VeltoTrashService::VeltoTrashService(FileManager& files, FileMover& mover, const Clock& clock,
                                     Log& log, const HomeLayout& layout)
    : files_(files),
      mover_(mover),
      clock_(clock),
      log_(log),
      layout_(layout),
      guard_(files, mover, layout),
      folder_(mover, layout),
      journal_(files, layout),
      reserve_(files, layout),
      manifest_(files, mover, folder_.manifestPath()),
      recovery_(mover, guard_, layout, folder_, lists_) {}

VeltoTrashService& VeltoTrashService::shared() {
    Platform& platform = processPlatform();
    // Lives for ever: work may use it while the process ends, when the destructors of static
    // objects have run already.
    static auto* const instance =
        std::make_unique<VeltoTrashService>(*platform.files, *platform.mover, *platform.clock,
                                            *platform.log, platform.layout)
            .release();
    return *instance;
}

// Deleting for good

void VeltoTrashService::deletePermanently(const std::string itemID) {
    const Change change = begin();
    const TrashItem item = itemWith(itemID);
    const auto operation = folder_.openOperation(item.opID);
    requireSettled(item, operation.get());
    if (!folder_.attributes(operation.get(), item)) throw TrashError(Reason::notFound);
    announce({.kind = Kind::remove, .operation = {}, .itemIDs = {itemID}, .steps = {}}, change);
    removeItem(*operation, item, change);
    forget({item});
    saveAndSettle(change);
}

/// One that fails ends the change, and the item is as it was; or the journal tells that its removal
/// was begun.
void VeltoTrashService::removeItem(const FolderHandle& operation, const TrashItem& item,
                                   const Change& change) {
    try {
        folder_.remove(operation, item);
    } catch (const FileError&) {
        if (!change.unsettled && !folder_.isBegun(item)) journal_.clear();
        throw;
    }
}

void VeltoTrashService::emptyTrash(const Progress& progress) {
    const Change change = begin();
    // What an earlier change has left unsettled may be the only copy of a file.
    if (change.unsettled && !change.isOnlyUnsaved) throw FileError(*change.unsettled);
    const std::vector<TrashItem> kept = itemsUnderWay();
    std::vector<TrashItem> items = lists_.items;
    std::erase_if(items, [&](const TrashItem& item) {
        return std::ranges::find(kept, item.id, &TrashItem::id) != kept.end();
    });
    announce({.kind = Kind::empty, .operation = {}, .itemIDs = idsOf(items), .steps = {}}, change);
    std::unique_ptr<FolderHandle> operation;
    std::string opened;
    std::size_t done = 0;
    for (const TrashItem& item : items) {
        if (item.opID != std::exchange(opened, item.opID)) {
            operation = folder_.openOperation(item.opID);
        }
        if (operation) removeItem(*operation, item, change);
        if (progress) progress(++done, items.size());
    }
    try {
        folder_.removeEverything(kept);
    } catch (const FileError&) {
        if (!change.unsettled) journal_.clear();
        throw;
    }
    forgetItems(lists_, idsOf(items));
    saveAndSettle(change);
}

std::vector<FileError> VeltoTrashService::erase(const std::function<void(bool isGone)>& alongside) {
    std::unique_ptr<FileLock> lock;
    if (files_.exists(layout_.dataFolder)) lock = mover_.lock(lockPath(), true);
    refresh();
    const std::vector<FileError> failures = folder_.removeWhatGoes();
    waiting_.clear();
    leftJournal_ = false;
    if (failures.empty()) {
        lists_ = {};
    } else {
        std::vector<TrashItem> gone = lists_.items;
        std::erase_if(gone, [&](const TrashItem& item) {
            try {
                return folder_.attributes(folder_.openOperation(item.opID).get(), item).has_value();
            } catch (const FileError&) {
                return true;  // out of reach, but not gone
            }
        });
        forgetItems(lists_, idsOf(gone));
        saveLists();
    }
    alongside(failures.empty());
    return failures;
}

double VeltoTrashService::purgeExpired(std::int64_t retentionDays, const OwnRetention& own) {
    try {
        return purge(retentionDays, own);
    } catch (const FileError&) {
        return 0;  // out of reach: what is expired now still is at the next purge
    }
}

double VeltoTrashService::purge(std::int64_t retentionDays, const OwnRetention& own) {
    const Change change = begin();
    const double now = clock_.now();
    std::vector<TrashItem> expired;
    std::ranges::copy_if(lists_.items, std::back_inserter(expired), [&](const TrashItem& item) {
        const std::int64_t days = own ? std::min(own(item), retentionDays) : retentionDays;
        return item.taken < now - static_cast<double>(days) * secondsPerDay &&
               !folder_.isUnderWay(item, folder_.openOperation(item.opID).get());
    });
    if (expired.empty()) return 0;
    announce({.kind = Kind::purge, .operation = {}, .itemIDs = idsOf(expired), .steps = {}},
             change);
    double freed = 0;
    std::vector<TrashItem> gone;
    for (const TrashItem& item : expired) {
        double size = 0;
        try {
            const auto operation = folder_.openOperation(item.opID);
            const auto attributes = folder_.attributes(operation.get(), item);
            if (attributes) size = gigabytes(attributes->allocatedSize);
            if (operation) folder_.remove(*operation, item);
        } catch (const FileError& error) {
            // Forgotten all the same, as the retention period has ended; but what is mounted inside
            // has kept it whole, and then it stays listed.
            if (isForMount(error)) continue;
        }
        freed += size;
        gone.push_back(item);
    }
    if (gone.empty()) {
        if (!change.unsettled) journal_.clear();
        return 0;
    }
    forget(gone);
    saveAndSettle(change);
    log_.line(
        fmt::format("Velto ▶ purga: {} elementos, {} GB liberados", gone.size(), tenths(freed)));
    return freed;
}

// The lists

double VeltoTrashService::totalGB() { return sumOf(items()); }

const std::vector<TrashItem>& VeltoTrashService::items() {
    ensureLoaded();
    return lists_.items;
}

const std::vector<Operation>& VeltoTrashService::operations() {
    ensureLoaded();
    return lists_.operations;
}

void VeltoTrashService::validate(const std::string& path,
                                 const std::vector<std::string>& extraRoots) {
    guard_.admit(path, extraRoots);
}

const TrashItem& VeltoTrashService::itemWith(const std::string& id) const {
    const auto found = std::ranges::find(lists_.items, id, &TrashItem::id);
    if (found == lists_.items.end()) throw TrashError(Reason::notFound);
    return *found;
}

void VeltoTrashService::forget(const std::vector<TrashItem>& gone) {
    forgetItems(lists_, idsOf(gone));
    std::unordered_set<std::string> seen;
    for (const TrashItem& item : gone) {
        if (seen.insert(item.opID).second) folder_.removeOperationIfEmpty(item.opID);
    }
}

// One change at a time

VeltoTrashService::Change VeltoTrashService::begin() {
    reserve_.sparing([&] { files_.createFolders(layout_.dataFolder); });
    Change change;
    change.lock = reserve_.sparing([&] { return mover_.lock(lockPath(), true); });
    change.reserve.reset(this);
    openOwnFolder(mover_, layout_.trashFolder);  // for its refusal of what is no folder of ours
    if (!refresh()) throw FileError("read", folder_.manifestPath(), EIO);
    settleEarlierChange(change);
    return change;
}

VeltoTrashService::Change VeltoTrashService::beginStrictly() {
    Change change = begin();
    if (change.unsettled) throw FileError(*change.unsettled);
    return change;
}

/// False when another process has changed the lists and they cannot be read.
bool VeltoTrashService::refresh() {
    // Another process has settled what this one could not save: what is in memory never came true.
    if (leftJournal_ && !journal_.exists()) {
        if (!manifest_.reload(lists_)) return false;
        leftJournal_ = false;
    }
    return manifest_.refresh(lists_);
}

/// For reading alone: never waits for another process, and settles what it has left only when it is
/// not at work.
void VeltoTrashService::ensureLoaded() {
    const bool isSettled = !journal_.exists() && !journal_.hasWaiting() && !leftJournal_;
    if (manifest_.isCurrent() && isSettled) return;
    Change change;
    try {
        if (files_.exists(layout_.dataFolder)) change.lock = mover_.lock(lockPath(), false);
    } catch (const FileError&) {
        // Without the lock the lists are still whole: the manifest is replaced in one step.
    }
    refresh();
    if (change.lock) settleEarlierChange(change);
}

/// A removal goes on without the journal: it must be possible on a full disk.
void VeltoTrashService::announce(const JournalEntry& entry, const Change& change) {
    if (change.unsettled) return;
    try {
        reserve_.sparing([&] { journal_.write(entry); });
    } catch (const FileError&) {
        // Cut off now, an item could be found half deleted; it was to go anyway.
    }
}

std::optional<FileError> VeltoTrashService::saveLists() {
    auto failure = manifest_.save(lists_);
    if (failure && isForSpace(*failure) && reserve_.release()) failure = manifest_.save(lists_);
    return failure;
}

void VeltoTrashService::keepReserve() {
    const auto manifest = files_.attributes(folder_.manifestPath());
    // A reset has taken the folder away, or it never came into being.
    if (!manifest) return;
    // One that is too long to be one counts as empty.
    const bool isOne = manifest->logicalSize <= trashRecordsLimit.bytes;
    reserve_.keep(isOne ? manifest->logicalSize : 0);
}

/// Saves the lists, silently when that fails: they stay in force, and so does the journal.
void VeltoTrashService::saveAndSettle(const Change& change) {
    const bool isSaved = !saveLists().has_value();
    leftJournal_ = !isSaved && journal_.exists();
    if (isSaved && (!change.unsettled || change.isOnlyUnsaved)) journal_.clear();
}

}  // namespace velto
