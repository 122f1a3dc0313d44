#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cleaning/TrashGuard.h"
#include "cleaning/TrashRecords.h"
#include "cleaning/TrashReserve.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"

namespace velto {

/// True when something was not removed because something else is mounted on it or inside it. Then
/// it is whole.
bool isForMount(const FileError& error);

/// The files of the trash: one folder per operation, in it each item under its id, "-" and its
/// name. Knows nothing of the manifest but its name. Trash and operations are real folders of the
/// user's own; anything else in their place is never entered: ELOOP for a link instead of the
/// trash, no operation for one instead of that. What its functions throw is FileError.
class TrashFolder {
public:
    TrashFolder(FileMover& mover, const HomeLayout& layout)
        : mover_(mover), path_(layout.trashFolder) {}

    const std::string& path() const { return path_; }
    std::string manifestPath() const { return path_ + "/" + manifestName; }

    /// Makes the folder of a new operation, and the trash when it is missing.
    std::unique_ptr<FolderHandle> makeOperation(const std::string& operationID);

    /// Null when there is no such folder, or when the id cannot be the name of one.
    std::unique_ptr<FolderHandle> openOperation(const std::string& operationID) const;

    /// The attributes of an item's file in its operation's folder (null: there is none); nothing
    /// when the file is not there.
    std::optional<FileAttributes> attributes(const FolderHandle* operation,
                                             const TrashItem& item) const;

    /// A single step may need room for a name: `reserve` gives it.
    void moveIn(const HeldPlace& source, const FolderHandle& operation, const TrashItem& item,
                TrashReserve& reserve);

    /// Moves an item out to a name that must be free. `beforeSteps` runs when it takes several
    /// steps.
    void moveOut(const TrashItem& item, const FolderHandle& operation, const HeldPlace& target,
                 const std::function<void()>& beforeSteps, TrashReserve& reserve);

    /// Moves an item that has just come in back to where it came from. Its scratch name is another
    /// one: whoever finds it after a cut knows which way the item was on.
    void moveBack(const TrashItem& item, const FolderHandle& operation, const HeldPlace& origin);

    /// Undoes or completes what a cut-off move has left (FileManager::settleMove). "Source" is
    /// where the move began.
    MoveState settleIn(const HeldPlace& source, const FolderHandle& operation,
                       const TrashItem& item);
    MoveState settleOut(const TrashItem& item, const FolderHandle& operation,
                        const HeldPlace& target);
    MoveState settleBack(const TrashItem& item, const FolderHandle& operation,
                         const HeldPlace& origin);

    /// True when `moveBack` was cut off in the middle of its steps.
    bool isOnWayBack(const TrashItem& item, const FolderHandle& operation,
                     const HeldPlace& origin) const;

    /// True when a move in several steps has left something under a scratch name.
    bool holdsScratch(const TrashItem& item, const FolderHandle& operation) const;

    /// True when that is all that the trash has of an item: what it is shows when the move is
    /// settled.
    bool isUnderWay(const TrashItem& item, const FolderHandle* operation) const;

    /// True when that is known to be all of the item: a file that was whole in the trash until it
    /// was put aside there. Anything else may be a piece: a copy that was still being made, or a
    /// folder that was being removed. `isOnWayOut`: the cut-off move led out of the trash.
    bool isScratchWhole(const TrashItem& item, const FolderHandle& operation,
                        bool isOnWayOut) const;

    /// Gives an original that a move of the item into the trash has put aside its name again. Where
    /// something else bears that by now, both stay.
    void putOriginalBack(const TrashItem& item, const HeldPlace& origin);

    /// The trash, or the folder that it will be made in; null when there is neither.
    std::unique_ptr<FolderHandle> openPlaceOfTrash() const;

    /// Gives that the item's own name unless another thing bears it; for a move whose other side is
    /// gone.
    void adoptScratch(const TrashItem& item, const FolderHandle& operation);

    /// Removes an item's file for good; one that is not there is fine. A folder gets a name of its
    /// own first, by which it is known later that its removal was begun. When that fails it has its
    /// old name again, unless `isBegun`.
    void remove(const FolderHandle& operation, const TrashItem& item);

    /// True when the removal of an item was begun and cut off.
    bool isBegun(const TrashItem& item) const;

    /// Ends such a removal. Fails as `remove`.
    void finishRemoval(const TrashItem& item);

    /// Removes an operation's folder unless something is in it. Errors are ignored: an empty folder
    /// harms nobody.
    void removeOperationIfEmpty(const std::string& operationID);

    /// Removes the trash folder with everything in it, the manifest last: what remains after a
    /// failure is still listed. What is put into it meanwhile stays, and what a move that waits has
    /// of one of these items.
    void removeEverything(const std::vector<TrashItem>& waiting = {});

    /// Removes all that lets itself be removed, one after another, the manifest excepted. Returns
    /// what stood in the way; when nothing did the trash folder is gone too, with the manifest.
    std::vector<FileError> removeWhatGoes();

private:
    static constexpr const char* manifestName = "manifest.json";

    std::unique_ptr<FolderHandle> openRoot() const;
    void adopt(const std::string& scratch, const TrashItem& item, const FolderHandle& operation);
    void removeBegun(const FolderHandle& operation, const TrashItem& item);
    void rename(const FolderHandle& operation, const TrashItem& item, const std::string& from,
                const std::string& to);
    void removeWhatGoes(const FolderHandle& root, const std::string& name,
                        std::vector<FileError>& failures);
    void removeRoot();
    bool clearOperation(const FolderHandle& root, const std::string& name,
                        const std::vector<TrashItem>& waiting);

    FileMover& mover_;
    std::string path_;
};

}  // namespace velto
