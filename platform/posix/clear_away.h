#pragma once

#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixFolder.h"

namespace velto {

/// Removes what a move between volumes has no more use for: the item is whole elsewhere. What
/// resists a second attempt stays in its folder under a name of its own, which begins with the old
/// one: no later move of the item stumbles over it. Never throws.
void clearAway(PosixFileManager& files, FileCalls& calls, const Entry& rest);

}  // namespace velto
