#pragma once

#include <functional>

namespace velto {

enum class QualityOfService { userInitiated, utility };

/// The main loop and the global queue. But for `finish`, every function is safe from every thread;
/// work runs later, never inside the call. Work that throws is a program fault.
///
/// Which function takes a piece of work decides what the program's end does with it: what changes
/// the user's files is waited for, however long it takes. What only reads may hang for ever on
/// something that others have put in its way, and is left behind.
class Dispatcher {
public:
    using Work = std::function<void()>;

    virtual ~Dispatcher() = default;

    virtual bool isMainThread() const = 0;

    /// Runs `work` on the main thread, in the order of the calls.
    virtual void main(Work work) = 0;

    /// Runs `work` on the main thread once `seconds` have passed.
    virtual void mainAfter(double seconds, Work work) = 0;

    /// Runs `work`, which only reads, on a thread of the global queue; several may run at once.
    virtual void global(QualityOfService quality, Work work) = 0;

    /// Runs `work`, which changes files of the user, on a thread of the global queue as what the
    /// user has asked for. Work that only reads never holds it up.
    virtual void change(Work work) = 0;

    /// For the end of the program: on the main thread, once its loop is over. Drops the reading
    /// that has not begun, waits until all changes have been made, those too that a change asks
    /// for, and at most `seconds` for the reading. True when nothing runs any more. After false the
    /// process has to end at once and without any destructor: what is left behind uses everything.
    virtual bool finish(double seconds) = 0;
};

}  // namespace velto
