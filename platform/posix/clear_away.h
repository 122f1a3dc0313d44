#pragma once

#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"

namespace velto {

/// Removes what a move between volumes has no more use for: the caller has made sure that the item
/// is whole elsewhere. What resists a second attempt is left behind as below. Never throws.
void clearAway(PosixFileManager& files, FileCalls& calls, const Entry& rest);

/// The same of a copy, which goes only when nothing is in it that `source` does not hold: a name is
/// no proof of whose it is. Anything else is left behind. Throws FileError when that cannot be
/// told.
void clearCopy(PosixFileManager& files, FileCalls& calls, const Entry& copy, const Entry& source);

/// Gives what stays a name of its own in its folder, which begins with the old one: no later move
/// of the item stumbles over it, and nothing deletes it. Never throws.
void leaveBehind(FileCalls& calls, const Entry& rest);

}  // namespace velto
