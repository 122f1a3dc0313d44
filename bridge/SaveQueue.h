#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Dispatcher.h"

namespace velto {

/// Writes the bridge's own files off the main thread, one after another in the order in which they
/// were first asked for. Of a file that is asked for again before its turn only the latest text is
/// written. The program's end waits for all of them, as for every change.
///
/// A copy is the same queue. The dispatcher outlives the work.
class SaveQueue {
public:
    using Work = Dispatcher::Work;

    explicit SaveQueue(Dispatcher& dispatcher);

    /// Has `write` run on a thread of the global queue, unless another `write` for the same `file`
    /// (any name that the caller gives it) takes its place before that; it holds all that it needs
    /// by value. `then`, which may be empty, runs on the main thread once this or what has taken
    /// its place is written. Work that throws is a program fault. Safe from every thread.
    void put(const std::string& file, Work write, Work then = {}) const;

    /// Returns when everything that was put is written, by the calling thread as far as nobody has
    /// begun with it. For whoever reads one of the files, or takes them away. Safe from every
    /// thread; not from a `write`.
    void finish() const;

private:
    struct Line;

    std::shared_ptr<Line> line_;
};

}  // namespace velto
