#include "cleaning/CloudFolder.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <memory>

#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

using nlohmann::json;

constexpr ReadLimit indexLimit = ownFile(256 << 20);  // a million files in the cloud folder

/// Below the folder, and not the folder itself.
bool isBelow(const std::string& path, const std::string& folder) {
    return path != folder && isAtOrBelow(path, folder);
}

bool leadsNowhere(const FileError& error) {
    return error.code() == ENOENT || error.code() == ENOTDIR || error.code() == ELOOP;
}

}  // namespace

CloudFolder::CloudFolder(FileManager& files, FileMover& mover, Log& log, const HomeLayout& layout)
    : files_(files), mover_(mover), log_(log), layout_(layout), guard_(files, mover, layout) {}

CloudFolder& CloudFolder::shared() {
    Platform& platform = processPlatform();
    // Lives for ever, as the trash does: work may use it while the process ends.
    static auto* const instance = std::make_unique<CloudFolder>(*platform.files, *platform.mover,
                                                                *platform.log, platform.layout)
                                      .release();
    return *instance;
}

CloudFolder::Result CloudFolder::moveTo(const std::vector<std::string>& paths) {
    return moveEach(paths,
                    [this](const std::string& path, Index& index) { return moveIn(path, index); });
}

CloudFolder::Result CloudFolder::moveFrom(const std::vector<std::string>& paths) {
    return moveEach(paths,
                    [this](const std::string& path, Index& index) { return moveOut(path, index); });
}

template <typename MoveOne>
CloudFolder::Result CloudFolder::moveEach(const std::vector<std::string>& paths, MoveOne moveOne) {
    Result result;
    for (const std::string& path : paths) {
        try {
            if (layout_.cloudDrive.empty()) throw FileError("reach", "the cloud drive", ENOENT);
            files_.createFolders(layout_.dataFolder);
            const auto lock = mover_.lock(indexPath() + ".lock", true);
            Index index = read();
            settleEarlierMove(index);
            result.arrivedAt.push_back(moveOne(path, index));
            result.moved.push_back(path);
        } catch (const std::exception& error) {
            log_.line("Velto ▶ nube: " + singleLine(path) + ": " + singleLine(error.what()));
            result.failed.push_back(path);
        }
    }
    return result;
}

std::string CloudFolder::moveIn(const std::string& path, Index& index) {
    const TrashGuard::Admitted item = guard_.admit(path, {});
    const auto drive = files_.attributes(layout_.cloudDrive);
    if (!drive || drive->kind != FileKind::folder) {
        throw FileError("reach", layout_.cloudDrive, ENOENT);
    }
    mover_.openFolder(layout_.cloudFolder, FolderPath::createdWithoutLinks);
    refuseOwnFolders(item);
    const Move move{.from = standardizedPath(path),
                    .to = layout_.cloudFolder + "/" + item.place.name,
                    .scratch = scratchName(newUUID())};
    carryOut(item.place, openPlace(mover_, move.to, FolderPath::withoutLinks), move, index);
    return move.to;
}

std::string CloudFolder::moveOut(const std::string& path, Index& index) {
    const std::string source = pathInCloud(standardizedPath(path), index);
    const TrashGuard::Admitted item = guard_.admit(source, {});
    const auto known = index.origins.find(item.place.name);
    const std::string origin = known == index.origins.end() ? "" : known->second;
    const Move move{.from = source,
                    .to = placeToReturnTo(origin, item.place.name),
                    .scratch = scratchName(newUUID())};
    carryOut(item.place, openPlace(mover_, move.to, FolderPath::withoutLinks), move, index);
    return move.to;
}

