// What moves in several steps have left in the trash.

#include <cerrno>

#include "cleaning/TrashFolder.h"
#include "cleaning/names_in_trash.h"
#include "platform/values/scratch_name.h"

namespace velto {

MoveState TrashFolder::settleIn(const HeldPlace& source, const FolderHandle& operation,
                                const TrashItem& item) {
    return mover_.settleMove(*source.folder, source.name, operation,
                             storedName(mover_, operation, item), scratchNameOf(item));
}

MoveState TrashFolder::settleOut(const TrashItem& item, const FolderHandle& operation,
                                 const HeldPlace& target) {
    return mover_.settleMove(operation, storedName(mover_, operation, item), *target.folder,
                             target.name, scratchNameOf(item));
}

MoveState TrashFolder::settleBack(const TrashItem& item, const FolderHandle& operation,
                                  const HeldPlace& origin) {
    return mover_.settleMove(operation, storedName(mover_, operation, item), *origin.folder,
                             origin.name, backScratchOf(item));
}

bool TrashFolder::isOnWayBack(const TrashItem& item, const FolderHandle& operation,
                              const HeldPlace& origin) const {
    const std::string scratch = backScratchOf(item);
    return mover_.attributes(operation, scratch) || mover_.attributes(*origin.folder, scratch);
}

bool TrashFolder::holdsScratch(const TrashItem& item, const FolderHandle& operation) const {
    return mover_.attributes(operation, scratchNameOf(item)) ||
           mover_.attributes(operation, backScratchOf(item));
}

bool TrashFolder::isUnderWay(const TrashItem& item, const FolderHandle* operation) const {
    // Of a made-up id there is no scratch name.
    if (operation == nullptr || !isScratchName(scratchName(item.id))) return false;
    return holdsScratch(item, *operation) && !attributes(operation, item);
}

bool TrashFolder::isScratchWhole(const TrashItem& item, const FolderHandle& operation,
                                 bool isOnWayOut) const {
    auto scratch = mover_.attributes(operation, backScratchOf(item));
    if (!scratch && isOnWayOut) scratch = mover_.attributes(operation, scratchNameOf(item));
    return scratch && scratch->kind != FileKind::folder;
}

void TrashFolder::putOriginalBack(const TrashItem& item, const HeldPlace& origin) {
    const auto beside = openPlaceOfTrash();
    if (!beside) throw FileError("open", path_, ENOENT);
    // A move to a target that nothing has reached is taken back.
    const std::string scratch = scratchNameOf(item);
    mover_.settleMove(*origin.folder, origin.name, *beside, scratch + "-nowhere", scratch);
}

/// On its way back an item is whole until it has arrived; on its way in it may be a piece.
void TrashFolder::adoptScratch(const TrashItem& item, const FolderHandle& operation) {
    adopt(backScratchOf(item), item, operation);
    adopt(scratchNameOf(item), item, operation);
}

void TrashFolder::adopt(const std::string& scratch, const TrashItem& item,
                        const FolderHandle& operation) {
    const std::string name = storedName(mover_, operation, item);
    const auto adopted = mover_.attributes(operation, scratch);
    if (!adopted) return;
    if (const auto stored = mover_.attributes(operation, name)) {
        // A folder that holds the name for it, or a second name of it. All else stays.
        if (stored->identity == adopted->identity) return mover_.removeAll(operation, scratch);
        if (stored->kind != FileKind::folder || !mover_.removeEmptyFolder(operation, name)) return;
    }
    if (!mover_.moveAtOnce(operation, scratch, operation, name)) {
        mover_.moveInSteps(operation, scratch, operation, name, scratch + "-adopted");
    }
    mover_.sync(operation);  // its old name is forgotten next
}

}  // namespace velto
