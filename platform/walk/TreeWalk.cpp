#include "platform/walk/TreeWalk.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/background_priority.h"
#include "platform/walk/WalkPace.h"
#include "platform/walk/WalkQueue.h"
#include "platform/walk/WalkWorker.h"

namespace velto {
namespace {

// The first ticks come sooner, each after twice the time of the one before: what is in no cache is
// read by many threads from early on.
constexpr std::chrono::milliseconds firstTick{10};
constexpr std::chrono::milliseconds tickInterval{50};

/// The threads of one walk. Its end joins them, whatever the calling thread is going through.
class WalkThreads {
public:
    explicit WalkThreads(WalkQueue& queue) : queue_(queue) {}

    ~WalkThreads() {
        queue_.stop();
        for (std::thread& thread : threads_)
            thread.join();
    }

    void start(WalkWorker& worker) {
        {
            const std::lock_guard guard(lock_);
            ++running_;
        }
        try {
            threads_.emplace_back([this, &worker, priority = PassedPriority()] {
                priority.take();
                work(worker);
            });
        } catch (...) {
            const std::lock_guard guard(lock_);
            --running_;
            throw;
        }
    }

    /// Waits for the end of all threads, calling `tick` meanwhile. Rethrows the first exception
    /// that a thread ended with.
    void wait(const TreeWalk::Tick& tick) {
        std::unique_lock guard(lock_);
        const auto ended = [this] { return running_ == 0; };
        for (auto interval = firstTick; !ended_.wait_for(guard, interval, ended);
             interval = std::min(tickInterval, 2 * interval)) {
            guard.unlock();
            tick();
            guard.lock();
        }
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    void work(WalkWorker& worker) {
        std::exception_ptr failure;
        try {
            worker.run();
        } catch (...) {
            failure = std::current_exception();
            queue_.stop();
        }
        const std::lock_guard guard(lock_);
        if (failure && !failure_) failure_ = failure;
        if (--running_ == 0) ended_.notify_all();
    }

    WalkQueue& queue_;
    std::vector<std::thread> threads_;
    std::mutex lock_;
    std::condition_variable ended_;
    std::size_t running_ = 0;
    std::exception_ptr failure_;
};

/// Starts the workers of a walk as its pace asks for them.
class PacedWorkers {
public:
    PacedWorkers(const std::vector<std::unique_ptr<WalkWorker>>& workers,
                 const WalkOptions& options, WalkQueue& queue, WalkThreads& threads)
        : workers_(workers),
          queue_(queue),
          threads_(threads),
          processorUse_(options.processorUse ? options.processorUse : velto::processorUse),
          pace_(options.firstThreads == 0 ? workers.size() : options.firstThreads, workers.size()),
          asked_(std::chrono::steady_clock::now()),
          spent_(processorUse_()) {
        allow(pace_.threads());
    }

    void adapt() {
        if (pace_.isFixed()) return;
        const auto now = std::chrono::steady_clock::now();
        const ProcessorUse spent = processorUse_();
        allow(pace_.next(std::chrono::duration<double>(now - asked_).count(),
                         {spent.used - spent_.used, spent.delayed - spent_.delayed}));
        asked_ = now;
        spent_ = spent;
    }

private:
    void allow(std::size_t count) {
        queue_.allow(count);
        for (; started_ < std::min(count, workers_.size()); ++started_)
            threads_.start(*workers_[started_]);
    }

    const std::vector<std::unique_ptr<WalkWorker>>& workers_;
    WalkQueue& queue_;
    WalkThreads& threads_;
    const std::function<ProcessorUse()> processorUse_;
    WalkPace pace_;
    std::chrono::steady_clock::time_point asked_;
    ProcessorUse spent_;
    std::size_t started_ = 0;
};

std::vector<FolderReference> rootFolders(const std::vector<WalkRoot>& roots,
                                         const PlaceTable* places) {
    std::vector<FolderReference> folders;
    folders.reserve(roots.size());
    for (const WalkRoot& root : roots) {
        const Place* place = places == nullptr ? nullptr : places->find(root.path);
        folders.push_back(FolderReference::root(root.path, folders.size(), root.mark, place));
    }
    return folders;
}

}  // namespace

TreeWalk::Result TreeWalk::run(const std::vector<WalkRoot>& roots,
                               std::span<TreeVisitor* const> visitors, const WalkOptions& options,
                               const CancellationFlag& cancelled, const Tick& tick) const {
    Result result;
    result.rootErrors.assign(roots.size(), 0);
    WalkQueue queue(options.maxOpenFolders);
    queue.addRoots(rootFolders(roots, options.places));
    const WalkSetting setting{reader_, roots, options, cancelled, queue, result.rootErrors};
    std::vector<std::unique_ptr<WalkWorker>> workers;
    for (TreeVisitor* visitor : visitors) {
        workers.push_back(std::make_unique<WalkWorker>(setting, *visitor));
    }
    {
        WalkThreads threads(queue);
        PacedWorkers paced(workers, options, queue, threads);
        threads.wait([&] {
            paced.adapt();
            if (tick) tick();
        });
    }
    for (const auto& worker : workers)
        result.unreadable += worker->unreadable();
    result.cancelled = cancelled.isCancelled();
    return result;
}

}  // namespace velto
