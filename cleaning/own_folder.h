#pragma once

#include <memory>
#include <string>

#include "platform/FileMover.h"

namespace velto {

// A folder of the program's own: a real one, of this user's own. The way to it may lead through
// links, as the user may keep the data folder elsewhere; a link in its own place is somebody's
// attempt to have something else emptied. Both throw FileError that names the folder: ELOOP for a
// link, EPERM for a folder that belongs to somebody else.

/// Null when there is none.
std::unique_ptr<FolderHandle> openOwnFolder(FileMover& mover, const std::string& path);

/// Makes it when it is missing; the folder that holds it must be there.
std::unique_ptr<FolderHandle> makeOwnFolder(FileMover& mover, const std::string& path);

/// The folder that holds one of the program's own. Null when there is none.
std::unique_ptr<FolderHandle> openFolderAbove(FileMover& mover, const std::string& path);

}  // namespace velto
