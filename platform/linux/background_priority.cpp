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
// A busy thread of the usual priority gets three times as much of a processor as one of this
// (sched(7), the weights of nice values).
constexpr int behindOthers = 5;

}  // namespace

void runInBackground() {
    setpriority(PRIO_PROCESS, 0, lowestPriority);
    const sched_param parameters{};
    sched_setscheduler(0, SCHED_IDLE, &parameters);
    syscall(SYS_ioprio_set, whoProcess, 0, idleClass << classShift);
}

// All three calls are about the calling thread on this system, and its threads inherit them.
void runThreadInBackground() { runInBackground(); }

void letOthersGoFirst() {
    // As the process, so the thread: what runs lower already stays there.
    if (getpriority(PRIO_PROCESS, 0) < behindOthers) setpriority(PRIO_PROCESS, 0, behindOthers);
}

// Its nice value stays: a thread may not lower that again (setpriority(2)), and while it is idle it
// counts for nothing. A thread that another in the background has started is there already.
void setThreadInBackground(bool isInBackground) {
    const sched_param parameters{};
    sched_setscheduler(0, isInBackground ? SCHED_IDLE : SCHED_OTHER, &parameters);
    const int disk = isInBackground ? idleClass << classShift : 0;  // 0: as the nice value says
    syscall(SYS_ioprio_set, whoProcess, 0, disk);
}

// A thread has the priority of the one that starts it.
unsigned threadPriority() { return 0; }
void takeThreadPriority(unsigned) {}

}  // namespace velto
