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

/// Items in an order in which they can go back: a folder before what was taken out of it. As they
/// were otherwise.
std::vector<TrashItem> inOrderOfReturn(const std::vector<TrashItem>& items);

/// Puts files and lists in order after a change that was cut off, so that every file is in one
/// place and, when that is the trash, listed. Throws FileError when the trash itself does not let
/// it; the journal then has to stay. Where only the other side of one item's move is out of reach
/// (its volume is not there, or another one is; a folder refuses, or is a link now) that item alone
/// waits: its entry is added to `waiting`.
class TrashRecovery {
public:
    using Waiting = std::vector<JournalEntry>;

    /// All outlive the recovery.
    TrashRecovery(FileMover& mover, const TrashGuard& guard, const HomeLayout& layout,
                  TrashFolder& folder, Manifest& lists)
        : mover_(mover), guard_(guard), layout_(layout), folder_(folder), lists_(lists) {}

    /// Finishes or takes back what the entry tells of. The entry comes from a file that somebody
    /// may have tampered with: it is carried out only as far as it agrees with the lists and with
    /// what this program writes. True when the lists have changed.
    bool recover(const JournalEntry& entry, Waiting& waiting);

    /// The same of an entry that has waited, one item's. Unless it can be settled now it is added
    /// to `waiting` again. Never throws.
    bool recoverWaiting(const JournalEntry& entry, Waiting& waiting);

    /// What is told of an item that waits because of the entry.
    WaitingItem describe(const JournalEntry& entry, const TrashItem& item) const;

    /// The entry, for `recover`, that makes what the trash has of an item that waits an item as any
    /// other: under its own name when it is known to be whole, else under one that says so.
    /// `now` is when it counts as moved in.
    JournalEntry planToKeep(const JournalEntry& entry, const TrashItem& item, double now) const;

    /// Brings back what a move has brought in, a folder before what was taken out of it, else in
    /// the order in which it was moved. Whatever cannot go back is recorded as an operation, so
    /// that it is in the trash for all to see. True when the lists have changed. `extraRoots` as
    /// they were given to the move.
    bool takeBack(const JournalEntry& entry, const std::vector<std::string>& extraRoots,
                  Waiting& waiting);

private:
    /// The other side of a move, as far as it can be seen.
    struct Side {
        enum class Reach {
            visible,  // `place`
            gone,     // the volume is there, the folder is not
            hidden,   // nobody can tell
        };
        Reach reach = Reach::hidden;
        std::optional<HeldPlace> place{};
    };
    enum class Whereabouts { inTrash, elsewhere, unknown };

    bool recoverMove(const JournalEntry& entry, Waiting& waiting);
    bool recoverRestore(const JournalEntry& entry, Waiting& waiting);
    bool recoverRemoval(const JournalEntry& entry);
    bool recoverWaitingMove(const JournalEntry& entry, Waiting& waiting);
    bool recoverRest(const JournalEntry& entry, Waiting& waiting);
    bool recoverPutBack(const JournalEntry& entry, Waiting& waiting);
    bool keep(const JournalEntry& entry);

    /// The volume that an item came from; empty when it is not known.
    static std::string volumeIn(const JournalEntry& entry, const TrashItem& item);
    bool isListed(const TrashItem& item) const;
    bool isConsistent(const Operation& operation) const;
    bool startsByItself(const TrashItem& item) const;
    Operation presentOf(const JournalEntry& entry, const FolderHandle& folder, Waiting& waiting);
    bool takeBackIf(const JournalEntry& entry, const FolderHandle& folder,
                    const std::function<bool(const TrashItem&)>& mayGo, Waiting& waiting);
    std::optional<std::string> originOf(const TrashItem& item) const;
    Side reach(const std::string& path, const std::string& volume) const;
    bool isVolumeThere(const std::string& path, const std::string& volume) const;
    Whereabouts whereIs(const TrashItem& item, const FolderHandle& operation,
                        const std::string& volume, Waiting& waiting);
    void settleBack(const TrashItem& item, const FolderHandle& operation, const HeldPlace& origin);
    bool moveBack(const TrashItem& item, const FolderHandle& operation, const std::string& volume,
                  Waiting& waiting);
    bool settleSteps(const TrashItem& item, const FolderHandle& operation,
                     const JournalEntry& entry);
    bool isStepsTarget(const std::string& name, const std::string& itemID,
                       const std::string& target) const;
    static std::string nameBefore(const TrashItem& item, const JournalEntry& entry);
    static bool isItOrUnfinished(const TrashItem& kept, const TrashItem& listed);
    WaitingItem::Reason whyItWaits(const std::string& path, const std::string& volume) const;
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
