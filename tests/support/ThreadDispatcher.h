#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "platform/Dispatcher.h"

namespace velto {

/// Real threads: global work gets a thread each, and the test's own thread is the main thread. For
/// tests that a thread sanitizer watches. Timers never fire.
class ThreadDispatcher final : public Dispatcher {
public:
    ~ThreadDispatcher() override { join(); }

    bool isMainThread() const override { return std::this_thread::get_id() == main_; }
    void main(Work work) override {
        const std::lock_guard guard(lock_);
        queue_.push_back(std::move(work));
        arrived_.notify_one();
    }
    void mainAfter(double, Work) override {}
    void global(QualityOfService, Work work) override {
        const std::lock_guard guard(lock_);
        threads_.emplace_back(std::move(work));
    }
    void change(Work work) override { global(QualityOfService::userInitiated, std::move(work)); }
    bool finish(double) override {
        join();
        return true;
    }

    /// Runs main-thread work as it arrives until `done` says so.
    void runMainUntil(const std::function<bool()>& done) {
        while (!done()) {
            Work work;
            {
                std::unique_lock guard(lock_);
                arrived_.wait(guard, [this] { return !queue_.empty(); });
                work = std::move(queue_.front());
                queue_.pop_front();
            }
            work();
        }
    }

    /// Waits for all global work, that too which other work asks for meanwhile.
    void join() {
        while (true) {
            std::vector<std::thread> running;
            {
                const std::lock_guard guard(lock_);
                running.swap(threads_);
            }
            if (running.empty()) return;
            for (std::thread& thread : running)
                thread.join();
        }
    }

private:
    const std::thread::id main_ = std::this_thread::get_id();
    std::mutex lock_;
    std::vector<std::thread> threads_;
    std::condition_variable arrived_;
    std::deque<Work> queue_;
};

}  // namespace velto
