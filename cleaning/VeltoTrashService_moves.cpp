#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <exception>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

#include <fmt/format.h>

#include "cleaning/VeltoTrashService.h"
#include "cleaning/restored_name.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

using Kind = JournalEntry::Kind;
using Reason = TrashError::Reason;

constexpr std::size_t idLength = 8;  // characters of a UUID that make an item's id

std::vector<std::string> withoutRepetitions(const std::vector<std::string>& paths) {
    std::unordered_set<std::string_view> seen;
    std::vector<std::string> unique;
    std::ranges::copy_if(paths, std::back_inserter(unique),
                         [&](const std::string& path) { return seen.insert(path).second; });
    return unique;
}

/// What the caller knows, else what the disk says. A size that is no number counts as unknown.
double sizeOf(const std::string& path, const FileAttributes& attributes,
              const VeltoTrashService::KnownSizes& knownSizes) {
    const auto known = knownSizes.find(path);
    if (known != knownSizes.end() && std::isfinite(known->second)) return known->second;
    return roundedToTenth(gigabytes(attributes.allocatedSize));
}

/// What keeps an item from a folder that it could go to otherwise.
bool isBlocked(const FileError& error) { return error.code() == ELOOP || error.code() == ENOTDIR; }

/// The next lower one of the limits that volumes have: most of them, and those that encrypt names.
/// False when there is none.
bool shortenLimit(std::size_t& longest) {
    constexpr std::array<std::size_t, 2> limits{255, 143};
    const auto lower = std::ranges::find_if(limits, [&](std::size_t one) { return one < longest; });
    if (lower == limits.end()) return false;
    longest = *lower;
    return true;
}

}  // namespace

// Moving in

Operation VeltoTrashService::moveToTrash(const std::vector<std::string>& paths,
                                         const std::string& kind, const KnownSizes& knownSizes,
                                         const std::vector<std::string>& extraRoots) {
    const Change change = beginStrictly();
    const JournalEntry planned = plannedMove(paths, kind, knownSizes, extraRoots);
    reserve_.sparing([&] { journal_.write(planned); });
    Operation operation = planned.operation;
    try {
        moveIn(operation, extraRoots);
    } catch (...) {
        takeBack(planned, change, extraRoots);
        throw;
    }
    operation.ts = clock_.now();
    lists_.items.insert(lists_.items.end(), operation.items.begin(), operation.items.end());
    lists_.operations.insert(lists_.operations.begin(), operation);
    saveAndSettle(change);
    log_.line(fmt::format("Velto ▶ Papelera de Velto: {} elementos, {} GB ({})",
                          operation.items.size(), shortest(operation.gb), operation.kind));
    return operation;
}

/// Validates every path and describes the items as they will stand in the trash.
JournalEntry VeltoTrashService::plannedMove(const std::vector<std::string>& paths,
                                            const std::string& kind, const KnownSizes& knownSizes,
                                            const std::vector<std::string>& extraRoots) {
    JournalEntry entry{
        .kind = Kind::move, .operation = {}, .itemIDs = {}, .steps = {}, .volumes = {}};
    Operation& operation = entry.operation;
    operation.id = "op" + newUUID();
    operation.ts = clock_.now();
    operation.kind = validUtf8(kind);
    std::unordered_set<std::string> ids;
    for (const TrashItem& item : lists_.items)
        ids.insert(item.id);
    const auto own = folder_.openPlaceOfTrash();
    const std::string ownVolume = own ? mover_.volumeOf(*own) : "";
    std::unordered_map<std::string, std::string> volumes;  // by the folders that hold the items
    for (const std::string& path : withoutRepetitions(paths)) {
        const auto admitted = guard_.admit(path, extraRoots);
        TrashItem item{.id = "",
                       .opID = operation.id,
                       .originalPath = path,
                       .name = admitted.place.name,
                       .gb = sizeOf(path, admitted.attributes, knownSizes),
                       .taken = operation.ts};
        do {  // eight digits are few once a trash holds many thousand items
            item.id = "it" + newUUID().substr(0, idLength);
        } while (!ids.insert(item.id).second);
        const auto [volume, isNew] = volumes.try_emplace(parentFolder(standardizedPath(path)));
        if (isNew) {
            const FolderHandle& folder = *admitted.place.folder;
            const bool isOwn = own && mover_.areOnOneMount(*own, folder);
            volume->second = isOwn ? ownVolume : mover_.volumeOf(folder);
        }
        if (volume->second != ownVolume) entry.volumes[item.id] = volume->second;
        operation.items.push_back(std::move(item));
    }
    const double total = roundedToTenth(sumOf(operation.items));
    operation.gb = std::isfinite(total) ? total : 0;
    return entry;
}

