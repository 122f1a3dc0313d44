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

bool meansGone(const FileError& error) {
    return error.code() == ENOENT || error.code() == ENOTDIR || error.code() == ENAMETOOLONG;
}

}  // namespace

std::int64_t ItemRemoval::remove(const std::string& path) const {
    const auto [place, target] = judged(path);
    const std::int64_t bytes = apps_.sizeOf(place);
    removeWhole(target, place);
    return bytes;
}

/// What the path leads to, judged and held.
std::pair<std::string, ItemRemoval::Target> ItemRemoval::judged(const std::string& path) const {
    std::string place = resolved(path);
    if (!place.starts_with(platform_.layout.home + "/")) throw TrashError(Reason::outsideHome);
    if (isProtectedPath(place) || isProtectedPath(standardizedPath(path))) {
        throw TrashError(Reason::protected_);
    }
    Target target = admit(place);
    return {std::move(place), std::move(target)};
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
ItemRemoval::Target ItemRemoval::admit(const std::string& path) const {
    try {
        Target target{
            .folder = platform_.mover->openFolder(parentFolder(path), FolderPath::withoutLinks),
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

std::optional<std::string> ItemRemoval::placeOf(const std::string& path) const {
    try {
        return judged(path).first;
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
bool ItemRemoval::isProtected(const std::string& path, const FileAttributes& attributes) const {
    const HomeLayout& layout = platform_.layout;
    if (isProtectedPlace(path, layout) || isOwn(path, attributes)) return true;
    std::vector<std::string> kept{layout.home,    layout.pictures,   layout.movies,
                                  layout.music,   layout.downloads,  layout.documents,
                                  layout.desktop, layout.cloudDrive, layout.systemTrash};
    kept.insert(kept.end(), layout.neverRemoved.begin(), layout.neverRemoved.end());
    return std::ranges::any_of(kept, [&](const std::string& folder) {
        if (folder.empty()) return false;
        return isAtOrBelow(folder, path) || isSame(folder, attributes);
    });
}

void ItemRemoval::removeWhole(const Target& target, const std::string& path) const {
    requireRemovable(*target.folder, target.name);
    const RemovalFolder staging = openRemovalFolder(platform_);
    const std::string identifier = newUUID();
    if (platform_.mover->moveAtOnce(*target.folder, target.name, *staging.handle, identifier)) {
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
                      .folderPath = parentFolder(path),
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
    removeAside(aside, target);
    forget(aside.record);
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

/// Deletes what a record names, and nothing that the program did not put there itself.
void ItemRemoval::sweepRecord(const RemovalFolder& staging, const std::string& name) const {
    const std::string identifier = name.substr(0, name.size() - removalRecordSuffix.size());
    const std::string path = standardizedPath(platform_.files->read(staging.path + "/" + name));
    if (lastPathComponent(path) != std::string(asidePrefix) + identifier) return;
    if (!path.starts_with(platform_.layout.home + "/")) return;
    const auto folder = platform_.mover->openFolder(parentFolder(path), FolderPath::withoutLinks);
    platform_.mover->removeAll(*folder, std::string(lastPathComponent(path)));
}

}  // namespace velto
