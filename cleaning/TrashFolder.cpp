#include "cleaning/TrashFolder.h"

#include <cerrno>
#include <unordered_set>

#include "cleaning/names_in_trash.h"
#include "cleaning/own_folder.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"

namespace velto {
namespace {

bool isAbsence(const FileError& error) {
    return error.code() == ENOENT || error.code() == ENOTDIR || error.code() == ELOOP;
}

}  // namespace

bool isForMount(const FileError& error) { return error.code() == EXDEV || error.code() == EBUSY; }

std::unique_ptr<FolderHandle> TrashFolder::openRoot() const { return openOwnFolder(mover_, path_); }

std::unique_ptr<FolderHandle> TrashFolder::makeOperation(const std::string& operationID) {
    const auto root = makeOwnFolder(mover_, path_);
    mover_.makeFolder(*root, operationID);
    return mover_.openFolder(*root, operationID);
}

std::unique_ptr<FolderHandle> TrashFolder::openOperation(const std::string& operationID) const {
    if (!isComponent(operationID)) return nullptr;
    const auto root = openRoot();
    if (!root) return nullptr;
    try {
        auto operation = mover_.openFolder(*root, operationID);
        return mover_.isOwnFolder(*operation, *root) ? std::move(operation) : nullptr;
    } catch (const FileError& error) {
        // A link, or a file, is nothing that this program has made.
        const bool isFolder = error.code() == ENOENT && mover_.attributes(*root, operationID);
        if (!isAbsence(error) || isFolder) throw;
        return nullptr;
    }
}

std::optional<FileAttributes> TrashFolder::attributes(const FolderHandle* operation,
                                                      const TrashItem& item) const {
    if (operation == nullptr || !isSound(item)) return std::nullopt;
    return mover_.attributes(*operation, storedName(mover_, *operation, item));
}

void TrashFolder::moveIn(const HeldPlace& source, const FolderHandle& operation,
                         const TrashItem& item, TrashReserve& reserve) {
    const std::string name = storedName(mover_, operation, item);
    const auto once = [&] {
        return mover_.moveAtOnce(*source.folder, source.name, operation, name);
    };
    if (reserve.sparing(once)) return;
    mover_.moveInSteps(*source.folder, source.name, operation, name, scratchNameOf(item));
}

void TrashFolder::moveOut(const TrashItem& item, const FolderHandle& operation,
                          const HeldPlace& target, const std::function<void()>& beforeSteps,
                          TrashReserve& reserve) {
    const std::string name = storedName(mover_, operation, item);
    const auto once = [&] {
        return mover_.moveAtOnce(operation, name, *target.folder, target.name);
    };
    if (reserve.sparing(once)) return;
    beforeSteps();
    mover_.moveInSteps(operation, name, *target.folder, target.name, scratchNameOf(item));
}

void TrashFolder::moveBack(const TrashItem& item, const FolderHandle& operation,
                           const HeldPlace& origin) {
    const std::string name = storedName(mover_, operation, item);
    if (mover_.moveAtOnce(operation, name, *origin.folder, origin.name)) return;
    mover_.moveInSteps(operation, name, *origin.folder, origin.name, backScratchOf(item));
}

std::unique_ptr<FolderHandle> TrashFolder::openPlaceOfTrash() const {
    auto root = openRoot();
    return root ? std::move(root) : openFolderAbove(mover_, path_);
}

void TrashFolder::remove(const FolderHandle& operation, const TrashItem& item) {
    if (!isSound(item)) return;
    const std::string name = storedName(mover_, operation, item);
    const auto found = mover_.attributes(operation, name);
    if (!found) return;
    // A file goes in one step. So does what bears an id of which no name can be made.
    if (found->kind != FileKind::folder || !isScratchName(scratchName(item.id))) {
        return mover_.removeAll(operation, name);
    }
    const std::string begun = begunNameOf(item);
    mover_.removeAll(operation, begun);
    try {
        rename(operation, item, name, begun);
    } catch (const FileError& error) {
        // Even a new name may need room, and what is to be deleted makes some.
        if (!isForSpace(error)) throw;
        return mover_.removeAll(operation, name);
    }
    removeBegun(operation, item);
}

bool TrashFolder::isBegun(const TrashItem& item) const {
    const auto operation = openOperation(item.opID);
    return operation && isScratchName(scratchName(item.id)) &&
           mover_.attributes(*operation, begunNameOf(item)).has_value();
}

void TrashFolder::finishRemoval(const TrashItem& item) {
    if (const auto operation = openOperation(item.opID)) removeBegun(*operation, item);
}

/// What resists is the item again.
void TrashFolder::removeBegun(const FolderHandle& operation, const TrashItem& item) {
    const std::string begun = begunNameOf(item);
    try {
        // Or a loss of power could leave the item under its name, in part.
        mover_.sync(operation);
        mover_.removeAll(operation, begun);
    } catch (const FileError&) {
        try {
            rename(operation, item, begun, storedName(mover_, operation, item));
        } catch (const FileError&) {
            // `isBegun` tells.
        }
        throw;
    }
}

void TrashFolder::rename(const FolderHandle& operation, const TrashItem& item,
                         const std::string& from, const std::string& to) {
    if (mover_.moveAtOnce(operation, from, operation, to)) return;
    mover_.moveInSteps(operation, from, operation, to, scratchNameOf(item));
}

void TrashFolder::removeOperationIfEmpty(const std::string& operationID) {
    try {
        const auto root = openRoot();
        if (root && isComponent(operationID)) mover_.removeEmptyFolder(*root, operationID);
    } catch (const FileError&) {
        // See the declaration.
    }
}

/// Removes an operation's folder but for what waits in it. True when nothing did.
bool TrashFolder::clearOperation(const FolderHandle& root, const std::string& name,
                                 const std::vector<TrashItem>& waiting) {
    std::unordered_set<std::string> kept;
    for (const TrashItem& item : waiting) {
        if (item.opID != name) continue;
        kept.insert(scratchNameOf(item));
        kept.insert(backScratchOf(item));
    }
    const auto operation = kept.empty() ? nullptr : openOperation(name);
    if (!operation) {
        mover_.removeAll(root, name);
        return true;
    }
    bool isCleared = true;
    for (const std::string& entry : mover_.list(*operation)) {
        if (kept.contains(entry))
            isCleared = false;
        else
            mover_.removeAll(*operation, entry);
    }
    if (isCleared) mover_.removeEmptyFolder(root, name);
    return isCleared;
}

void TrashFolder::removeEverything(const std::vector<TrashItem>& waiting) {
    const auto root = openRoot();
    if (!root) return;
    bool isCleared = true;
    for (const std::string& name : mover_.list(*root)) {
        if (name != manifestName && !clearOperation(*root, name, waiting)) isCleared = false;
    }
    mover_.removeAll(*root, manifestName);
    if (isCleared) removeRoot();
}

std::vector<FileError> TrashFolder::removeWhatGoes() {
    std::vector<FileError> failures;
    try {
        const auto root = openRoot();
        if (!root) return failures;
        for (const std::string& name : mover_.list(*root)) {
            if (name != manifestName) removeWhatGoes(*root, name, failures);
        }
        if (!failures.empty()) return failures;
        mover_.removeAll(*root, manifestName);
        removeRoot();
    } catch (const FileError& error) {
        failures.push_back(error);
    }
    return failures;
}

/// What resists in an operation's folder saves nothing beside it.
void TrashFolder::removeWhatGoes(const FolderHandle& root, const std::string& name,
                                 std::vector<FileError>& failures) {
    try {
        return mover_.removeAll(root, name);
    } catch (const FileError& error) {
        const auto operation = openOperation(name);
        // A folder that something is mounted on shows what is not ours.
        const bool isMounted = isForMount(error) && lastPathComponent(error.path()) == name;
        if (!operation || isMounted) return failures.push_back(error);
        const std::size_t before = failures.size();
        for (const std::string& entry : mover_.list(*operation)) {
            try {
                mover_.removeAll(*operation, entry);
            } catch (const FileError& failure) {
                failures.push_back(failure);
            }
        }
        if (failures.size() == before && !mover_.removeEmptyFolder(root, name)) {
            failures.push_back(error);
        }
    }
}

void TrashFolder::removeRoot() {
    try {
        const auto above = openFolderAbove(mover_, path_);
        if (above) mover_.removeEmptyFolder(*above, std::string(lastPathComponent(path_)));
    } catch (const FileError&) {
        // Nothing is left but the folder, which the next save would make again.
    }
}

}  // namespace velto
