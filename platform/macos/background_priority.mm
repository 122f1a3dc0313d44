#include "platform/background_priority.h"

#include <sys/resource.h>

namespace velto {

void runInBackground() { setpriority(PRIO_DARWIN_PROCESS, 0, PRIO_DARWIN_BG); }

void runThreadInBackground() { setpriority(PRIO_DARWIN_THREAD, 0, PRIO_DARWIN_BG); }

}  // namespace velto