/// The move is on the disk before the first file is touched, and stays there until the index tells
/// what has become of it.
void CloudFolder::carryOut(const HeldPlace& from, const HeldPlace& to, const Move& move,
                           Index& index) {
    if (mover_.attributes(*to.folder, to.name)) throw FileError("move to", move.to, EEXIST);
    index.move = move;
    save(index);
    try {
        if (!mover_.moveAtOnce(*from.folder, from.name, *to.folder, to.name)) {
            mover_.moveInSteps(*from.folder, from.name, *to.folder, to.name, move.scratch);
        }
    } catch (const FileError&) {
        const MoveState state =
            mover_.settleMove(*from.folder, from.name, *to.folder, to.name, move.scratch);
        finish(move, state, index);
        save(index);
        if (state != MoveState::atTarget) throw;
        return;
    }
    finish(move, MoveState::atTarget, index);
    try {
        mover_.sync(*to.folder);
        mover_.sync(*from.folder);
        save(index);
    } catch (const FileError& error) {
        // The file has moved; what is written down tells the next use all that it needs.
        log_.line("Velto ▶ nube: " + singleLine(error.what()));
    }
}

void CloudFolder::settle() {
    try {
        if (layout_.cloudDrive.empty() || !files_.exists(indexPath())) return;
        const auto lock = mover_.lock(indexPath() + ".lock", true);
        Index index = read();
        settleEarlierMove(index);
    } catch (const FileError& error) {
        log_.line("Velto ▶ nube: " + singleLine(error.what()));
    }
}

void CloudFolder::settleEarlierMove(Index& index) {
    if (!index.move) return;
    const Move move = *index.move;
    MoveState state = MoveState::nowhere;
    const bool isOurMove = isOurs(move);
    try {
        if (isOurMove) {
            const HeldPlace from = openPlace(mover_, move.from, FolderPath::withoutLinks);
            const HeldPlace to = openPlace(mover_, move.to, FolderPath::withoutLinks);
            if (!isInDataFolder(from) && !isInDataFolder(to)) {
                state =
                    mover_.settleMove(*from.folder, from.name, *to.folder, to.name, move.scratch);
            }
        } else {
            log_.line("Velto ▶ nube: un movimiento ajeno no se toca: " + singleLine(move.from));
        }
    } catch (const FileError& error) {
        // A folder of it is gone for good: nothing can be brought into order there any more.
        if (!leadsNowhere(error)) throw;
        if (files_.exists(move.to) && !files_.exists(move.from)) state = MoveState::atTarget;
    }
    finish(move, state, index);
    save(index);
}

/// The index is a file, and anybody may have written it: a move out of it is carried out only when
/// this program could have begun it.
bool CloudFolder::isOurs(const Move& move) const {
    const auto isInCloud = [&](const std::string& path) {
        return standardizedPath(path) == path && parentFolder(path) == layout_.cloudFolder;
    };
    const bool isIn = isInCloud(move.to) && isPlaceOutside(move.from);
    const bool isOut = isInCloud(move.from) && (isPlaceOutside(move.to) || isInDownloads(move.to));
    const bool isSameName = lastPathComponent(move.from) == lastPathComponent(move.to);
    return (isIn || isOut) && isSameName && isScratchName(move.scratch);
}

/// Where something that lies in the cloud folder may have come from, and may go back to.
bool CloudFolder::isPlaceOutside(const std::string& path) const {
    return standardizedPath(path) == path && isBelow(path, layout_.home) &&
           !isProtectedPath(path) && !isAtOrBelow(path, layout_.dataFolder) &&
           !isAtOrBelow(path, layout_.cloudFolder);
}

/// The user may keep that folder elsewhere, outside the home too.
bool CloudFolder::isInDownloads(const std::string& path) const {
    return standardizedPath(path) == path && files_.exists(layout_.downloads) &&
           parentFolder(path) == files_.resolved(layout_.downloads);
}

/// By identity, as below.
bool CloudFolder::isInDataFolder(const HeldPlace& place) {
    const auto own = mover_.openFolder(layout_.dataFolder, FolderPath::throughLinks);
    return mover_.isAtOrBelow(*place.folder, *own);
}

