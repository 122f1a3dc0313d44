#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "platform/DirectoryReader.h"
#include "platform/values/PlaceTable.h"

namespace velto {

class WalkedFolder;

/// Keeps a walked folder, and through it the folders above it, alive. Letting go of the deepest of
/// many nested folders takes no stack.
class FolderReference {
public:
    FolderReference() = default;
    FolderReference(const FolderReference& other);
    FolderReference(FolderReference&& other) noexcept;
    FolderReference& operator=(FolderReference other) noexcept;
    ~FolderReference() { release(); }

    /// A new folder: a root (named by its path) or a folder inside `parent`.
    static FolderReference root(std::string path, std::size_t index, std::uint32_t mark,
                                const Place* place);
    static FolderReference inside(const FolderReference& parent, std::string_view name,
                                  const Place* place);

    WalkedFolder& operator*() const { return *folder_; }
    WalkedFolder* operator->() const { return folder_; }
    explicit operator bool() const { return folder_ != nullptr; }
    void release();

private:
    explicit FolderReference(std::unique_ptr<WalkedFolder> folder);

    WalkedFolder* folder_ = nullptr;
};

/// A folder on a walk. No folder stores its path: it is put together when somebody asks.
class WalkedFolder {
public:
    WalkedFolder(FolderReference parent, std::string name, const Place* place);

    /// The last path component; a root's whole path.
    const std::string& name() const { return name_; }

    /// Null for a root.
    const WalkedFolder* parent() const { return parent_ ? &*parent_ : nullptr; }

    /// The place of this folder in the walk's table, null for none.
    const Place* place() const { return place_; }

    /// Index of the root that this folder lies below.
    std::size_t root() const { return root_; }

    /// The absolute path, without a trailing slash except for "/".
    std::string path() const;

    /// The absolute path of an entry of this folder.
    std::string pathOf(std::string_view name) const;

    /// The end of the path in whole components, at least `length` bytes of it unless the path is
    /// shorter.
    std::string pathEnd(std::size_t length) const;

    /// True for an entry of this folder that is hidden: its name begins with a full stop, or its
    /// file system flags it and the walk's table does not keep it.
    bool hides(const DirectoryEntry& entry) const {
        return entry.name.starts_with('.') || (entry.hiddenFlag && hidesFlagged(entry));
    }

    /// What the visitor noted about the folder; a new folder has the mark of the one above it.
    std::uint32_t mark = 0;

    /// A number that the visitor gives it; its own affair.
    std::uint32_t number = 0;

    /// As `hides` of the folder above says; never true for a root.
    bool isHidden = false;

private:
    friend class FolderReference;
    friend class WalkQueue;

    bool hidesFlagged(const DirectoryEntry& entry) const;
    std::string joined(const WalkedFolder* stop, std::string_view name) const;

    FolderReference parent_;
    std::string name_;
    const Place* place_ = nullptr;
    std::size_t root_ = 0;
    std::atomic<std::uint32_t> references_{0};

    // Guarded by the queue's lock.
    std::shared_ptr<OpenFolder> handle_;  // only while children wait to be opened through it
    std::size_t waitingChildren_ = 0;
    std::list<WalkedFolder*>::iterator kept_;  // valid while `handle_` counts against the bound
};

}  // namespace velto
