#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/Classifier.h"
#include "analysis/WalkTotals.h"
#include "analysis/categories.h"
#include "analysis/folders/FolderRecorder.h"
#include "platform/walk/TreeWalk.h"

namespace velto {

/// One thread's part of the scanner's walk: it counts what it meets and keeps what later steps
/// need, for itself alone: not even a cache line (of 64 bytes) is shared with another.
class alignas(64) ScanWorker final : public TreeVisitor {
public:
    struct BigFileFound {
        std::string path;  // bytes as stored
        std::int64_t size = 0;
        double lastUse = 0;  // seconds since 1970
        Category category = Category::documents;
    };

    ScanWorker(const Classifier& classifier, bool entersMediaLibraries, FolderRecording& recording)
        : classifier_(classifier),
          entersMediaLibraries_(entersMediaLibraries),
          recording_(recording),
          folders_(recording) {}

    bool enter(WalkedFolder& folder) override;
    void file(const WalkedFolder& folder, const DirectoryEntry& entry, const Place* place) override;
    void other(const WalkedFolder& folder, const DirectoryEntry& entry) override;
    void unreadable(const WalkedFolder& folder, const DirectoryEntry& entry) override;
    void leftOut(const WalkedFolder& folder, const DirectoryEntry& entry,
                 const Place& place) override;
    bool begin(const WalkedFolder& folder, const FolderStatus& status) override;
    void unopened(const WalkedFolder& folder) override;
    void vanished(const WalkedFolder& folder) override;
    void end(const WalkedFolder& folder, bool isComplete) override;

    /// Counted so far; from any thread while the walk runs.
    std::int64_t files() const { return files_.load(std::memory_order_relaxed); }
    std::int64_t bytes() const { return bytes_.load(std::memory_order_relaxed); }

    /// Adds this worker's part to the sums and moves its lists over, after the walk.
    void handOver(WalkTotals& totals, std::vector<BigFileFound>& bigFiles);

    /// What could not be read of what belongs to a category.
    std::int64_t unreadable() const { return unreadable_; }

    FolderRecorder& folders() { return folders_; }

    /// All that was counted so far, between two turns.
    struct Tally {
        std::array<std::int64_t, categoryCount> categoryBytes{};
        std::array<std::int64_t, categoryCount> categoryFiles{};
        std::int64_t hiddenBytes = 0;
        std::int64_t unreadable = 0;
        std::size_t candidates = 0;
        std::size_t bigFiles = 0;
        std::size_t linked = 0;
    };
    Tally tally() const;
    const FolderFacts& lastFacts() const { return folders_.lastFacts(); }
    bool isOfTheSameMount(const WalkedFolder& folder, const FolderStatus& status) const {
        return folders_.isOfTheSameMount(folder, status);
    }
    const std::vector<FileRecord>& candidates() const { return duplicateCandidates_; }

    /// Moves what `handOver` would move last, alone.
    void takeBigFiles(std::vector<BigFileFound>& bigFiles);

private:
    void list(const WalkedFolder& folder, const DirectoryEntry& entry, std::int64_t size,
              Category category);

    const Classifier& classifier_;
    const bool entersMediaLibraries_;
    std::array<std::int64_t, categoryCount> categoryBytes_{};
    std::array<std::int64_t, categoryCount> categoryFiles_{};
    FolderRecording& recording_;
    FolderRecorder folders_;
    std::int64_t unreadable_ = 0;
    std::vector<FileRecord> duplicateCandidates_;
    std::vector<BigFileFound> bigFiles_;
    // Written by the walking thread alone, read by the one that reports progress.
    std::atomic<std::int64_t> files_{0};
    std::atomic<std::int64_t> bytes_{0};
};

}  // namespace velto
