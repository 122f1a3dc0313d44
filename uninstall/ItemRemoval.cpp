#include "uninstall/ItemRemoval.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include "cleaning/TrashRecords.h"
#include "platform/removal_check.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"
#include "uninstall/removal_rules.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;

// An item that cannot reach the removal folder in one step waits beside its place under such a
// name, and a file in the removal folder tells where.
constexpr std::string_view asidePrefix = ".velto-removing-";
constexpr std::int64_t longestRecord = 64 << 10;  // bytes; a path, if a long one
constexpr ReadLimit recordLimit = ownFile(longestRecord);

bool meansGone(const FileError& error) {
    return error.code() == ENOENT || error.code() == ENOTDIR || error.code() == ENAMETOOLONG;
}

}  // namespace

std::int64_t ItemRemoval::remove(const std::string& path, const std::optional<std::string>& shown,
                                 const Claims& claims) const {
    const Target target = judged(path, claims);
    // Nothing but what stood before the user is deleted.
    if (isBehindLink(standardizedPath(path), target.place) && target.reached != shown) {
        throw FileError("remove", path, ELOOP);
    }
    const std::int64_t bytes = apps_.sizeOf(target.place);
    removeWhole(target);
    return bytes;
}

std::optional<LinkTarget> ItemRemoval::linkTarget(const std::string& path) const {
    const std::string standard = standardizedPath(path);
    try {
        const std::string reached = platform_.files->resolved(standard);
        const auto attributes = platform_.files->attributes(standard);
        const bool isLink = attributes && attributes->kind == FileKind::symbolicLink;
        const bool isBehind = isBehindLink(standard, placeOf(standard, reached));
        if (!isLink && !isBehind) return std::nullopt;
        return LinkTarget{.path = reached, .isKept = !isBehind};
    } catch (const FileError&) {
        return std::nullopt;  // leads nowhere
    }
}

/// What the path leads to, judged, and what is deleted for it, judged as well and held.
ItemRemoval::Target ItemRemoval::judged(const std::string& path, const Claims& claims) const {
    const std::string standard = standardizedPath(path);
    const std::string reached = resolved(path);
    const std::string place = placeOf(standard, reached);
    for (const std::string* one : {&reached, &place}) {
        if (!one->starts_with(platform_.layout.home + "/")) throw TrashError(Reason::outsideHome);
    }
    for (const std::string* one : {&reached, &place, &standard}) {
        if (isProtectedPath(*one)) throw TrashError(Reason::protected_);
    }
    Target target = admit(reached, claims);
    if (place != reached) target = admit(place, claims);
    target.reached = reached;
    return target;
}

/// True when it takes a link to get from the path to what is deleted for it. Another text alone
/// tells nothing: a volume that ignores case resolves a path to other letters.
bool ItemRemoval::isBehindLink(const std::string& standard, const std::string& place) const {
    if (place == standard) return false;
    try {
        platform_.mover->openFolder(parentFolder(standard), FolderPath::withoutLinks);
    } catch (const FileError&) {
        return true;
    }
    const auto own = platform_.files->attributes(standard);
    return !own || !isSame(place, *own);
}

/// What is deleted for a path that leads to `reached`: on a home that is no Mac's a link is an item
/// by itself, as it is for every file manager there.
std::string ItemRemoval::placeOf(const std::string& standard, const std::string& reached) const {
    if (platform_.layout.kind != HomeLayout::Kind::freedesktop) return reached;
    const auto attributes = platform_.files->attributes(standard);
    if (!attributes || attributes->kind != FileKind::symbolicLink) return reached;
    return platform_.files->resolved(parentFolder(standard)) + "/" +
           std::string(lastPathComponent(standard));
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
        return platform_.files->resolved(parentFolder(standard)) + "/" +
               std::string(lastPathComponent(standard));
    } catch (const FileError&) {
        return standard;  // nor is there a folder
    }
}

/// Opens the folder that holds the item and judges the item through it.
ItemRemoval::Target ItemRemoval::admit(const std::string& path, const Claims& claims) const {
    try {
        Target target{
            .place = path,
            .reached = path,
            .folder = platform_.mover->openFolder(parentFolder(path), FolderPath::withoutLinks),
            .name = std::string(lastPathComponent(path)),
            .attributes = {}};
        const auto attributes = platform_.mover->attributes(*target.folder, target.name);
        if (!attributes) throw TrashError(Reason::notFound);
        target.attributes = *attributes;
        if (isProtected(path, *attributes, claims)) throw TrashError(Reason::protected_);
        return target;
    } catch (const FileError& error) {
        if (meansGone(error)) throw TrashError(Reason::notFound);
        throw;
    }
}

