#pragma once

#include <string>
#include <vector>

#include "platform/FileManager.h"
#include "platform/Platform.h"

namespace velto {

/// A file and what it was when it was looked at.
struct KnownFile {
    std::string path;
    FileAttributes attributes;

    /// True while the path still leads to that file, unchanged as far as owner, size and time
    /// tell.
    bool isUnchanged(const FileManager& files) const;
};

/// A file of which another whole copy exists.
struct DuplicateCopy {
    KnownFile copy;
    KnownFile kept;  // the one that stays
    double gb = 0;   // size of one copy
};

/// The copies that are not needed, among the regular files above a million bytes in the user's
/// downloads, desktop and documents: of equal files the one with the shortest path stays (shortest
/// in characters, on purpose, whatever its age). Protected paths, hidden ones and those at or below
/// an entry of `excluded` play no part, nor do files of other users. What lies at or below a path
/// in `leaving` goes anyway, so it is never the one that stays. Several names of one file are no
/// copies of each other. Blocks for as long as comparing takes (DupFinder limits it).
std::vector<DuplicateCopy> duplicateCopies(const Platform& platform,
                                           const std::vector<std::string>& excluded,
                                           const std::vector<std::string>& leaving);

}  // namespace velto
