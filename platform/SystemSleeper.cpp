#include <chrono>
#include <thread>

#include "platform/Sleeper.h"

namespace velto {

void SystemSleeper::sleep(std::int64_t microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

}  // namespace velto
