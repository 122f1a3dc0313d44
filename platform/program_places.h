#pragma once

#include <string>
#include <vector>

namespace velto {

// What the place of a program on a Linux machine tells of the application that it is part of.

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

}  // namespace velto
