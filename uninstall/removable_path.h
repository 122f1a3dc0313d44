#pragma once

#include <string>
#include <string_view>

#include "platform/DesktopEntry.h"
#include "platform/Platform.h"

namespace velto {

/// The name of a program's file without what only tells how it is started (".appimage", ".sh").
std::string stemOf(std::string_view fileName);

/// What of the home goes when the application of an entry goes, whose program lies in the home: its
/// own folder if the folder is recognisably the application's alone, else the program file.
std::string removablePath(const Platform& platform, const DesktopEntryFile& file,
                          const DesktopEntry& entry);

}  // namespace velto
