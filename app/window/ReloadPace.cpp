#include "app/window/ReloadPace.h"

#include <algorithm>

namespace velto::window {

double ReloadPace::delay(double now) {
    double when = now;
    if (reloads_.size() == mostInPeriod) {
        when = std::max(now, reloads_.front() + period);
        reloads_.pop_front();
    }
    reloads_.push_back(when);
    return when - now;
}

}  // namespace velto::window