/// What the index says once it is known where the item is.
void CloudFolder::finish(const Move& move, MoveState state, Index& index) const {
    index.move.reset();
    if (state != MoveState::atTarget) return;
    if (isBelow(move.to, layout_.cloudFolder)) {
        index.origins[std::string(lastPathComponent(move.to))] = move.from;
    } else {
        index.origins.erase(std::string(lastPathComponent(move.from)));
    }
}

/// The item in the cloud folder that a path stands for: its own path, or where it came from.
std::string CloudFolder::pathInCloud(const std::string& path, const Index& index) const {
    if (parentFolder(path) == layout_.cloudFolder) return path;
    const auto found = std::ranges::find_if(
        index.origins, [&](const auto& entry) { return entry.second == path; });
    if (found == index.origins.end()) throw FileError("find in the cloud folder", path, ENOENT);
    return layout_.cloudFolder + "/" + found->first;
}

std::string CloudFolder::placeToReturnTo(const std::string& origin, const std::string& name) const {
    // An index that somebody has tampered with must not lead out of the home or into what is
    // protected.
    if (isPlaceOutside(origin) && lastPathComponent(origin) == name) {
        try {
            openPlace(mover_, origin, FolderPath::withoutLinks);
            return origin;
        } catch (const FileError&) {
            // Its folder is gone, or is not the one that it was.
        }
    }
    files_.createFolders(layout_.downloads);
    return files_.resolved(layout_.downloads) + "/" + name;
}

void CloudFolder::refuseOwnFolders(const TrashGuard::Admitted& item) {
    refuseOwnFolder(item, layout_.dataFolder);
    refuseOwnFolder(item, layout_.cloudFolder);
}

/// By identity: a path may reach a folder in other letters (a volume that ignores case).
void CloudFolder::refuseOwnFolder(const TrashGuard::Admitted& item, const std::string& folder) {
    const auto own = mover_.openFolder(folder, FolderPath::throughLinks);
    bool isOwn = mover_.isAtOrBelow(*item.place.folder, *own);
    if (!isOwn && item.attributes.kind == FileKind::folder) {
        const auto moved = mover_.openFolder(*item.place.folder, item.place.name);
        isOwn = mover_.isAtOrBelow(*own, *moved);
    }
    if (isOwn) throw FileError("move", folder, EPERM);
}

// The index

/// A missing or damaged file counts as empty. Throws FileError when it cannot be read: then nothing
/// may be saved over it.
CloudFolder::Index CloudFolder::read() const {
    Index index;
    // A link leads to what somebody else has written; the next save takes its place.
    const auto file = files_.attributes(indexPath());
    if (file && file->kind == FileKind::symbolicLink) return index;
    try {
        const json object = parseJson(files_.read(indexPath(), indexLimit));
        const auto origins = object.at("origins").get<std::map<std::string, std::string>>();
        for (const auto& [name, origin] : origins)
            index.origins[pathBytes(name)] = pathBytes(origin);
        if (object.contains("move")) {
            const json& move = object["move"];
            index.move = Move{.from = pathBytes(field<std::string>(move, "from")),
                              .to = pathBytes(field<std::string>(move, "to")),
                              .scratch = field<std::string>(move, "scratch")};
        }
    } catch (const RefusedFile&) {
        return {};
    } catch (const FileError&) {
        if (files_.exists(indexPath())) throw;
    } catch (const json::exception&) {
        return {};
    }
    return index;
}

void CloudFolder::save(const Index& index) {
    json object{{"origins", json::object()}};
    for (const auto& [name, origin] : index.origins)
        object["origins"][pathText(name)] = pathText(origin);
    if (index.move) {
        const Move& move = *index.move;
        object["move"] = {
            {"from", pathText(move.from)}, {"to", pathText(move.to)}, {"scratch", move.scratch}};
    }
    files_.writeAtomically(indexPath(), writeJson(object));
}

}  // namespace velto
