#pragma once

#include <string>
#include <vector>

namespace velto {

// What the place of a program tells: on a Linux machine of the application that it is part of, on a
// Mac of how long it stays there.

/// The folder that belongs, with all below it, to the application whose program this is: below one
/// of the folders in which each application has its own ("/usr/lib", "/opt", ...), or one that is
/// named like the program. Empty when it has none.
std::string folderOfProgram(const std::string& executable);

/// Where the rest of an application lies whose program, often a script, is in a folder shared by
/// all: the folders of the program's name below those of applications. They need not be there.
std::vector<std::string> foldersNamedLike(const std::string& executable);

/// The name of the Snap that a program is part of: "/snap/<name>/<revision>/...", which some
/// systems have below /var/lib/snapd. Empty for every other.
std::string snapOfProgram(const std::string& executable);

/// True for a program that will not be found at its path later: the system shows an application
/// that was never moved since its download at a random place (translocation), and a disk image goes
/// with its window. `isReadOnly` tells whether the program's volume takes no changes: an
/// application on an external disk stays.
bool isPassingPlace(const std::string& executable, bool isReadOnly);

/// Whether the volume that holds `path` takes no changes; false when that cannot be told.
bool isOnReadOnlyVolume(const std::string& path);

}  // namespace velto
