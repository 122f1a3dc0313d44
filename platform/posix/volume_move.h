#pragma once

#include "platform/posix/PosixFolder.h"

namespace velto {

// Moves within one volume that never replace anything. On failure, which throws FileError, the item
// is at its source.

/// Permissions of a folder that is made just to hold a name until the real one is renamed onto it.
/// Nobody else makes folders that allow nothing.
inline constexpr mode_t placeholder = 0;

/// In a single step. False where that is not possible.
bool moveOnce(FileCalls& calls, const Entry& from, const Entry& to);

/// On a volume that cannot rename without replacing. `aside` is a name in the source's folder that
/// nobody else uses; a failure may leave it for `settleMove`. False when it is not one volume.
bool moveStepwise(FileCalls& calls, const Entry& from, const Entry& to, const Entry& aside);

/// To a name that nobody else uses, whichever way the volume allows. What stands at `from` in that
/// instant is moved, be it the item that was looked at before or a new version of it.
void moveAside(FileCalls& calls, const Entry& from, const Entry& to);

/// From a name that nobody else uses, whichever way the volume allows; throws ENOTSUP when it
/// allows none.
void moveWithinVolume(FileCalls& calls, const Entry& from, const Entry& to);

}  // namespace velto
