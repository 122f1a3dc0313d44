#include "platform/walk/WalkPace.h"

#include <algorithm>

namespace velto {
namespace {

// A share of the walk's processors: used beyond it, more threads gain nothing.
constexpr double idleBelow = 0.85;

// Shares of the threads' time in which they neither run nor stand in line: they wait for the disk.
// Where nothing has to be waited for they stay below the lesser one, whoever else runs. Between the
// two the number stays.
constexpr double waitingAbove = 0.2;
constexpr double servedBelow = 0.1;

}  // namespace

WalkPace::WalkPace(std::size_t least, std::size_t most)
    : least_(std::max<std::size_t>(1, least)), most_(std::max(least_, most)), threads_(least_) {}

std::size_t WalkPace::next(double elapsed, ProcessorUse spent) {
    if (elapsed <= 0) return threads_;
    const double atWork = spent.used + std::max(0.0, spent.delayed);
    const double waiting = 1 - atWork / (elapsed * static_cast<double>(threads_));
    if (waiting < servedBelow) {
        threads_ = std::max(least_, threads_ - (threads_ + 3) / 4);
    } else if (waiting > waitingAbove &&
               spent.used < idleBelow * elapsed * static_cast<double>(least_)) {
        threads_ = std::min(most_, 2 * threads_);
    }
    return threads_;
}

}  // namespace velto
