#include "platform/background_priority.h"

#include <exception>
#include <thread>

namespace velto {
namespace {

struct Following {
    Unwatched unwatched;
    bool isInBackground = false;
};
thread_local Following following;

}  // namespace

PassedPriority::PassedPriority() : value_(threadPriority()), unwatched_(following.unwatched) {}

void PassedPriority::take() const {
    takeThreadPriority(value_);
    follow(unwatched_);
}

void PassedPriority::follow(const Unwatched& unwatched) {
    following.unwatched = unwatched;
    if (!unwatched) return;
    // Whatever it has inherited of the one that has started it.
    following.isInBackground = unwatched->load(std::memory_order_relaxed);
    setThreadInBackground(following.isInBackground);
}

void followPriority() {
    const std::atomic<bool>* const unwatched = following.unwatched.get();
    if (unwatched == nullptr) return;
    const bool isUnwatched = unwatched->load(std::memory_order_relaxed);
    if (isUnwatched == following.isInBackground) return;
    following.isInBackground = isUnwatched;
    setThreadInBackground(isUnwatched);
}

void runLettingOthersGoFirst(const std::function<void()>& work, const Unwatched& unwatched) {
    std::exception_ptr failure;
    // A thread of its own: a lowered priority is kept for life.
    std::thread thread([&] {
        letOthersGoFirst();
        PassedPriority::follow(unwatched);
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    });
    thread.join();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace velto
