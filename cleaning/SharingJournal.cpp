#include "cleaning/SharingJournal.h"

#include <cerrno>

#include <nlohmann/json.hpp>

#include "cleaning/TrashGuard.h"
#include "cleaning/restored_name.h"
#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

constexpr ReadLimit journalLimit = ownFile(1 << 16);  // a path and a name
constexpr int mostNames = 1000;                       // tried for what is kept

}  // namespace

SharingJournal::SharingJournal(const Platform& platform)
    : platform_(platform), path_(platform.layout.dataFolder + "/Sharing.journal") {}

void SharingJournal::begin(const std::string& path, const std::string& scratch) const {
    platform_.files->createFolders(platform_.layout.dataFolder);
    platform_.files->writeAtomically(
        path_, writeJson(nlohmann::json{{"path", pathText(path)}, {"scratch", scratch}}));
}

void SharingJournal::end() const { platform_.files->removeAll(path_); }

bool SharingJournal::settle() const {
    try {
        if (!platform_.files->exists(path_)) return true;
        const auto record = parseJson(platform_.files->read(path_, journalLimit));
        if (!settleOne(pathBytes(field<std::string>(record, "path")),
                       field<std::string>(record, "scratch"))) {
            return false;
        }
    } catch (const RefusedFile&) {
        // Damaged: nobody can tell what it was about.
    } catch (const nlohmann::json::exception&) {
    } catch (const FileError& error) {
        platform_.log->line(std::string("Velto ▶ espacio compartido: pendiente: ") +
                            singleLine(error.what()));
        return false;
    }
    try {
        end();
        return true;
    } catch (const FileError&) {
        return false;
    }
}

/// What the journal says is a claim. False while it cannot be settled.
bool SharingJournal::settleOne(const std::string& path, const std::string& scratch) const {
    if (standardizedPath(path) != path || !isAtOrBelow(path, platform_.layout.home) ||
        path == platform_.layout.home || !isScratchName(scratch)) {
        return true;
    }
    const HeldPlace place = openPlace(*platform_.mover, path, FolderPath::withoutLinks);
    try {
        platform_.sharing->settle(*place.folder, place.name, scratch);
        return true;
    } catch (const FileError& error) {
        if (error.code() != EEXIST) throw;
    }
    // It holds something else than the file at its place: somebody has changed one of them since.
    const std::size_t longest = platform_.mover->longestName(*place.folder);
    for (int number = 1; number <= mostNames; ++number) {
        try {
            return platform_.mover->moveAtOnce(*place.folder, scratch, *place.folder,
                                               restoredName(place.name, number, longest));
        } catch (const FileError& error) {
            if (error.code() != EEXIST) throw;
        }
    }
    return false;
}

}  // namespace velto