void ItemRemoval::requireRemovable(const std::string& path) const {
    const Target target = judged(path, {});
    velto::requireRemovable(*target.folder, target.name);
}

std::optional<std::string> ItemRemoval::placeOf(const std::string& path,
                                                const Claims& claims) const {
    try {
        return judged(path, claims).place;
    } catch (const TrashError&) {
        return std::nullopt;
    } catch (const FileError&) {
        return std::nullopt;  // what cannot be looked at will not be deleted either
    }
}

bool ItemRemoval::isOwn(const std::string& path) const {
    try {
        const std::string place = platform_.files->resolved(standardizedPath(path));
        const auto attributes = platform_.files->attributes(place);
        return attributes && isOwn(place, *attributes);
    } catch (const FileError&) {
        return false;  // nothing is there
    }
}

/// Also by identity: a volume that ignores case reaches a folder in other letters.
bool ItemRemoval::isSame(const std::string& place, const FileAttributes& attributes) const {
    const auto other = platform_.files->attributes(place);
    return other && other->identity == attributes.identity;
}

/// What belongs to this program, or holds some of it.
bool ItemRemoval::isOwn(const std::string& path, const FileAttributes& attributes) const {
    const HomeLayout& layout = platform_.layout;
    const std::array own{&layout.dataFolder, &layout.cloudFolder, &layout.agentFile,
                         &layout.agentService};
    return std::ranges::any_of(own, [&](const std::string* place) {
        if (place->empty()) return false;  // a role that this home lacks
        return isAtOrBelow(path, *place) || isAtOrBelow(*place, path) || isSame(*place, attributes);
    });
}

/// A shared folder, the user's own ones, what holds one of them, and all that belongs to this
/// program.
bool ItemRemoval::isProtected(const std::string& path, const FileAttributes& attributes,
                              const Claims& claims) const {
    const HomeLayout& layout = platform_.layout;
    if (isProtectedPlace(path, layout, claims) || isOwn(path, attributes)) return true;
    std::vector<std::string> kept{layout.home,    layout.pictures,   layout.movies,
                                  layout.music,   layout.downloads,  layout.documents,
                                  layout.desktop, layout.cloudDrive, layout.systemTrash};
    kept.insert(kept.end(), layout.neverRemoved.begin(), layout.neverRemoved.end());
    return std::ranges::any_of(kept, [&](const std::string& folder) {
        if (folder.empty()) return false;
        return isAtOrBelow(folder, path) || isSame(folder, attributes);
    });
}

void ItemRemoval::removeWhole(const Target& target) const {
    velto::requireRemovable(*target.folder, target.name);
    const RemovalFolder staging = openRemovalFolder(platform_);
    const std::string identifier = newUUID();
    if (platform_.mover->moveAtOnce(*target.folder, target.name, *staging.handle, identifier)) {
        reachDisk(*staging.handle);
        reachDisk(*target.folder);
        removeAside({.folder = *staging.handle,
                     .folderPath = staging.path,
                     .name = identifier,
                     .identifier = identifier,
                     .record = {}},
                    target);
        return;
    }
    // Another volume: the item waits beside its place.
    const Aside aside{.folder = *target.folder,
                      .folderPath = parentFolder(target.place),
                      .name = std::string(asidePrefix) + identifier,
                      .identifier = identifier,
                      .record = staging.path + "/" + identifier + std::string(removalRecordSuffix)};
    platform_.files->writeAtomically(aside.record, aside.path());
    try {
        if (!platform_.mover->moveAtOnce(*target.folder, target.name, aside.folder, aside.name)) {
            platform_.mover->moveInSteps(*target.folder, target.name, aside.folder, aside.name,
                                         aside.name + "-scratch");
        }
    } catch (const FileError&) {
        forget(aside.record);
        throw;
    }
    reachDisk(aside.folder);
    removeAside(aside, target);
    reachDisk(aside.folder);
    forget(aside.record);
}

