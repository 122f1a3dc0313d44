#pragma once

#include <atomic>
#include <memory>

namespace velto {

/// A flag that the owner of some work sets to end it early; copies share it. Safe from every
/// thread.
class CancellationFlag {
public:
    void cancel() { state_->store(true, std::memory_order_relaxed); }
    bool isCancelled() const { return state_->load(std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> state_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace velto
