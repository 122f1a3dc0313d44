#pragma once

#include <string>

namespace velto {

/// The folder in which the test program runs, on the build folder's volume; programs may be started
/// from it.
std::string buildVolume();

/// A folder on a second volume: what VELTO_OTHER_VOLUME names (a disk image on a Mac, see
/// tools/test.sh), or memory. The build folder where there is neither.
std::string otherVolume();

/// True when both folders are there, on volumes of their own.
bool areTwoVolumes(const std::string& one, const std::string& other);

/// What the file system of a folder takes for a name, found out by trying: not every one takes
/// bytes that are no UTF-8, or two names that differ in case alone.
bool takesNamesOfAnyBytes(const std::string& folder);
bool tellsCaseApart(const std::string& folder);

}  // namespace velto
