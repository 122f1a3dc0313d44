#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cleaning/TrashFolder.h"
#include "cleaning/TrashGuard.h"
#include "cleaning/TrashJournal.h"
#include "cleaning/TrashManifest.h"
#include "cleaning/TrashRecords.h"
#include "cleaning/TrashRecovery.h"
#include "cleaning/TrashReserve.h"
#include "platform/Clock.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"
#include "platform/Log.h"

namespace velto {

/// The program's own recoverable trash. Files are moved into a private folder, one folder per
/// operation, and listed in a manifest; from there they can be restored, undone by the operation,
/// or deleted for good.
///
/// At every instant every file exists in full, at its place or in the trash, until it is deleted
/// for good: nothing is ever replaced, and a journal beside the trash folder lets the next use
/// finish or take back a change that was cut off. Several processes may use one trash at a time; a
/// lock beside it orders their changes. Within a process one work item at a time uses an instance.
///
/// Functions throw TrashError for what the trash itself refuses, FileError for what the file system
/// refuses. All of them read the manifest first when need be.
class VeltoTrashService {
public:
    /// All arguments outlive the service.
    VeltoTrashService(FileManager& files, FileMover& mover, const Clock& clock, Log& log,
                      const HomeLayout& layout);

    /// The process's instance, made at first use from the process's platform.
    static VeltoTrashService& shared();

    /// Sizes in GB that the caller knows, by path as it is passed to the trash.
    using KnownSizes = std::map<std::string, double>;

    /// Moves the paths in as one operation and returns it. Every path is validated before anything
    /// is touched; when a move fails, what was moved before goes back and the error is thrown.
    /// `kind` is stored and logged, no more. `extraRoots` are allowed path prefixes besides the
    /// home.
    Operation moveToTrash(const std::vector<std::string>& paths, const std::string& kind,
                          const KnownSizes& knownSizes = {},
                          const std::vector<std::string>& extraRoots = {});

    // Ids are taken by value: one that is read off the lists goes on counting when another process
    // has changed them meanwhile.

    /// Moves an item back to where it came from, beside it when that place is taken.
    /// Throws ReturnBlocked when a link, or something else that is no folder, has taken the place
    /// of a folder on the way there; TrashError when that place is none that something may go back
    /// to.
    void restore(std::string itemID, const std::vector<std::string>& extraRoots = {});

    /// Moves an item to a folder of the user's choice, beside what bears its name there: a folder
    /// that is there, inside the home, reached without links. Throws as above.
    void restoreTo(std::string itemID, const std::string& folder);

    /// Restores the operation's items in order. The first failure ends it and is thrown; what was
    /// restored before stays restored. An id without items does nothing.
    void undoOperation(std::string operationID, const std::vector<std::string>& extraRoots = {});

    /// An item that went back, and where it stands now.
    struct Returned {
        TrashItem item;
        std::string path;
    };
    /// What has gone back since this was asked for last.
    std::vector<Returned> takeReturned() { return std::exchange(returned_, {}); }

    /// Deletes an item for good.
    void deletePermanently(std::string itemID);

    /// How many of the items are done with, and of how many. Called on the thread of the work,
    /// after each of them; throws nothing.
    using Progress = std::function<void(std::size_t done, std::size_t of)>;

    /// Deletes the whole trash for good.
    void emptyTrash(const Progress& progress = {});

    /// Deletes the trash for good with all of its records, as far as it lets itself be deleted,
    /// also what waits. Returns what stood in the way; that stays listed. `alongside` is called at
    /// the end, told whether anything stays, while nobody else can use the trash. Throws FileError
    /// when another process goes on using it: then nothing was done.
    std::vector<FileError> erase(const std::function<void(bool isGone)>& alongside);

    /// Days that an item is kept; more than everything is are not granted.
    using OwnRetention = std::function<std::int64_t(const TrashItem& item)>;

    /// Deletes for good what was moved in more than that many days ago, or than its own where
    /// `own` (which may be empty) gives it fewer, and returns the GB freed (as the disk counts
    /// them, not rounded). What resists is forgotten all the same. Never throws; a trash that is
    /// out of reach is left to the next purge.
    double purgeExpired(std::int64_t retentionDays, const OwnRetention& own = {});

    /// What items take up, in bytes by their ids, as far as that is known better than their `gb`
    /// tells: files are looked at in the trash, once each; a folder's size is told where it was
    /// measured before the move. Never throws.
    const std::map<std::string, std::int64_t>& exactSizes();