void VeltoTrashService::moveIn(const Operation& operation,
                               const std::vector<std::string>& extraRoots) {
    const auto folder = reserve_.sparing([&] { return folder_.makeOperation(operation.id); });
    for (const TrashItem& item : operation.items) {
        // Once more, and through this very folder: what was a folder at the first look may be a
        // link by now.
        const auto admitted = guard_.admit(item.originalPath, extraRoots);
        folder_.moveIn(admitted.place, *folder, item, reserve_);
    }
    mover_.sync(*folder);
}

void VeltoTrashService::takeBack(const JournalEntry& entry, const Change& change,
                                 const std::vector<std::string>& extraRoots) {
    try {
        std::vector<JournalEntry> waiting = waiting_;
        const bool hasChanged = recovery_.takeBack(entry, extraRoots, waiting);
        if (hasChanged) manifest_.noteChange();
        keepWaiting(std::move(waiting));
        if (hasChanged)
            saveAndSettle(change);
        else
            journal_.clear();
    } catch (const FileError&) {
        // The journal stays, and the next use of the trash goes on from there; the caller is told
        // of the error that came first.
    }
}

// Moving out

void VeltoTrashService::restore(const std::string itemID,
                                const std::vector<std::string>& extraRoots) {
    Change change = beginStrictly();
    restoreAll({itemWith(itemID)},
               {.kind = Kind::restore, .operation = {}, .itemIDs = {itemID}, .steps = {}},
               {.extraRoots = extraRoots, .chosen = {}, .judged = {}}, change);
}

void VeltoTrashService::restoreTo(const std::string itemID, const std::string& folder) {
    Change change = beginStrictly();
    restoreAll({itemWith(itemID)},
               {.kind = Kind::restore, .operation = {}, .itemIDs = {itemID}, .steps = {}},
               {.extraRoots = {}, .chosen = folder, .judged = {}}, change);
}

void VeltoTrashService::undoOperation(const std::string operationID,
                                      const std::vector<std::string>& extraRoots) {
    Change change = beginStrictly();
    std::vector<TrashItem> items;
    std::ranges::copy_if(lists_.items, std::back_inserter(items),
                         [&](const TrashItem& item) { return item.opID == operationID; });
    if (items.empty()) return;
    JournalEntry entry{.kind = Kind::restore, .operation = {}, .itemIDs = {}, .steps = {}};
    entry.operation.id = operationID;
    restoreAll(items, std::move(entry), {.extraRoots = extraRoots, .chosen = {}, .judged = {}},
               change);
}

