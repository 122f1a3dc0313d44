#include "platform/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/background_priority.h"

namespace velto {
namespace {

/// The state that the threads of one call share.
class Run {
public:
    Run(std::size_t count, const std::function<void(std::size_t, std::size_t)>& work)
        : count_(count), work_(work) {}

    void onThread(std::size_t thread) {
        try {
            for (std::size_t index = next_++; index < count_; index = next_++) {
                followPriority();
                work_(index, thread);
            }
        } catch (...) {
            next_ = count_;
            const std::lock_guard guard(lock_);
            if (!failure_) failure_ = std::current_exception();
        }
    }

    bool hasMore() const { return next_ < count_; }

    void rethrow() {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    const std::size_t count_;
    const std::function<void(std::size_t, std::size_t)>& work_;
    std::atomic<std::size_t> next_{0};
    std::mutex lock_;
    std::exception_ptr failure_;
};

/// Joins its threads at the end of its life.
class Threads {
public:
    ~Threads() {
        for (std::thread& thread : threads_)
            thread.join();
    }
    void start(Run& run) {
        const std::size_t number = threads_.size() + 1;
        threads_.emplace_back([&run, number, priority = PassedPriority()] {
            priority.take();
            run.onThread(number);
        });
    }

private:
    std::vector<std::thread> threads_;
};

}  // namespace

std::size_t processorCount() {
    return std::max<std::size_t>(1, std::thread::hardware_concurrency());
}

void forEachInParallel(std::size_t count, std::size_t threads,
                       const std::function<void(std::size_t, std::size_t)>& work) {
    Run run(count, work);
    {
        Threads others;
        const std::size_t wanted = std::min(count, threads == 0 ? processorCount() : threads);
        // A thread takes as long to start as many a small piece of work does to end.
        for (std::size_t number = 1; number < wanted && run.hasMore(); ++number)
            others.start(run);
        run.onThread(0);
    }
    run.rethrow();
}

}  // namespace velto
