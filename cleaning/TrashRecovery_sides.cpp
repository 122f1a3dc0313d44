// Where an item is, and the other side of its move.

#include <cerrno>

#include "cleaning/TrashRecovery.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Kind = JournalEntry::Kind;

bool saysGone(const FileError& error) { return error.code() == ENOENT || error.code() == ENOTDIR; }

}  // namespace

/// Where an item came from. Nothing when it cannot have come from there.
std::optional<std::string> TrashRecovery::originOf(const TrashItem& item) const {
    try {
        return guard_.formerPath(item, extraRoots_);
    } catch (const TrashError&) {
        return std::nullopt;
    }
}

/// A link that has got into the path since is not followed. Throws TrashError when the place is the
/// program's own.
TrashRecovery::Side TrashRecovery::reach(const std::string& path, const std::string& volume) const {
    try {
        HeldPlace place = openPlace(mover_, path, FolderPath::withoutLinks);
        guard_.refuseOwnData(*place.folder);
        // The same names on another volume, or the empty folder that it was mounted on.
        if (!volume.empty() && mover_.volumeOf(*place.folder) != volume) return {};
        return {.reach = Side::Reach::visible, .place = std::move(place)};
    } catch (const FileError& error) {
        const bool isGone = saysGone(error) && isVolumeThere(path, volume);
        return {.reach = isGone ? Side::Reach::gone : Side::Reach::hidden};
    }
}

/// Whether the folders that are left of a path lie on the volume. Of an unknown one its path alone
/// decides.
bool TrashRecovery::isVolumeThere(const std::string& path, const std::string& volume) const {
    if (volume.empty()) return true;
    for (std::string above = parentFolder(path); !above.empty(); above = parentFolder(above)) {
        try {
            return mover_.volumeOf(*mover_.openFolder(above, FolderPath::withoutLinks)) == volume;
        } catch (const FileError& error) {
            if (!saysGone(error)) return false;
        }
    }
    return false;
}

/// Settles the move and tells where the item is by what is in the trash: something new may stand in
/// the place that it came from. An entry without an operation is added to `waiting` when there is
/// still something to be done.
TrashRecovery::Whereabouts TrashRecovery::whereIs(const TrashItem& item,
                                                  const FolderHandle& operation,
                                                  const std::string& volume, Waiting& waiting) {
    const auto whatIsThere = [&] {
        return folder_.attributes(&operation, item) ? Whereabouts::inTrash : Whereabouts::elsewhere;
    };
    const auto wait = [&](Kind kind) {
        waiting.push_back(
            {.kind = kind, .operation = {}, .itemIDs = {}, .steps = {}, .volumes = {}});
    };
    const auto origin = originOf(item);
    if (!origin) return whatIsThere();
    Side side;
    try {
        side = reach(*origin, volume);
    } catch (const TrashError&) {
        return whatIsThere();
    }
    if (side.reach == Side::Reach::visible) {
        try {
            settleBack(item, operation, *side.place);
            folder_.settleIn(*side.place, operation, item);
            return whatIsThere();
        } catch (const FileError& error) {
            // EEXIST: both places are taken and nothing may be replaced; all pieces stay.
            if (error.code() == EEXIST) return whatIsThere();
            side.reach = Side::Reach::hidden;
        }
    }
    if (!folder_.holdsScratch(item, operation)) {
        // It is in the trash, or it never came. Its original may be there, put aside.
        const Whereabouts where = whatIsThere();
        const bool hasRest = side.reach == Side::Reach::hidden && !volume.empty();
        if (hasRest && where == Whereabouts::inTrash) wait(Kind::rest);
        return where;
    }
    if (side.reach == Side::Reach::gone) {
        folder_.adoptScratch(item, operation);
        return Whereabouts::inTrash;
    }
    wait(Kind::move);
    return Whereabouts::unknown;
}

/// What a way back that was cut off has left would be taken for a part of the way in.
void TrashRecovery::settleBack(const TrashItem& item, const FolderHandle& operation,
                               const HeldPlace& origin) {
    if (folder_.isOnWayBack(item, operation, origin)) folder_.settleBack(item, operation, origin);
}

bool TrashRecovery::moveBack(const TrashItem& item, const FolderHandle& operation,
                             const std::string& volume, Waiting& waiting) {
    const auto origin = originOf(item);
    if (!origin) return false;
    Side side;
    try {
        side = reach(*origin, volume);
    } catch (const TrashError&) {
        return false;
    }
    if (!side.place) return false;
    try {
        folder_.moveBack(item, operation, *side.place);
        return true;
    } catch (const FileError&) {
        // The move itself failed and may have left something.
    }
    try {
        return folder_.settleBack(item, operation, *side.place) != MoveState::atSource;
    } catch (const FileError&) {
        JournalEntry one{.kind = Kind::restore,
                         .operation = {},
                         .itemIDs = {item.id},
                         .steps = {},
                         .volumes = {}};
        one.steps = {
            .itemID = item.id, .target = *origin, .volume = mover_.volumeOf(*side.place->folder)};
        waiting.push_back(std::move(one));
        return false;
    }
}

}  // namespace velto
