#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/FileMover.h"
#include "platform/Platform.h"

namespace velto {

/// The folder in which a removal puts what it deletes, held open.
struct RemovalFolder {
    std::unique_ptr<FolderHandle> handle;
    std::string path;  // without links
};

/// Opens it, and makes it when it is missing. It is never reached through a link of its own name,
/// and a data folder that links have led out of the home is refused: what lies there is not this
/// program's. Throws FileError, ELOOP for both.
RemovalFolder openRemovalFolder(const Platform& platform);

/// The same without making anything; nothing when it is missing. Throws FileError.
std::optional<RemovalFolder> existingRemovalFolder(const Platform& platform);

/// Ends the names of the files that tell where an item waits that could not be put into the folder.
inline constexpr std::string_view removalRecordSuffix = ".path";

/// What the names of items begin with that no sweep may touch.
inline constexpr std::string_view keptPrefix = "kept-";

/// True for the names that a removal itself makes: an item's identifier (a UUID as `newUUID` makes
/// it), the record of one, and the temporary that a record is written by. Everything else in the
/// folder is somebody else's.
bool isNameOfRemoval(std::string_view name);

}  // namespace velto
