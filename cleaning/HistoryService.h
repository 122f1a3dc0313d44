#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "cleaning/HistoryRecords.h"
#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"
#include "platform/Log.h"

namespace velto {

/// The cleanups of the past, kept in "history.json" of the data folder. Nothing limits their
/// number. The trash knows nothing of it: whoever moves files records the operation here, and
/// whoever undoes one removes it. Errors of the file are silent, and the list in memory stays in
/// force for the life of the process; each change brings in what other processes have recorded or
/// removed meanwhile, under a lock beside the file. One thread at a time.
class HistoryService {
public:
    /// Reads the file; a missing or damaged one counts as empty, and the next save replaces it.
    /// The arguments but the layout outlive the service.
    HistoryService(FileManager& files, FileMover& mover, Log& log, const HomeLayout& layout);

    /// The process's instance, made at first use from the process's platform.
    static HistoryService& shared();

    /// Puts the operation first, and saves.
    void record(const Operation& operation);

    /// An item of an operation that stays in the trash otherwise has been deleted for good: no undo
    /// brings it back. Known as long as the process lives.
    void noteDeleted(const TrashItem& item);

    /// Removes the entry of an operation, and saves. What was deleted of it stays recorded.
    void remove(const std::string& operationID);

    /// Forgets every entry, saves and logs; an empty history is left untouched.
    void clear();

    /// Forgets every entry after somebody has removed the file.
    void forget() {
        entries_.clear();
        saved_.clear();
        deleted_.clear();
    }

    const std::vector<HistoryEntry>& entries() const { return entries_; }  // newest first

private:
    std::unique_ptr<FileLock> lock();
    std::optional<std::vector<HistoryEntry>> read();
    void mergeWithFile();
    void save();

    FileManager& files_;
    FileMover& mover_;
    Log& log_;
    std::string folder_;
    std::string path_;
    std::vector<HistoryEntry> entries_;
    /// The ids in the file when it was last read or written: what tells an entry that this process
    /// has added or removed from one that another has.
    std::unordered_set<std::string> saved_;
    std::map<std::string, std::vector<HistoryItem>> deleted_;  // by operation
    std::unique_ptr<FileVersion> version_;                     // of the file that `saved_` tells of
};

}  // namespace velto
