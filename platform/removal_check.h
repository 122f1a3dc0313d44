#pragma once

#include <string>

#include "platform/FileMover.h"

namespace velto {

/// Throws the FileError that `FileMover::removeAll` would end with, as far as that can be told
/// without changing anything: a folder of somebody else's that refuses, a volume that is mounted
/// inside (EBUSY). Nothing there is no error. `parent` is a folder that the system's FileMover has
/// opened. Blocking; safe from every thread.
void requireRemovable(const FolderHandle& parent, const std::string& name);

}  // namespace velto
