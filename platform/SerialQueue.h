#pragma once

#include <functional>
#include <memory>
#include <string>

namespace velto {

/// Work that runs in the order of the calls, never two pieces at once, away from the main thread.
/// Destroying a queue drops what has not begun, stops its timers and waits for what runs; its own
/// work never destroys it. Functions are safe from every thread. Work that throws is a program
/// fault.
class SerialQueue {
public:
    using Work = std::function<void()>;

    /// A repeating timer. Destroying it stops it: on its own queue no firing comes after that,
    /// elsewhere at most the one that runs already. It may outlive its queue.
    class Timer {
    public:
        virtual ~Timer() = default;
    };

    virtual ~SerialQueue() = default;

    virtual void async(Work work) = 0;

    /// Runs `work` on the queue after `first` seconds and then every `period` seconds, as exactly
    /// as the system can. Firings that were missed, while the machine slept or the queue was busy,
    /// become one.
    virtual std::unique_ptr<Timer> repeat(double first, double period, Work work) = 0;
};

/// A queue of this machine, under a name for those who look at the program's threads.
std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label);

}  // namespace velto
