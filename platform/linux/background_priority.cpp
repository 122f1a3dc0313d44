#include "platform/background_priority.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velto {
namespace {

// ioprio_set(2) has no wrapper and no header of its own; the values are those of its manual page.
constexpr int whoProcess = 1;
constexpr int idleClass = 3;
constexpr int classShift = 13;

constexpr int lowestPriority = 19;

}  // namespace

void runInBackground() {
    setpriority(PRIO_PROCESS, 0, lowestPriority);
    const sched_param parameters{};
    sched_setscheduler(0, SCHED_IDLE, &parameters);
    syscall(SYS_ioprio_set, whoProcess, 0, idleClass << classShift);
}

// All three calls are about the calling thread on this system, and its threads inherit them.
void runThreadInBackground() { runInBackground(); }

}  // namespace velto
