#include "bridge/WorkProgress.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <map>
#include <utility>

namespace velto {
namespace {

constexpr double patience = 1;  // seconds; what is over sooner is not worth a look at the task bar
constexpr double pause = 0.25;  // seconds between two updates
constexpr double leastWait =
    0.01;  // seconds; a clock that lags behind the timer is not asked in a loop
constexpr double hundredths = 100;

}  // namespace

/// All but the first three is the main thread's.
struct WorkProgress::State : std::enable_shared_from_this<State> {
    State(Dispatcher& theDispatcher, const Clock& theClock)
        : dispatcher(theDispatcher), clock(theClock) {}

    struct Piece {
        double began = 0;  // monotonic seconds
        std::optional<double> fraction;
    };
    using Shown = std::optional<double>;  // the fraction

    /// Later, on the main thread, when the program may be at its end.
    void later(std::function<void(State&)> change) {
        dispatcher.main([weak = weak_from_this(), change = std::move(change)] {
            if (const auto state = weak.lock()) {
                change(*state);
                state->update();
            }
        });
    }

    void update() {
        if (taskBar == nullptr) return;
        if (pieces.empty()) return hide();
        const double now = clock.monotonic();
        const Shown wanted = all();
        if (shown && *shown == wanted) return;
        const double due = shown ? lastUpdate + pause : oldest() + patience;
        if (now < due) return lookAgain(due - now);
        taskBar->showProgress(wanted);
        shown = wanted;
        lastUpdate = now;
    }

    void hide() {
        if (std::exchange(shown, std::nullopt)) taskBar->hideProgress();
    }

    void lookAgain(double seconds) {
        if (std::exchange(isWaiting, true)) return;
        dispatcher.mainAfter(std::max(seconds, leastWait), [weak = weak_from_this()] {
            const auto state = weak.lock();
            if (!state) return;
            state->isWaiting = false;
            state->update();
        });
    }

    double oldest() const {
        double first = pieces.begin()->second.began;
        for (const auto& [number, piece] : pieces)
            first = std::min(first, piece.began);
        return first;
    }

    /// The least that is done, in whole hundredths; nothing when it is not known of all.
    Shown all() const {
        double least = 1;
        for (const auto& [number, piece] : pieces) {
            if (!piece.fraction) return std::nullopt;
            least = std::min(least, *piece.fraction);
        }
        return std::floor(std::clamp(least, 0.0, 1.0) * hundredths) / hundredths;
    }

    Dispatcher& dispatcher;
    const Clock& clock;
    std::atomic<int> lastNumber = 0;
    TaskBar* taskBar = nullptr;
    std::map<int, Piece> pieces;
    std::optional<Shown> shown;  // nothing while nothing is
    double lastUpdate = 0;       // monotonic seconds
    bool isWaiting = false;      // to look again
};

WorkProgress::Work::Work(std::shared_ptr<State> state, std::optional<double> fraction)
    : state_(std::move(state)), number_(++state_->lastNumber) {
    const double began = state_->clock.monotonic();
    state_->later([number = number_, began, fraction](State& all) {
        all.pieces[number] = {.began = began, .fraction = fraction};
    });
}

WorkProgress::Work::~Work() {
    state_->later([number = number_](State& all) { all.pieces.erase(number); });
}

void WorkProgress::Work::report(std::optional<double> fraction) const {
    state_->later([number = number_, fraction](State& all) {
        const auto piece = all.pieces.find(number);
        if (piece != all.pieces.end()) piece->second.fraction = fraction;
    });
}

WorkProgress::WorkProgress(Dispatcher& dispatcher, const Clock& clock)
    : state_(std::make_shared<State>(dispatcher, clock)) {}

std::shared_ptr<WorkProgress::Work> WorkProgress::begin(std::optional<double> fraction) const {
    return std::make_shared<Work>(state_, fraction);
}

void WorkProgress::show(TaskBar* taskBar) const {
    if (state_->taskBar != nullptr) state_->hide();
    state_->taskBar = taskBar;
    state_->update();
}

}  // namespace velto
