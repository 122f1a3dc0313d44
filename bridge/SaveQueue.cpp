#include "bridge/SaveQueue.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace velto {

struct SaveQueue::Line {
    struct Item {
        std::string file;
        Work write;
        std::vector<Work> then;
    };

    explicit Line(Dispatcher& theDispatcher) : dispatcher(theDispatcher) {}

    /// True when nobody has been asked to work through the line: the caller then has to.
    bool join(const std::string& file, Work write, Work then) {
        const std::lock_guard guard(lock);
        auto place = std::ranges::find(waiting, file, &Item::file);
        if (place == waiting.end()) {
            place = waiting.insert(place, Item{.file = file, .write = {}, .then = {}});
        }
        place->write = std::move(write);
        if (then) place->then.push_back(std::move(then));
        return !std::exchange(isWorkedOn, true);
    }

    /// Writes the next one, and waits before that for one that is being written. False when there
    /// is none; with `isLast` nobody works through the line any more then.
    bool writeNext(bool isLast) {
        const std::lock_guard turn(writing);
        Item item;
        {
            const std::lock_guard guard(lock);
            if (waiting.empty()) {
                if (isLast) isWorkedOn = false;
                return false;
            }
            item = std::move(waiting.front());
            waiting.pop_front();
        }
        item.write();
        for (Work& work : item.then)
            dispatcher.main(std::move(work));
        return true;
    }

    Dispatcher& dispatcher;
    std::mutex writing;  // before the other one
    std::mutex lock;
    std::deque<Item> waiting;
    bool isWorkedOn = false;
};

SaveQueue::SaveQueue(Dispatcher& dispatcher) : line_(std::make_shared<Line>(dispatcher)) {}

void SaveQueue::put(const std::string& file, Work write, Work then) const {
    if (!line_->join(file, std::move(write), std::move(then))) return;
    line_->dispatcher.change([line = line_] {
        while (line->writeNext(true)) {
        }
    });
}

void SaveQueue::finish() const {
    while (line_->writeNext(false)) {
    }
}

}  // namespace velto
