#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/again/KeptWalk.h"
#include "platform/FolderChanges.h"

namespace velto {

/// What of a kept walk has to be read again.
struct Readings {
    std::vector<std::uint32_t> folders;  // each by itself; in order, the home first
    /// For each folder of the kept walk: true when it is still what it was as long as the folder
    /// above it names it and it has the same inode. Its files are its own matter: `folders`.
    std::vector<bool> canStay;
};

/// Chooses. What is told of a folder may concern what its parent's listing says of it, what it
/// holds, or what a folder directly in it is: all of these are read. `unsteady` are folders below
/// which files come and go without a word of the system's. Nothing when a walk of everything is as
/// quick, or the only way to be sure.
std::optional<Readings> chooseReadings(const KeptWalk& walk,
                                       const std::vector<FolderChange>& changes,
                                       const std::vector<std::string>& unsteady);

}  // namespace velto