/// What is renamed is so on the disk before anything else happens to it: after a loss of power an
/// item must not stand at its old place in part, nor be left with nothing that tells of it. On a
/// disk that refuses, the removal goes on: the item was to go anyway.
void ItemRemoval::reachDisk(const FolderHandle& folder) const {
    try {
        platform_.mover->sync(folder);
    } catch (const FileError&) {
        // See above.
    }
}

void ItemRemoval::forget(const std::string& record) const {
    if (record.empty()) return;
    try {
        platform_.files->removeAll(record);
    } catch (const FileError&) {
        // The next sweep takes it away.
    }
}

/// True when what has left its place is what was judged; nothing else may be deleted.
bool ItemRemoval::isJudged(const Aside& aside, const Target& target) const {
    try {
        const auto moved = platform_.mover->attributes(aside.folder, aside.name);
        return moved && moved->identity == target.attributes.identity;
    } catch (const FileError&) {
        return false;  // what cannot be looked at cannot be told to be it
    }
}

void ItemRemoval::removeAside(const Aside& aside, const Target& target) const {
    if (!isJudged(aside, target)) giveBack(aside, target);
    for (int attempt = 0;; ++attempt) {
        try {
            platform_.mover->removeAll(aside.folder, aside.name);
            return;
        } catch (const FileError& error) {
            if (attempt > 0) throw UnfinishedRemoval(error, aside.path());
        }
    }
}

/// Lets what was never judged stand at its place again, or, where that is taken or out of reach,
/// beside what waits to be deleted under a name that no sweep touches.
void ItemRemoval::giveBack(const Aside& aside, const Target& target) const {
    forget(aside.record);
    const auto moves = [&](const FolderHandle& folder, const std::string& name) {
        try {
            if (!platform_.mover->moveAtOnce(aside.folder, aside.name, folder, name)) {
                platform_.mover->moveInSteps(aside.folder, aside.name, folder, name,
                                             aside.name + "-scratch");
            }
            return true;
        } catch (const FileError&) {
            return false;  // there is another way, or the last one has failed
        }
    };
    if (moves(*target.folder, target.name)) throw FileError("remove", aside.path(), EBUSY);
    const std::string kept = std::string(keptPrefix) + aside.identifier;
    // Twice: left under its present name, the next sweep would take it for what was judged.
    const bool isKept = moves(aside.folder, kept) || moves(aside.folder, kept);
    throw UnfinishedRemoval(FileError("remove", aside.path(), EBUSY),
                            isKept ? aside.folderPath + "/" + kept : aside.path());
}

void ItemRemoval::sweep() const {
    try {
        const auto staging = existingRemovalFolder(platform_);
        if (!staging) return;
        for (const std::string& name : platform_.mover->list(*staging->handle)) {
            if (!isNameOfRemoval(name)) continue;
            try {
                if (name.ends_with(removalRecordSuffix)) sweepRecord(*staging, name);
                platform_.mover->removeAll(*staging->handle, name);
            } catch (const FileError&) {
                // It resists; the others need not.
            }
        }
    } catch (const FileError&) {
        // Out of reach now; the next sweep finds it again.
    }
}

/// Deletes what a record names. Anybody may have written the record: what it names must be what a
/// removal leaves beside an item's place, and must lie where an item may be deleted.
void ItemRemoval::sweepRecord(const RemovalFolder& staging, const std::string& name) const {
    const auto record = platform_.mover->attributes(*staging.handle, name);
    if (!record || record->kind != FileKind::regular || record->logicalSize > longestRecord) return;
    const std::string identifier = name.substr(0, name.size() - removalRecordSuffix.size());
    const std::string path = platform_.files->read(staging.path + "/" + name, recordLimit);
    if (path != standardizedPath(path)) return;
    if (lastPathComponent(path) != std::string(asidePrefix) + identifier) return;
    if (!path.starts_with(platform_.layout.home + "/")) return;
    try {
        const Target rest = admit(path, {path});  // hidden, wherever the item was
        platform_.mover->removeAll(*rest.folder, rest.name);
        reachDisk(*rest.folder);  // before the record goes, which alone tells of it
    } catch (const TrashError&) {
        // Nothing is there any more, or nothing that a removal would have put there.
    }
}

}  // namespace velto
