#include "bridge/CleanupQueue.h"

#include <deque>
#include <mutex>
#include <utility>

namespace velto {

struct CleanupQueue::Line {
    explicit Line(const CleanupServices& theServices) : services(theServices) {}

    /// True when nobody works through the line yet: the caller then has to.
    bool join(Work work) {
        const std::lock_guard guard(lock);
        waiting.push_back(std::move(work));
        return !std::exchange(isWorkedOn, true);
    }

    bool isBusy() {
        const std::lock_guard guard(lock);
        return isWorkedOn;
    }

    Work next() {
        const std::lock_guard guard(lock);
        if (waiting.empty()) {
            isWorkedOn = false;
            return nullptr;
        }
        Work work = std::move(waiting.front());
        waiting.pop_front();
        return work;
    }

    CleanupServices services;
    std::mutex lock;
    std::deque<Work> waiting;
    bool isWorkedOn = false;
};

CleanupQueue::CleanupQueue(Dispatcher& dispatcher, const CleanupServices& services,
                           std::optional<WorkProgress> shown)
    : dispatcher_(dispatcher), shown_(std::move(shown)), line_(std::make_shared<Line>(services)) {}

void CleanupQueue::run(Work work) {
    if (!line_->join(std::move(work))) return;
    // Whoever waits for the one before waits here, not on a thread of the global queue.
    dispatcher_.change([line = line_, shown = shown_ ? shown_->begin() : nullptr] {
        CleanupServices services = line->services;
        services.shown = shown.get();
        for (bool isFirst = true; const Work next = line->next(); isFirst = false) {
            // How much of this one is done nobody has told yet.
            if (shown && !isFirst) shown->report(std::nullopt);
            next(services);
        }
    });
}

bool CleanupQueue::isBusy() const { return line_->isBusy(); }

}  // namespace velto