    /// The sum over all items, not rounded.
    double totalGB();

    // Valid until the next call of any function.
    const std::vector<TrashItem>& items();       // oldest first
    const std::vector<Operation>& operations();  // newest first

    /// What waits for a volume or a folder that is out of reach, because a move of it was cut off.
    /// Where it is shows when that is back; until then no function touches it, and those that are
    /// asked for it throw ItemWaits. Only what was on its way out is among `items` too.
    std::vector<WaitingItem> waitingItems();

    /// Ends the waiting of an item: what the trash has of it is an item as any other from now on,
    /// under its own name when it is known to be whole, else under one that tells it from that.
    /// Nothing is deleted; an original that was put aside goes back to its place once that can be
    /// reached. False when the item does not wait any more.
    bool giveUpWaiting(std::string itemID);

    /// Throws unless the path may enter the trash.
    void validate(const std::string& path, const std::vector<std::string>& extraRoots = {});

private:
    struct KeepReserve {
        void operator()(VeltoTrashService* service) const { service->keepReserve(); }
    };

    /// The trash during one change: nobody else changes it, the lists are up to date.
    struct Change {
        std::unique_ptr<FileLock> lock;
        /// At its end, before others may take the room.
        std::unique_ptr<VeltoTrashService, KeepReserve> reserve{};
        /// Why an earlier change could not be settled; its entry in the journal must stay.
        std::optional<FileError> unsettled;
        bool isOnlyUnsaved = false;  // all is settled but for the manifest
    };

    Change begin();
    Change beginStrictly();  // throws when an earlier change is not settled
    void settleEarlierChange(Change& change);
    void keepWaiting(std::vector<JournalEntry> waiting);
    void stopWaiting(const JournalEntry::Steps& steps);
    /// An item that waits, and why.
    struct Waiter {
        JournalEntry entry;
        TrashItem item;
    };
    std::vector<Waiter> waiters() const;
    void requireSettled(const TrashItem& item, const FolderHandle* operation) const;
    std::vector<TrashItem> itemsUnderWay() const;
    std::optional<FileError> saveLists();
    void keepReserve();
    void ensureLoaded();
    bool refresh();
    void announce(const JournalEntry& entry, const Change& change);
    void saveAndSettle(const Change& change);

    JournalEntry plannedMove(const std::vector<std::string>& paths, const std::string& kind,
                             const KnownSizes& knownSizes,
                             const std::vector<std::string>& extraRoots);
    void moveIn(const Operation& operation, const std::vector<std::string>& extraRoots);
    void takeBack(const JournalEntry& entry, const Change& change,
                  const std::vector<std::string>& extraRoots);

    /// Where items go back to.
    struct Destination {
        std::vector<std::string> extraRoots;
        std::optional<std::string> chosen;  // a folder; else where each item came from
        std::string judged;                 // the folder that was judged last
    };

    void restoreAll(const std::vector<TrashItem>& items, JournalEntry entry,
                    Destination destination, Change& change);
    void restoreOne(const TrashItem& item, const FolderHandle* operation, Destination& destination,
                    JournalEntry& entry, Change& change);
    HeldPlace openReturn(const TrashItem& item, const std::string& target,
                         Destination& destination);
    void moveOut(const TrashItem& item, const FolderHandle& operation, const HeldPlace& target,
                 const std::string& targetPath, JournalEntry& entry, Change& change);

    void removeItem(const FolderHandle& operation, const TrashItem& item, const Change& change);
    double purge(std::int64_t retentionDays, const OwnRetention& own);
    const TrashItem& itemWith(const std::string& id) const;
    void forget(const std::vector<TrashItem>& gone);
    std::string lockPath() const { return layout_.trashFolder + ".lock"; }

    FileManager& files_;
    FileMover& mover_;
    const Clock& clock_;
    Log& log_;
    const HomeLayout& layout_;
    TrashGuard guard_;
    TrashFolder folder_;
    TrashJournal journal_;
    TrashReserve reserve_;
    TrashManifest manifest_;
    Manifest lists_;
    TrashRecovery recovery_;
    std::vector<JournalEntry> waiting_;               // as they were read or written last
    std::map<std::string, std::int64_t> exactSizes_;  // as found so far
    std::vector<Returned> returned_;
    bool leftJournal_ = false;  // the lists could not be saved; the journal tells of the change
};

}  // namespace velto