/// Restores items of one operation in order up to the first failure, which is thrown. The lists are
/// saved once at the end: until then the journal tells what may have been moved.
void VeltoTrashService::restoreAll(const std::vector<TrashItem>& items, JournalEntry entry,
                                   Destination destination, Change& change) {
    const auto operation = folder_.openOperation(items.front().opID);
    reserve_.sparing([&] { journal_.write(entry); });
    std::vector<TrashItem> restored;
    std::exception_ptr failure;
    for (const TrashItem& item : inOrderOfReturn(items)) {
        try {
            restoreOne(item, operation.get(), destination, entry, change);
            restored.push_back(item);
        } catch (const ItemWaits&) {
            failure = std::current_exception();  // the others need not wait for it
        } catch (...) {
            failure = std::current_exception();
            break;
        }
    }
    if (!restored.empty()) {
        try {
            mover_.sync(*operation);
        } catch (const FileError& error) {
            change.unsettled = error;  // the next use looks again what is where
        }
        forget(restored);
        saveAndSettle(change);
    } else if (!change.unsettled) {
        journal_.clear();
    }
    if (failure) std::rethrow_exception(failure);
}

/// The place for a target, which is judged: through no link, and with missing folders made again
/// unless the user has chosen the folder.
HeldPlace VeltoTrashService::openReturn(const TrashItem& item, const std::string& target,
                                        Destination& destination) {
    const auto how =
        destination.chosen ? FolderPath::withoutLinks : FolderPath::createdWithoutLinks;
    try {
        HeldPlace place = reserve_.sparing([&] { return openPlace(mover_, target, how); });
        const std::string folder = parentFolder(target);
        if (destination.judged != folder) guard_.refuseOwnData(*place.folder);
        destination.judged = folder;
        return place;
    } catch (const FileError& error) {
        if (isBlocked(error)) throw ReturnBlocked(item, error);
        throw;
    }
}

void VeltoTrashService::restoreOne(const TrashItem& item, const FolderHandle* operation,
                                   Destination& destination, JournalEntry& entry, Change& change) {
    requireSettled(item, operation);
    if (!folder_.attributes(operation, item)) throw TrashError(Reason::notFound);
    const std::string target = destination.chosen
                                   ? standardizedPath(*destination.chosen + "/" + item.name)
                                   : guard_.formerPath(item, destination.extraRoots);
    if (destination.chosen) {
        if (!isComponent(item.name)) throw TrashError(Reason::notFound);
        guard_.judgeReturn(target);
    }
    HeldPlace place = openReturn(item, target, destination);
    const std::string wanted = place.name;
    std::size_t longest = mover_.longestName(*place.folder);
    for (int number = 0;;) {
        place.name = number == 0 ? wanted : restoredName(wanted, number, longest);
        try {
            if (mover_.attributes(*place.folder, place.name)) {
                ++number;
                continue;
            }
            const std::string path = target.substr(0, target.rfind('/') + 1) + place.name;
            moveOut(item, *operation, place, path, entry, change);
            returned_.push_back({item, path});
            return;
        } catch (const FileError& error) {
            if (change.unsettled) throw;  // the journal tells of one place only
            // The volume counts in other units than bytes, or says more than it takes.
            if (error.code() == ENAMETOOLONG && number > 0 && shortenLimit(longest)) continue;
            // Somebody was faster: the next name, then.
            if (error.code() != EEXIST || !mover_.attributes(*place.folder, place.name)) throw;
            ++number;
        }
    }
}

void VeltoTrashService::moveOut(const TrashItem& item, const FolderHandle& operation,
                                const HeldPlace& target, const std::string& targetPath,
                                JournalEntry& entry, Change& change) {
    bool inSteps = false;
    try {
        const auto announceSteps = [&] {
            // What the steps of the item before put aside is gone before they are forgotten.
            if (entry.steps) mover_.sync(operation);
            entry.steps = {
                .itemID = item.id, .target = targetPath, .volume = mover_.volumeOf(*target.folder)};
            stopWaiting(*entry.steps);
            reserve_.sparing([&] { journal_.write(entry); });
            inSteps = true;
        };
        folder_.moveOut(item, operation, target, announceSteps, reserve_);
    } catch (const FileError&) {
        if (!inSteps) throw;
        try {
            if (folder_.settleOut(item, operation, target) == MoveState::atTarget) return;
        } catch (const FileError& error) {
            change.unsettled = error;
        }
        throw;
    }
}

}  // namespace velto
