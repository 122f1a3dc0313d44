#pragma once

#include <memory>
#include <optional>

#include "platform/Clock.h"
#include "platform/Dispatcher.h"
#include "platform/TaskBar.h"

namespace velto {

/// What of the program's work the task bar shows: that something runs which takes more than a
/// moment, and how much of it is done where that is known. Several at once count as one: of which
/// the least is done, or nobody knows how much. There is one for the process, which outlives its
/// windows; a copy is the same one.
///
/// While nothing runs the task bar is told nothing, and at most four times a second else.
class WorkProgress {
    struct State;

public:
    /// One piece of work. Over with the object, however the work ends. Every function of it is safe
    /// from every thread, and may be called after the program's end has begun.
    class Work {
    public:
        Work(std::shared_ptr<State> state, std::optional<double> fraction);
        ~Work();
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

        /// `fraction`, from 0 to 1, of it is done; nothing: nobody knows how much.
        void report(std::optional<double> fraction) const;

    private:
        std::shared_ptr<State> state_;
        int number_;
    };

    /// Both outlive the work.
    WorkProgress(Dispatcher& dispatcher, const Clock& clock);

    /// Work begins of which that part is done, or of which nobody knows how much there is. Safe
    /// from every thread.
    std::shared_ptr<Work> begin(std::optional<double> fraction = {}) const;

    /// Where it is shown from now on; null shows it nowhere, and takes away what is shown. The task
    /// bar outlives its use. Main thread.
    void show(TaskBar* taskBar) const;

private:
    std::shared_ptr<State> state_;
};

}  // namespace velto
