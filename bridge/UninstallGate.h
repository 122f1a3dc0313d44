#pragma once

#include <atomic>
#include <memory>
#include <utility>

namespace velto {

/// Lets one uninstall in at a time. There is one gate for the process: an uninstall goes on when
/// its window is closed, and a window opened meanwhile must not start another beside it.
class UninstallGate {
    using State = std::shared_ptr<std::atomic<bool>>;

public:
    /// The stay of one uninstall; over with the object at the latest, however the work ends. One
    /// thread at a time. May outlive the gate.
    class Pass {
    public:
        explicit Pass(State isTaken) : isTaken_(std::move(isTaken)) {}
        ~Pass() { end(); }
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;

        /// A second call does nothing.
        void end() {
            if (const State state = std::exchange(isTaken_, nullptr)) *state = false;
        }

    private:
        State isTaken_;
    };

    /// Null while another uninstall is inside. Safe from every thread.
    std::shared_ptr<Pass> enter() {
        return isTaken_->exchange(true) ? nullptr : std::make_shared<Pass>(isTaken_);
    }

    /// True while an uninstall is inside. Safe from every thread.
    bool isTaken() const { return *isTaken_; }

private:
    State isTaken_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace velto
