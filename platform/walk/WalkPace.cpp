#include "platform/walk/WalkPace.h"

#include <algorithm>

namespace velto {
namespace {

// Shares of the walk's processors. Between the two the number stays: at the bound of neither does
// one thread more or less make a walk noticeably faster.
constexpr double waitingBelow = 0.5;
constexpr double busyAbove = 0.9;

}  // namespace

WalkPace::WalkPace(std::size_t least, std::size_t most)
    : least_(std::max<std::size_t>(1, least)), most_(std::max(least_, most)), threads_(least_) {}

std::size_t WalkPace::next(double elapsed, double busy) {
    if (elapsed <= 0) return threads_;
    const double share = busy / (elapsed * static_cast<double>(least_));
    if (share < waitingBelow) {
        threads_ = std::min(most_, 2 * threads_);
    } else if (share > busyAbove) {
        threads_ = std::max(least_, threads_ - (threads_ + 3) / 4);
    }
    return threads_;
}

}  // namespace velto
