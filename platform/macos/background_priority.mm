#include "platform/background_priority.h"

#include <pthread.h>
#include <sys/resource.h>

namespace velto {

void runInBackground() { setpriority(PRIO_DARWIN_PROCESS, 0, PRIO_DARWIN_BG); }

void runThreadInBackground() { setpriority(PRIO_DARWIN_THREAD, 0, PRIO_DARWIN_BG); }

void letOthersGoFirst() { pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0); }

void setThreadInBackground(bool isInBackground) {
    setpriority(PRIO_DARWIN_THREAD, 0, isInBackground ? PRIO_DARWIN_BG : 0);
}

unsigned threadPriority() { return qos_class_self(); }

void takeThreadPriority(unsigned value) {
    if (value != QOS_CLASS_UNSPECIFIED) {
        pthread_set_qos_class_self_np(static_cast<qos_class_t>(value), 0);
    }
}

}  // namespace velto
