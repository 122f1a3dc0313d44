#include "platform/linux/ThreadQueue.h"

#include <pthread.h>

#include <algorithm>
#include <utility>

namespace velto {
namespace {

constexpr std::size_t longestThreadName = 15;  // pthread_setname_np(3)

std::chrono::steady_clock::duration inSeconds(double seconds) {
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
}

/// The label's last words, which tell it from others.
std::string threadName(const std::string& label) {
    return label.substr(label.size() - std::min(label.size(), longestThreadName));
}

}  // namespace

class ThreadQueue::RepeatingTimer final : public Timer {
public:
    RepeatingTimer(std::shared_ptr<State> state, std::uint64_t identifier)
        : state_(std::move(state)), identifier_(identifier) {}
    ~RepeatingTimer() override {
        decltype(state_->timers)::node_type gone;  // ends outside the lock: its work may hold much
        const std::lock_guard guard(state_->lock);
        gone = state_->timers.extract(identifier_);
        state_->changed.notify_one();
    }
    RepeatingTimer(const RepeatingTimer&) = delete;
    RepeatingTimer& operator=(const RepeatingTimer&) = delete;

private:
    std::shared_ptr<State> state_;
    std::uint64_t identifier_;
};

ThreadQueue::ThreadQueue(const std::string& label) : thread_([state = state_] { run(*state); }) {
    pthread_setname_np(thread_.native_handle(), threadName(label).c_str());
}

ThreadQueue::~ThreadQueue() {
    decltype(state_->waiting) waiting;
    decltype(state_->timers) timers;
    {
        const std::lock_guard guard(state_->lock);
        state_->isClosed = true;
        waiting.swap(state_->waiting);
        timers.swap(state_->timers);
        state_->changed.notify_one();
    }
    thread_.join();
}

void ThreadQueue::async(Work work) {
    const std::lock_guard guard(state_->lock);
    if (state_->isClosed) return;
    state_->waiting.push_back(std::make_shared<const Work>(std::move(work)));
    state_->changed.notify_one();
}

std::unique_ptr<SerialQueue::Timer> ThreadQueue::repeat(double first, double period, Work work) {
    const std::lock_guard guard(state_->lock);
    const std::uint64_t identifier = ++state_->lastTimer;
    if (!state_->isClosed) {
        auto shared = std::make_shared<const Work>(std::move(work));
        state_->timers.emplace(identifier,
                               Repetition{std::chrono::steady_clock::now() + inSeconds(first),
                                          inSeconds(period), std::move(shared)});
        state_->changed.notify_one();
    }
    return std::make_unique<RepeatingTimer>(state_, identifier);
}

void ThreadQueue::run(State& state) noexcept {
    while (const auto work = next(state))
        (*work)();
}

/// Waits for the next piece of work; null when the queue is closed.
std::shared_ptr<const ThreadQueue::Work> ThreadQueue::next(State& state) {
    std::unique_lock guard(state.lock);
    while (!state.isClosed) {
        if (!state.waiting.empty()) {
            auto work = std::move(state.waiting.front());
            state.waiting.pop_front();
            return work;
        }
        if (auto work = due(state, std::chrono::steady_clock::now())) return work;
        if (state.timers.empty()) {
            state.changed.wait(guard);
            continue;
        }
        const auto earliest = std::min_element(
            state.timers.begin(), state.timers.end(),
            [](const auto& one, const auto& other) { return one.second.due < other.second.due; });
        const Time until = earliest->second.due;
        state.changed.wait_until(guard, until);
    }
    return nullptr;
}

/// The work of a timer that is due, which is then set to its next time that lies ahead.
std::shared_ptr<const ThreadQueue::Work> ThreadQueue::due(State& state, Time now) {
    for (auto& [identifier, timer] : state.timers) {
        if (timer.due > now) continue;
        do
            timer.due += timer.period;
        while (timer.period > Duration::zero() && timer.due <= now);
        return timer.work;
    }
    return nullptr;
}

std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) {
    return std::make_unique<ThreadQueue>(label);
}

}  // namespace velto
