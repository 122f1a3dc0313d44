#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/SerialQueue.h"

namespace velto {

/// A serial queue with a thread of its own.
class ThreadQueue final : public SerialQueue {
public:
    explicit ThreadQueue(const std::string& label);
    ~ThreadQueue() override;
    ThreadQueue(const ThreadQueue&) = delete;
    ThreadQueue& operator=(const ThreadQueue&) = delete;

    void async(Work work) override;
    std::unique_ptr<Timer> repeat(double first, double period, Work work) override;

private:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    struct Repetition {
        Time due;
        Duration period;
        std::shared_ptr<const Work> work;
    };

    /// What the thread and the timers share.
    struct State {
        std::mutex lock;
        std::condition_variable changed;
        std::deque<std::shared_ptr<const Work>> waiting;
        std::map<std::uint64_t, Repetition> timers;
        std::uint64_t lastTimer = 0;
        bool isClosed = false;
    };
    class RepeatingTimer;

    static void run(State& state) noexcept;
    static std::shared_ptr<const Work> next(State& state);
    static std::shared_ptr<const Work> due(State& state, Time now);

    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::thread thread_;
};

}  // namespace velto
