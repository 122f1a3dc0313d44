#pragma once

#include <deque>

namespace velto::window {

/// How soon the page is loaded again after its process has ended: at once, but at most three times
/// within a minute, so that a page that cannot live does not keep the machine busy.
class ReloadPace {
public:
    /// Records a reload asked for at `now` (seconds, monotonic) and returns the seconds to wait
    /// before it.
    double delay(double now);

private:
    static constexpr std::size_t mostInPeriod = 3;
    static constexpr double period = 60;  // seconds
    std::deque<double> reloads_;          // when the newest ones happen, the oldest first
};

}  // namespace velto::window
