#include "cleaning/LightReading.h"

#include <algorithm>

namespace velto {

void LightReading::goTo(std::int64_t offset) {
    giveBack(offset);
    // The second window is on its way while the first one is used.
    while (asked_ < std::min(end_, offset + window)) {
        const ByteRange next{asked_, std::min(window, end_ - asked_)};
        for (const ByteRange& range : content_.notCached(next)) {
            content_.readAhead(range);
            ours_.push_back(range);
        }
        asked_ = next.end();
    }
}

void LightReading::giveBack(std::int64_t used) {
    while (!ours_.empty() && (used >= end_ || ours_.front().end() <= used)) {
        content_.forget(ours_.front());
        ours_.pop_front();
    }
}

}  // namespace velto
