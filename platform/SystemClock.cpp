#include <chrono>

#include "platform/Clock.h"

namespace velto {
namespace {

template <typename ClockType>
double secondsOf() {
    return std::chrono::duration<double>(ClockType::now().time_since_epoch()).count();
}

}  // namespace

double SystemClock::now() const { return secondsOf<std::chrono::system_clock>(); }

double SystemClock::monotonic() const { return secondsOf<std::chrono::steady_clock>(); }

}  // namespace velto
