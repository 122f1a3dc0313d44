#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "bridge/WorkProgress.h"
#include "cleaning/CloudFolder.h"
#include "cleaning/HistoryService.h"
#include "cleaning/VeltoTrashService.h"
#include "platform/Dispatcher.h"

namespace velto {

/// The services that hold what the user has put away. They allow one user at a time.
struct CleanupServices {
    VeltoTrashService& trash;
    HistoryService& history;
    CloudFolder& cloud;
    const WorkProgress::Work* shown = nullptr;  // the work in hand in the task bar; null: nowhere
};

/// One queue for all work on those services: one work item at a time touches them, in the order in
/// which the work was asked for. There is one for the process, so that a window that was closed and
/// one that is opened meanwhile never work on them at the same time. A copy is the same queue.
class CleanupQueue {
public:
    /// The dispatcher and the services outlive the work; the queue itself need not. `shown` shows
    /// that it works.
    CleanupQueue(Dispatcher& dispatcher, const CleanupServices& services,
                 std::optional<WorkProgress> shown = {});

    /// Runs `work` on the global queue, as a change, once all work asked for before has ended. Safe
    /// from every thread. Work that throws is a program fault.
    using Work = std::function<void(CleanupServices&)>;
    void run(Work work);

    /// True while work runs or waits. Safe from every thread.
    bool isBusy() const;

private:
    struct Line;

    Dispatcher& dispatcher_;
    std::optional<WorkProgress> shown_;
    std::shared_ptr<Line> line_;
};

}  // namespace velto
