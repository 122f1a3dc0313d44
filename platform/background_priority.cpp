#include "platform/background_priority.h"

#include <exception>
#include <thread>

namespace velto {

void runLettingOthersGoFirst(const std::function<void()>& work) {
    std::exception_ptr failure;
    // A thread of its own: a lowered priority is kept for life.
    std::thread thread([&] {
        letOthersGoFirst();
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
