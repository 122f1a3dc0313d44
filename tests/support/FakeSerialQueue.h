#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "platform/SerialQueue.h"

namespace velto {

/// A queue that the test runs by hand, on its own thread. The test's hand on it, `Control`,
/// outlives the queue.
class FakeSerialQueue final : public SerialQueue {
public:
    struct Repetition {
        double due;
        double period;
        std::shared_ptr<const Work> work;
    };

    struct Control {
        /// Runs what waits, and what that adds.
        void run() {
            while (!waiting.empty()) {
                const Work work = std::move(waiting.front());
                waiting.pop_front();
                work();
            }
        }

        /// Lets seconds pass: timers fire in the order of their times. `before` hears of each
        /// time at which one fires.
        void advance(double seconds, const std::function<void(double)>& before = {}) {
            const double end = time + seconds;
            constexpr double rounding = 1e-9;  // of sums of tenths
            run();
            while (true) {
                auto next = timers.end();
                for (auto timer = timers.begin(); timer != timers.end(); ++timer) {
                    if (timer->second.due > end + rounding) continue;
                    if (next == timers.end() || timer->second.due < next->second.due) next = timer;
                }
                if (next == timers.end()) break;
                time = next->second.due;
                next->second.due += next->second.period;
                if (before) before(time);
                const auto work = next->second.work;
                (*work)();
                run();
            }
            time = end;
        }

        double time = 0;
        std::deque<Work> waiting;
        std::map<int, Repetition> timers;
        int lastTimer = 0;
    };

    explicit FakeSerialQueue(std::shared_ptr<Control> control) : control_(std::move(control)) {}
    ~FakeSerialQueue() override {
        control_->waiting.clear();
        control_->timers.clear();
    }

    void async(Work work) override { control_->waiting.push_back(std::move(work)); }

    std::unique_ptr<Timer> repeat(double first, double period, Work work) override {
        const int identifier = ++control_->lastTimer;
        control_->timers.emplace(identifier,
                                 Repetition{control_->time + first, period,
                                            std::make_shared<const Work>(std::move(work))});
        return std::make_unique<FakeTimer>(control_, identifier);
    }

private:
    class FakeTimer final : public Timer {
    public:
        FakeTimer(std::shared_ptr<Control> control, int identifier)
            : control_(std::move(control)), identifier_(identifier) {}
        ~FakeTimer() override { control_->timers.erase(identifier_); }

    private:
        std::shared_ptr<Control> control_;
        int identifier_;
    };

    std::shared_ptr<Control> control_;
};

}  // namespace velto
