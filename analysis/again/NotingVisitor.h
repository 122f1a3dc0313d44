#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "analysis/ScanWorker.h"
#include "analysis/again/KeptWalk.h"
#include "analysis/again/readings.h"

namespace velto {

/// What an earlier walk is to a later one that reads some of its folders again.
struct EarlierWalk {
    const KeptWalk& walk;
    const Readings& readings;  // the roots of the later walk, in this order
};

/// A worker of which is noted, folder by folder, what it makes of each. In a walk that goes by an
/// earlier one it enters no folder that can stay as it was.
class NotingVisitor final : public TreeVisitor {
public:
    using Number = FolderRecorder::Number;

    /// All outlive it. What changed at `recent` (seconds since 1970) or later is read again next
    /// time: whoever wrote it may still hold it open, and what is written to an open file is told
    /// when it is closed. `earlier` is null for a walk of everything.
    NotingVisitor(ScanWorker& worker, double recent, const EarlierWalk* earlier)
        : worker_(worker), recent_(recent), earlier_(earlier) {}

    bool enter(WalkedFolder& folder) override { return worker_.enter(folder); }
    void file(const WalkedFolder& folder, const DirectoryEntry& entry,
              const Place* place) override {
        worker_.file(folder, entry, place);
    }
    void other(const WalkedFolder& folder, const DirectoryEntry& entry) override {
        worker_.other(folder, entry);
    }
    void unreadable(const WalkedFolder& folder, const DirectoryEntry& entry) override {
        worker_.unreadable(folder, entry);
    }
    void leftOut(const WalkedFolder& folder, const DirectoryEntry& entry,
                 const Place& place) override {
        worker_.leftOut(folder, entry, place);
    }
    bool begin(const WalkedFolder& folder, const FolderStatus& status) override;
    void unopened(const WalkedFolder& folder) override;
    void vanished(const WalkedFolder& folder) override { worker_.vanished(folder); }
    void end(const WalkedFolder& folder, bool isComplete) override;

    /// A folder whose turn has ended. `parent` and `firstChild` of it say nothing; its counts and
    /// candidates are numbered in the lists below, and in the worker's own.
    struct Note {
        Number number = 0;
        KeptFolder folder;
    };
    const std::vector<Note>& notes() const { return notes_; }
    const std::vector<KeptCount>& counts() const { return counts_; }

    /// A folder of the earlier walk that stands where it did, in one that was read again.
    struct Stayed {
        Number parent = 0;
        std::uint32_t folder = 0;  // of the earlier walk
    };
    const std::vector<Stayed>& stayed() const { return stayed_; }

    const ScanWorker& worker() const { return worker_; }

private:
    void note(const WalkedFolder& folder);
    bool stays(const WalkedFolder& folder, const FolderStatus& status);

    ScanWorker& worker_;
    const double recent_;
    const EarlierWalk* const earlier_;
    std::vector<Note> notes_;
    std::vector<KeptCount> counts_;
    std::vector<Stayed> stayed_;
    ScanWorker::Tally before_;  // at the end of the last turn
};

}  // namespace velto
