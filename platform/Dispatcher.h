#pragma once

#include <functional>

namespace velto {

enum class QualityOfService { userInitiated, utility };

/// The main loop and the global queue. Every function is safe from every thread; work runs later,
/// never inside the call. Work that throws is a program fault.
class Dispatcher {
public:
    using Work = std::function<void()>;

    virtual ~Dispatcher() = default;

    virtual bool isMainThread() const = 0;

    /// Runs `work` on the main thread, in the order of the calls.
    virtual void main(Work work) = 0;

    /// Runs `work` on the main thread once `seconds` have passed.
    virtual void mainAfter(double seconds, Work work) = 0;

    /// Runs `work` on a thread of the global queue; several may run at once.
    virtual void global(QualityOfService quality, Work work) = 0;
};

}  // namespace velto
