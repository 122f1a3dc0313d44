#pragma once

#include <string>
#include <string_view>

#include "platform/DesktopEntry.h"
#include "platform/Platform.h"

namespace velto {

/// The name of a program's file without what only tells how it is started (".appimage", ".sh").
std::string stemOf(std::string_view fileName);

/// What of the home goes when the application of an entry goes, whose program lies in the home: its
/// own folder if that is recognisably the application's alone, else the program file. A folder is
/// named like the program, like the application or its identifier, or by a known abbreviation; one
/// under version control is the user's work.
std::string removablePath(const Platform& platform, const DesktopEntryFile& file,
                          const DesktopEntry& entry);

/// The folder of a program that goes as a single file, when more than that file is in it and no
/// other programs' folder is meant; else empty.
std::string folderThatStays(const Platform& platform, const std::string& program);

}  // namespace velto
