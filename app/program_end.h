#pragma once

#include "platform/Platform.h"

namespace velto {

/// How long the end of the program waits for work that only reads, in seconds.
inline constexpr double readingGrace = 3;

/// Brings all work to its end once the loop is over: changes of the user's files are completed,
/// reading is waited for as long as `readingGrace` says. Returns when nothing runs any more. Where
/// something hangs, the process ends here, with `status` and without a destructor: everything that
/// has to be kept was written when it changed. Main thread.
void finishWork(Platform& platform, int status);

}  // namespace velto
