#include "platform/walk/WalkedFolder.h"

#include <algorithm>
#include <utility>

namespace velto {

FolderReference::FolderReference(std::unique_ptr<WalkedFolder> folder) : folder_(folder.release()) {
    folder_->references_.store(1, std::memory_order_relaxed);
}

FolderReference::FolderReference(const FolderReference& other) : folder_(other.folder_) {
    if (folder_ != nullptr) folder_->references_.fetch_add(1, std::memory_order_relaxed);
}

FolderReference::FolderReference(FolderReference&& other) noexcept
    : folder_(std::exchange(other.folder_, nullptr)) {}

FolderReference& FolderReference::operator=(FolderReference other) noexcept {
    std::swap(folder_, other.folder_);
    return *this;
}

void FolderReference::release() {
    // A loop, not the parents' destructors: a chain of many thousand folders must not recurse.
    WalkedFolder* folder = std::exchange(folder_, nullptr);
    while (folder != nullptr && folder->references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        const std::unique_ptr<WalkedFolder> last(folder);
        folder = std::exchange(last->parent_.folder_, nullptr);
    }
}

FolderReference FolderReference::root(std::string path, std::size_t index, std::uint32_t mark,
                                      const Place* place) {
    FolderReference folder(
        std::make_unique<WalkedFolder>(FolderReference(), std::move(path), place));
    folder->root_ = index;
    folder->mark = mark;
    return folder;
}

FolderReference FolderReference::inside(const FolderReference& parent, std::string_view name,
                                        const Place* place) {
    return FolderReference(std::make_unique<WalkedFolder>(parent, std::string(name), place));
}

WalkedFolder::WalkedFolder(FolderReference parent, std::string name, const Place* place)
    : parent_(std::move(parent)), name_(std::move(name)), place_(place) {
    if (!parent_) return;
    mark = parent_->mark;
    root_ = parent_->root_;
}

bool WalkedFolder::hidesFlagged(const DirectoryEntry& entry) const {
    return place_ == nullptr ||
           std::ranges::find(place_->keepFlagged, entry.name) == place_->keepFlagged.end();
}

std::string WalkedFolder::path() const { return joined(nullptr, {}); }

std::string WalkedFolder::pathOf(std::string_view name) const { return joined(nullptr, name); }

std::string WalkedFolder::pathEnd(std::size_t length) const {
    const WalkedFolder* stop = this;
    std::size_t found = 0;
    while (stop != nullptr && found < length) {
        found += stop->name_.size() + 1;
        stop = stop->parent();
    }
    return joined(stop, {});
}

/// The names from below `stop` (null: from the root) down to this folder and `name`, each but a
/// root's with a slash before it.
std::string WalkedFolder::joined(const WalkedFolder* stop, std::string_view name) const {
    std::size_t length = name.empty() ? 0 : name.size() + 1;
    for (const WalkedFolder* folder = this; folder != stop; folder = folder->parent()) {
        length += folder->name_.size() + (folder->parent_ ? 1 : 0);
    }
    std::string path(length, '/');
    std::size_t position = length;
    const auto prepend = [&](std::string_view text) {
        position -= text.size();
        text.copy(path.data() + position, text.size());
    };
    if (!name.empty()) {
        prepend(name);
        --position;
    }
    for (const WalkedFolder* folder = this; folder != stop; folder = folder->parent()) {
        if (folder->parent_) {
            prepend(folder->name_);
            --position;
        } else if (folder->name_ == "/" && position < length) {
            // The slash before the next name is the root's own.
        } else {
            prepend(folder->name_);
        }
    }
    path.erase(0, position);
    return path;
}

}  // namespace velto
