#include "platform/walk/WalkWorker.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/background_priority.h"
#include "platform/values/text.h"

namespace velto {

void WalkWorker::run() {
    setting_.queue.join(seat_);
    WalkQueue::Item item;
    while (setting_.queue.next(seat_, item, listed_)) {
        followPriority();
        walk(item);
    }
}

void WalkWorker::walk(const WalkQueue::Item& item) {
    WalkedFolder& folder = *item.folder;
    const bool isRoot = folder.parent() == nullptr;
    if (setting_.cancelled.isCancelled()) return setting_.queue.stop();
    if (isRoot && !visitor_.enter(folder)) return;

    switch (open(item, listed_.handle)) {
        case Opening::done:
            break;
        case Opening::declined:
            return;
        case Opening::failed:
            if (isRoot) {
                setting_.rootErrors[folder.root()] = errno;
            } else if (errno == ENOENT) {
                visitor_.vanished(folder);
            } else {
                ++unreadable_;
                visitor_.unopened(folder);
            }
            return;
    }
    entries_.clear();
    const bool isComplete = setting_.reader.read(*listed_.handle, readOptions(folder), entries_);
    if (!isComplete) ++unreadable_;

    for (const DirectoryEntry& entry : entries_.entries()) {
        if (!meet(item.folder, entry)) return setting_.queue.stop();
    }
    visitor_.end(folder, isComplete);
}

ReadOptions WalkWorker::readOptions(const WalkedFolder& folder) const {
    ReadOptions options;
    options.skipHidden = setting_.options.skipHidden;
    options.sizeEveryEntry = setting_.options.sizeEveryEntry;
    options.allocatedOfEveryFile = setting_.options.allocatedOfEveryFile;
    if (folder.place() != nullptr) options.keepFlagged = &folder.place()->keepFlagged;
    return options;
}

/// False when the walk has been cancelled.
bool WalkWorker::meet(const FolderReference& folder, const DirectoryEntry& entry) {
    if (setting_.cancelled.isCancelled()) return false;
    const Place* place = folder->place();
    if (place != nullptr) place = place->child(entry.name);
    if (place != nullptr && place->leftOut) {
        visitor_.leftOut(*folder, entry, *place);
        return true;
    }

    switch (entry.kind) {
        case EntryKind::regular:
            visitor_.file(*folder, entry, place);
            break;
        case EntryKind::folder:
            meetFolder(folder, entry, place);
            break;
        case EntryKind::unreadable:
            ++unreadable_;
            visitor_.unreadable(*folder, entry);
            break;
        case EntryKind::symbolicLink:
        case EntryKind::other:
            visitor_.other(*folder, entry);
            break;
    }
    return true;
}

void WalkWorker::meetFolder(const FolderReference& folder, const DirectoryEntry& entry,
                            const Place* place) {
    visitor_.other(*folder, entry);
    FolderReference child = FolderReference::inside(folder, entry.name, place);
    child->isHidden = folder->hides(entry);
    if (visitor_.enter(*child)) listed_.children.push_back(std::move(child));
}

/// On failure `errno` is set.
WalkWorker::Opening WalkWorker::open(const WalkQueue::Item& item,
                                     std::shared_ptr<OpenFolder>& handle) {
    const WalkedFolder& folder = *item.folder;
    if (folder.parent() == nullptr) {
        handle = openRoot(setting_.roots[folder.root()]);
        return handle ? begin(folder, *handle, {}) : Opening::failed;
    }
    const std::shared_ptr<OpenFolder> parent = item.parent ? item.parent : openAnew(folder);
    if (!parent) return Opening::failed;
    // Before it is opened: what is mounted there may be dead, and is not the walk's to enter.
    const Opening begun = begin(folder, *parent, folder.name());
    if (begun != Opening::done) return begun;
    handle = setting_.reader.openChild(*parent, folder.name());
    return handle ? Opening::done : Opening::failed;
}

WalkWorker::Opening WalkWorker::begin(const WalkedFolder& folder, OpenFolder& handle,
                                      std::string_view name) {
    if (!setting_.options.folderStatus) return Opening::done;
    FolderStatus status;
    if (!setting_.reader.status(handle, name, status)) return Opening::failed;
    return visitor_.begin(folder, status) ? Opening::done : Opening::declined;
}

std::shared_ptr<OpenFolder> WalkWorker::openRoot(const WalkRoot& root) {
    if (root.resolved.empty() || !isAtOrBelow(root.path, root.resolved)) {
        return setting_.reader.open(root.path);
    }
    std::shared_ptr<OpenFolder> handle = setting_.reader.open(root.resolved);
    std::string_view rest = std::string_view(root.path).substr(root.resolved.size());
    while (handle && !rest.empty()) {
        rest.remove_prefix(1);
        const std::string_view name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(name.size());
        if (!name.empty()) handle = setting_.reader.openChild(*handle, name);
    }
    return handle;
}

/// The parent of `folder`, opened again name by name from the nearest folder above that is open.
/// A folder that has become a link since it was walked is refused like any other.
std::shared_ptr<OpenFolder> WalkWorker::openAnew(const WalkedFolder& folder) {
    auto [handle, closed] = setting_.queue.openAncestor(folder);
    for (auto next = closed.rbegin(); next != closed.rend(); ++next) {
        handle = setting_.reader.openChild(*handle, (*next)->name());
        if (!handle) return nullptr;
        setting_.queue.keepOpen(**next, handle);
    }
    return handle;
}

}  // namespace velto
