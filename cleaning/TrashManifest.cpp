#include "cleaning/TrashManifest.h"

#include <cerrno>
#include <utility>

#include <nlohmann/json.hpp>

#include "cleaning/own_folder.h"

namespace velto {

bool TrashManifest::isCurrent() const {
    if (!loaded_) return false;
    return version_ ? version_->isCurrent() : !files_.exists(path_);
}

bool TrashManifest::refresh(Manifest& lists) {
    if (isCurrent()) return true;
    const bool isFirst = !loaded_;
    loaded_ = true;
    // A second attempt: a passing fault of the disk must not make the trash look empty.
    return tryToRead(lists) || tryToRead(lists) || isFirst;
}

bool TrashManifest::reload(Manifest& lists) {
    Manifest unsaved = std::exchange(lists, {});
    if (tryToRead(lists) || tryToRead(lists)) return true;
    lists = std::move(unsaved);
    return false;
}

bool TrashManifest::tryToRead(Manifest& lists) {
    version_.reset();
    try {
        // A link in the place of the trash leads to somebody else's manifest.
        const auto trash = files_.attributes(folder());
        if (trash && trash->kind != FileKind::folder) return false;
        auto version = mover_.openVersion(path_, trashRecordsLimit);
        if (!version) {
            if (files_.exists(path_)) return false;  // it came back meanwhile
            if (!files_.exists(folder())) lists = {};
            isSaved_ = lists.items.empty() && lists.operations.empty();
            return true;
        }
        const std::string content = version->read();
        version_ = std::move(version);
        lists = decodeManifest(content);
        isSaved_ = true;
        return true;
    } catch (const RefusedFile&) {
        return true;  // no file of ours: as a damaged one
    } catch (const FileError&) {
        return false;
    } catch (const nlohmann::json::exception&) {
        return true;  // damaged: there is nothing to gain from it
    }
}

std::optional<FileError> TrashManifest::save(const Manifest& lists) {
    isSaved_ = false;
    try {
        files_.createFolders(parentFolder(folder()));
        mover_.writeAtomically(*makeOwnFolder(mover_, folder()),
                               std::string(lastPathComponent(path_)), encodeManifest(lists));
    } catch (const FileError& error) {
        return error;
    } catch (const nlohmann::json::exception&) {
        return FileError("write", path_, EILSEQ);
    }
    loaded_ = true;
    isSaved_ = true;
    try {
        version_ = mover_.openVersion(path_, trashRecordsLimit);
    } catch (const FileError&) {
        version_.reset();  // read again before the next change
    }
    return std::nullopt;
}

}  // namespace velto
