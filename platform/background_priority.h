#pragma once

#include <functional>

namespace velto {

/// Gives processor and disk to everybody else first, for the rest of this process and for the
/// threads that it starts from now on. What the system refuses is left as it is.
void runInBackground();

/// The same for the calling thread alone, for the rest of its life.
void runThreadInBackground();

/// Lets the threads of the window, and what else somebody waits for, go before the calling thread,
/// for the rest of its life. It still moves on beside busy ones, unlike what runs in the
/// background, and on an idle machine it is as fast as any.
void letOthersGoFirst();

/// Runs `work` on a thread of its own that lets others go first, and so do the threads that it
/// starts by means of TreeWalk and
/// forEachInParallel. Returns when it has ended; rethrows what it throws.
void runLettingOthersGoFirst(const std::function<void()>& work);

/// What a thread passes on to one that it starts: not every system does it by itself.
class PassedPriority {
public:
    PassedPriority();  // the calling thread's
    void take() const;

private:
    unsigned value_ = 0;
};

}  // namespace velto
