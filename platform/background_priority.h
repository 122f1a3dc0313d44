#pragma once

#include <atomic>
#include <functional>
#include <memory>

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

/// True while nobody looks at what is being done. Set by one thread, followed by others.
using Unwatched = std::shared_ptr<const std::atomic<bool>>;

/// Runs `work` on a thread of its own that lets others go first, and so do the threads that it
/// starts by means of TreeWalk and
/// forEachInParallel. Returns when it has ended; rethrows what it throws. As long as it is
/// unwatched these threads run in the background; null: it is watched to the end. When somebody
/// looks again they get the disk back at once, but the processor only where the system lets a
/// thread rise again (a Mac, or a user with that right): beside busy ones the rest is slow.
void runLettingOthersGoFirst(const std::function<void()>& work, const Unwatched& unwatched = {});

/// The calling thread does what its work's `Unwatched` says by now. For once in a folder or so.
void followPriority();

/// The calling thread to the background, or back from there.
void setThreadInBackground(bool isInBackground);

// The part of a priority that a thread does not pass on by itself; nothing where it does.
unsigned threadPriority();
void takeThreadPriority(unsigned value);

/// What a thread passes on to one that it starts: not every system does it by itself.
class PassedPriority {
public:
    PassedPriority();  // the calling thread's
    void take() const;

    /// The calling thread follows this from now on.
    static void follow(const Unwatched& unwatched);

private:
    unsigned value_ = 0;
    Unwatched unwatched_;
};

}  // namespace velto
