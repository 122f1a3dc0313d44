#pragma once

#include <string>

#include "platform/FileMover.h"

namespace velto {

/// Throws the FileError that `FileMover::removeAll` would end with, as far as that can be told
/// without changing anything: a folder of somebody else's that refuses, a volume that is mounted
/// inside (EBUSY). Nothing there is no error. `parent` is a folder that the system's FileMover has
/// opened. Blocking; safe from every thread.
void requireRemovable(const FolderHandle& parent, const std::string& name);

/// Throws the FileError that moving `name` away would end with, as far as that can be told without
/// changing anything: the folder it stands in is closed to this user, its disk is read-only, or
/// another volume is mounted at it or inside. Otherwise as above.
void requireMovable(const FolderHandle& parent, const std::string& name);

}  // namespace velto
