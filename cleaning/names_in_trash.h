#pragma once

#include <string>

#include "cleaning/TrashRecords.h"
#include "platform/FileMover.h"

namespace velto {

/// True when names in the trash can be made of an item's ids and name.
bool isSound(const TrashItem& item);

/// The name of an item's file in its operation's folder: the id, "-" and the item's name. One that
/// is too long for the volume with the id before it is cut between two characters (the manifest
/// holds it whole).
std::string storedName(FileMover& mover, const FolderHandle& operation, const TrashItem& item);

// The names of what is under way. An id that makes no scratch name was made up by somebody else:
// FileError.

/// Of the steps of a move in or out.
std::string scratchNameOf(const TrashItem& item);

/// Of the steps of a move back to where an item has just come from.
std::string backScratchOf(const TrashItem& item);

/// Of a folder that is being deleted.
std::string begunNameOf(const TrashItem& item);

}  // namespace velto
