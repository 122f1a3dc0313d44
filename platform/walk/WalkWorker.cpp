#include "platform/walk/WalkWorker.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include "platform/values/text.h"

namespace velto {

void WalkWorker::run() {
    WalkQueue::Item item;
    while (setting_.queue.next(item))
        walk(item);
}

void WalkWorker::walk(const WalkQueue::Item& item) {
    WalkedFolder& folder = *item.folder;
    const bool isRoot = folder.parent() == nullptr;
    if (setting_.cancelled.isCancelled()) return setting_.queue.stop();
    if (isRoot && !visitor_.enter(folder)) return;

    std::shared_ptr<OpenFolder> handle = open(item);
    if (!handle) {
        if (isRoot) {
            setting_.rootErrors[folder.root()] = errno;
        } else {
            ++unreadable_;
        }
        return;
    }
    ReadOptions options;
    options.skipHidden = setting_.options.skipHidden;
    options.sizeEveryEntry = setting_.options.sizeEveryEntry;
    if (folder.place() != nullptr) options.keepFlagged = &folder.place()->keepFlagged;
    entries_.clear();
    if (!setting_.reader.read(*handle, options, entries_)) ++unreadable_;

    children_.clear();
    for (const DirectoryEntry& entry : entries_.entries()) {
        if (!meet(item.folder, entry)) return setting_.queue.stop();
    }
    setting_.queue.add(folder, std::move(handle), children_);
}

/// False when the walk has been cancelled.
bool WalkWorker::meet(const FolderReference& folder, const DirectoryEntry& entry) {
    if (setting_.cancelled.isCancelled()) return false;
    const Place* place = folder->place();
    if (place != nullptr) place = place->child(entry.name);
    if (place != nullptr && place->leftOut) return true;

    switch (entry.kind) {
        case EntryKind::regular:
            visitor_.file(*folder, entry, place);
            break;
        case EntryKind::folder: {
            visitor_.other(*folder, entry);
            FolderReference child = FolderReference::inside(folder, entry.name, place);
            if (visitor_.enter(*child)) children_.push_back(std::move(child));
            break;
        }
        case EntryKind::unreadable:
            ++unreadable_;
            break;
        case EntryKind::symbolicLink:
        case EntryKind::other:
            visitor_.other(*folder, entry);
            break;
    }
    return true;
}

/// Null with `errno` set on failure.
std::shared_ptr<OpenFolder> WalkWorker::open(const WalkQueue::Item& item) {
    const WalkedFolder& folder = *item.folder;
    if (folder.parent() == nullptr) return openRoot(setting_.roots[folder.root()]);
    const std::shared_ptr<OpenFolder> parent = item.parent ? item.parent : openAnew(folder);
    return parent ? setting_.reader.openChild(*parent, folder.name()) : nullptr;
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
