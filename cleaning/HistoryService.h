#pragma once

#include <string>
#include <vector>

#include "cleaning/HistoryRecords.h"
#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/HomeLayout.h"
#include "platform/Log.h"

namespace velto {

/// The cleanups of the past, kept in "history.json" of the data folder. Nothing limits their
/// number. The trash knows nothing of it: whoever moves files records the operation here, and
/// whoever undoes one removes it. One thread at a time; errors of the file are silent, and the list
/// in memory stays in force for the life of the process.
class HistoryService {
public:
    /// Reads the file; a missing or damaged one counts as empty, and the next save replaces it.
    HistoryService(FileManager& files, Log& log, const HomeLayout& layout);

    /// The process's instance, made at first use from the process's platform.
    static HistoryService& shared();

    /// Puts the operation first, and saves.
    void record(const Operation& operation);

    /// Removes the entry of an operation, and saves.
    void remove(const std::string& operationID);

    /// Forgets every entry, saves and logs; an empty history is left untouched.
    void clear();

    /// Forgets every entry after somebody has removed the file.
    void forget() { entries_.clear(); }

    const std::vector<HistoryEntry>& entries() const { return entries_; }  // newest first

private:
    void save() const;

    FileManager& files_;
    Log& log_;
    std::string folder_;
    std::vector<HistoryEntry> entries_;
};

}  // namespace velto
