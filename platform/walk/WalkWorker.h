#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/walk/TreeWalk.h"
#include "platform/walk/WalkQueue.h"

namespace velto {

/// What the workers of one walk share.
struct WalkSetting {
    DirectoryReader& reader;
    const std::vector<WalkRoot>& roots;
    const WalkOptions& options;
    const CancellationFlag& cancelled;
    WalkQueue& queue;
    std::vector<int>& rootErrors;  // each entry is written by the one worker that opens the root
};

/// One thread's part of a walk, on cache lines (of 64 bytes) of its own.
class alignas(64) WalkWorker {
public:
    WalkWorker(const WalkSetting& setting, TreeVisitor& visitor)
        : setting_(setting), visitor_(visitor) {}

    /// Reads folders until none is left. Throws what the visitor or the reader throws.
    void run();

    std::int64_t unreadable() const { return unreadable_; }

private:
    void walk(const WalkQueue::Item& item);
    bool meet(const FolderReference& folder, const DirectoryEntry& entry);
    void meetFolder(const FolderReference& folder, const DirectoryEntry& entry, const Place* place);
    ReadOptions readOptions(const WalkedFolder& folder) const;

    enum class Opening { done, declined, failed };
    Opening open(const WalkQueue::Item& item, std::shared_ptr<OpenFolder>& handle);
    Opening begin(const WalkedFolder& folder, OpenFolder& handle, std::string_view name);
    std::shared_ptr<OpenFolder> openRoot(const WalkRoot& root);
    std::shared_ptr<OpenFolder> openAnew(const WalkedFolder& folder);

    const WalkSetting& setting_;
    TreeVisitor& visitor_;
    std::int64_t unreadable_ = 0;
    EntryList entries_;
    WalkQueue::Seat seat_;
    WalkQueue::Listed listed_;  // of the folder whose turn it is
};

}  // namespace velto
