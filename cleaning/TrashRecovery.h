#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/TrashFolder.h"
#include "cleaning/TrashGuard.h"
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
    TrashRecovery(FileMover& mover, const TrashGuard& guard, const HomeLayout& layout,
                  TrashFolder& folder, Manifest& lists)
        : mover_(mover), guard_(guard), layout_(layout), folder_(folder), lists_(lists) {}

    /// Finishes or takes back what the entry tells of. The entry comes from a file that somebody
    /// may have tampered with: it is carried out only as far as it agrees with the lists and with
    /// what this program writes. True when the lists have changed.
    bool recover(const JournalEntry& entry);

    /// Brings back what a move has brought in, in the order in which it was moved. Whatever cannot
    /// go back is recorded as an operation, so that it is in the trash for all to see. True when
    /// the lists have changed. `extraRoots` as they were given to the move.
    bool takeBack(const Operation& operation, const std::vector<std::string>& extraRoots);

private:
    bool recoverMove(const Operation& operation);
    bool recoverRestore(const JournalEntry& entry);
    bool recoverRemoval(const JournalEntry& entry);
    bool recoverEmptying(const JournalEntry& entry);

    bool isConsistent(const Operation& operation) const;
    bool startsByItself(const TrashItem& item) const;
    std::optional<HeldPlace> openOrigin(const TrashItem& item) const;
    bool takeBackIf(const Operation& operation, const std::function<bool(const TrashItem&)>& mayGo);
    bool isInTrash(const TrashItem& item, const FolderHandle& operation);
    bool moveBack(const TrashItem& item, const FolderHandle& operation);
    void settleSteps(const TrashItem& item, const FolderHandle& operation,
                     const std::string& target);
    bool isStepsTarget(const TrashItem& item, const std::string& target) const;
    void record(Operation operation);
    std::vector<TrashItem> itemsOf(const JournalEntry& entry) const;

    FileMover& mover_;
    const TrashGuard& guard_;
    const HomeLayout& layout_;
    TrashFolder& folder_;
    Manifest& lists_;
    std::vector<std::string> extraRoots_;  // of the move that is being taken back
};

}  // namespace velto
