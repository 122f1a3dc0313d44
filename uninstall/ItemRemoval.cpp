#include "uninstall/ItemRemoval.h"

#include <algorithm>
#include <cerrno>
#include <optional>

#include "cleaning/TrashRecords.h"
#include "platform/removal_check.h"
#include "platform/text.h"
#include "platform/uuid.h"
#include "uninstall/removal_rules.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;

// An item that cannot reach the removal folder in one step waits beside its place under such a
// name, and a file in the removal folder tells where.
constexpr std::string_view asidePrefix = ".velto-removing-";
constexpr std::string_view recordSuffix = ".path";

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool meansGone(const FileError& error) {
    return error.code() == ENOENT || error.code() == ENOTDIR || error.code() == ENAMETOOLONG;
}

}  // namespace

std::int64_t ItemRemoval::remove(const std::string& path) const {
    const std::string place = resolved(path);
    if (!place.starts_with(platform_.layout.home + "/")) throw TrashError(Reason::outsideHome);
    if (isProtectedPath(place) || isProtectedPath(standardizedPath(path))) {
        throw TrashError(Reason::protected_);
    }
    const Target target = admit(place);
    const std::int64_t bytes = apps_.sizeOf(place);
    removeWhole(target, place);
    return bytes;
}

/// What the path leads to. Where nothing is, its folder is resolved as far as there is one, so that
/// what is outside the home is known as such.
std::string ItemRemoval::resolved(const std::string& path) const {
    std::string standard = standardizedPath(path);
    try {
        return platform_.files->resolved(standard);
    } catch (const FileError& error) {
        if (!meansGone(error)) throw;
    }
    try {
        return platform_.files->resolved(folderOf(standard)) + "/" +
               std::string(lastPathComponent(standard));
    } catch (const FileError&) {
        return standard;  // nor is there a folder
    }
}

/// Opens the folder that holds the item and judges the item through it.
ItemRemoval::Target ItemRemoval::admit(const std::string& path) const {
    try {
        Target target{
            .folder = platform_.mover->openFolder(folderOf(path), FolderPath::withoutLinks),
            .name = std::string(lastPathComponent(path)),
            .attributes = {}};
        const auto attributes = platform_.mover->attributes(*target.folder, target.name);
        if (!attributes) throw TrashError(Reason::notFound);
        target.attributes = *attributes;
        if (isProtected(path, *attributes)) throw TrashError(Reason::protected_);
        return target;
    } catch (const FileError& error) {
        if (meansGone(error)) throw TrashError(Reason::notFound);
        throw;
    }
}

/// A shared folder, the user's own ones, what holds one of them, and all that belongs to this
/// program. Also by identity: a volume that ignores case reaches a folder in other letters.
bool ItemRemoval::isProtected(const std::string& path, const FileAttributes& attributes) const {
    const HomeLayout& layout = platform_.layout;
    if (isProtectedPlace(path, layout) || isAtOrBelow(path, layout.dataFolder)) return true;
    std::vector<std::string> kept{layout.home,       layout.pictures,   layout.movies,
                                  layout.music,      layout.downloads,  layout.documents,
                                  layout.desktop,    layout.dataFolder, layout.cloudDrive,
                                  layout.systemTrash};
    kept.insert(kept.end(), layout.neverRemoved.begin(), layout.neverRemoved.end());
    return std::ranges::any_of(kept, [&](const std::string& folder) {
        if (folder.empty()) return false;
        if (isAtOrBelow(folder, path)) return true;
        const auto other = platform_.files->attributes(folder);
        return other && other->identity == attributes.identity;
    });
}

void ItemRemoval::removeWhole(const Target& target, const std::string& path) const {
    requireRemovable(*target.folder, target.name);
    const std::string& staging = platform_.layout.removalFolder;
    platform_.files->createFolders(staging);
    const auto folder = platform_.mover->openFolder(staging, FolderPath::throughLinks);
    const std::string identifier = newUUID();
    if (platform_.mover->moveAtOnce(*target.folder, target.name, *folder, identifier)) {
        removeAside(*folder, identifier, target, staging + "/" + identifier);
        return;
    }
    // Another volume: the item waits beside its place.
    const std::string aside = std::string(asidePrefix) + identifier;
    const std::string rest = folderOf(path) + "/" + aside;
    const std::string record = staging + "/" + identifier + std::string(recordSuffix);
    platform_.files->writeAtomically(record, rest);
    try {
        if (!platform_.mover->moveAtOnce(*target.folder, target.name, *target.folder, aside)) {
            platform_.mover->moveInSteps(*target.folder, target.name, *target.folder, aside,
                                         aside + "-scratch");
        }
    } catch (const FileError&) {
        forget(record);
        throw;
    }
    removeAside(*target.folder, aside, target, rest);
    forget(record);
}

void ItemRemoval::forget(const std::string& record) const {
    try {
        platform_.files->removeAll(record);
    } catch (const FileError&) {
        // It names nothing any more; the next sweep takes it away.
    }
}

/// Deletes what has left its place. Not what was judged: it goes back.
void ItemRemoval::removeAside(const FolderHandle& folder, const std::string& name,
                              const Target& target, const std::string& rest) const {
    const auto moved = platform_.mover->attributes(folder, name);
    if (!moved || moved->identity != target.attributes.identity) {
        if (moved && platform_.mover->moveAtOnce(folder, name, *target.folder, target.name)) {
            throw FileError("remove", rest, EBUSY);
        }
        throw UnfinishedRemoval(FileError("remove", rest, EBUSY), rest);
    }
    for (int attempt = 0;; ++attempt) {
        try {
            platform_.mover->removeAll(folder, name);
            return;
        } catch (const FileError& error) {
            if (attempt > 0) throw UnfinishedRemoval(error, rest);
        }
    }
}

void ItemRemoval::sweep() const {
    try {
        const std::string& path = platform_.layout.removalFolder;
        if (!platform_.files->exists(path)) return;
        const auto staging = platform_.mover->openFolder(path, FolderPath::throughLinks);
        for (const std::string& name : platform_.mover->list(*staging)) {
            try {
                if (name.ends_with(recordSuffix)) sweepRecord(name);
                platform_.mover->removeAll(*staging, name);
            } catch (const FileError&) {
                // It resists; the others need not.
            }
        }
    } catch (const FileError&) {
        // Out of reach now; the next sweep finds it again.
    }
}

/// Deletes what a record names, and nothing that the program did not put there itself.
void ItemRemoval::sweepRecord(const std::string& name) const {
    const std::string identifier = name.substr(0, name.size() - recordSuffix.size());
    const std::string path =
        standardizedPath(platform_.files->read(platform_.layout.removalFolder + "/" + name));
    if (lastPathComponent(path) != std::string(asidePrefix) + identifier) return;
    if (!path.starts_with(platform_.layout.home + "/")) return;
    const auto folder = platform_.mover->openFolder(folderOf(path), FolderPath::withoutLinks);
    platform_.mover->removeAll(*folder, std::string(lastPathComponent(path)));
}

}  // namespace velto
