#pragma once

#include <string>
#include <vector>

#include "cleaning/TrashFolder.h"
#include "cleaning/TrashJournal.h"
#include "cleaning/TrashRecords.h"

namespace velto {

/// Removes items from the list and from their operations, and operations without items.
void forgetItems(Manifest& lists, const std::vector<std::string>& itemIDs);

/// Puts files and lists in order after a change that was cut off, so that every file is in one
/// place and, when that is the trash, listed. Throws FileError when the file system does not let
/// it; the journal then has to stay.
class TrashRecovery {
public:
    /// All outlive the recovery.
    TrashRecovery(FileMover& mover, TrashFolder& folder, Manifest& lists)
        : mover_(mover), folder_(folder), lists_(lists) {}

    /// Finishes or takes back what the entry tells of. True when the lists have changed.
    bool recover(const JournalEntry& entry);

    /// Brings back what a move has brought in, in the order in which it was moved. Whatever cannot
    /// go back is recorded as an operation, so that it is in the trash for all to see. True when
    /// the lists have changed.
    bool takeBack(const Operation& operation);

private:
    bool recoverMove(const Operation& operation);
    bool recoverRestore(const JournalEntry& entry);
    bool recoverRemoval(const JournalEntry& entry);
    bool recoverEmptying();

    bool isInTrash(const TrashItem& item, const FolderHandle& operation);
    bool moveBack(const TrashItem& item, const FolderHandle& operation);
    void settleSteps(const TrashItem& item, const FolderHandle& operation,
                     const std::string& target);
    void record(Operation operation);
    std::vector<TrashItem> itemsOf(const JournalEntry& entry) const;

    FileMover& mover_;
    TrashFolder& folder_;
    Manifest& lists_;
};

}  // namespace velto
