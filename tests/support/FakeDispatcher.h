#pragma once

#include <deque>
#include <utility>
#include <vector>

#include "platform/Dispatcher.h"

namespace velto {

/// A dispatcher whose queues the test runs by hand, on the test's own thread.
class FakeDispatcher final : public Dispatcher {
public:
    bool isMainThread() const override { return true; }
    void main(Work work) override { main_.push_back(std::move(work)); }
    void mainAfter(double seconds, Work work) override {
        delayed_.push_back({time_ + seconds, std::move(work)});
    }
    void global(QualityOfService, Work work) override { global_.push_back(std::move(work)); }
    void change(Work work) override {
        ++changes;
        global_.push_back(std::move(work));
    }
    bool finish(double) override { return true; }

    /// Runs what waits for the main thread, and what that adds to it.
    void runMain() { drain(main_); }

    /// Runs what waits on the global queue now.
    void runGlobal() { drain(global_); }

    /// Runs everything until both queues are empty.
    void runAll() {
        while (!main_.empty() || !global_.empty()) {
            drain(global_);
            drain(main_);
        }
    }

    /// Lets time pass in one step: what is due by then runs, in the order of its time.
    void advance(double seconds) {
        const double end = time_ + seconds;
        while (true) {
            auto next = delayed_.end();
            for (auto item = delayed_.begin(); item != delayed_.end(); ++item) {
                if (item->due <= end && (next == delayed_.end() || item->due < next->due)) {
                    next = item;
                }
            }
            if (next == delayed_.end()) break;
            time_ = next->due;
            const Work work = std::move(next->work);
            delayed_.erase(next);
            work();
        }
        time_ = end;
    }

    int changes = 0;  // how often work was said to change files

    std::size_t waitingGlobal() const { return global_.size(); }
    std::size_t waitingTimers() const { return delayed_.size(); }

private:
    struct Delayed {
        double due;
        Work work;
    };

    static void drain(std::deque<Work>& queue) {
        while (!queue.empty()) {
            const Work work = std::move(queue.front());
            queue.pop_front();
            work();
        }
    }

    std::deque<Work> main_;
    std::deque<Work> global_;
    std::vector<Delayed> delayed_;
    double time_ = 0;
};

}  // namespace velto
