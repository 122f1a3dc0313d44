#pragma once

#import <dispatch/dispatch.h>

#include <atomic>
#include <memory>

#include "platform/Dispatcher.h"

namespace velto {

/// Grand Central Dispatch. Work for the main thread runs while the application's loop does. One
/// group counts what reads, another what changes files.
class MacDispatcher final : public Dispatcher {
public:
    bool isMainThread() const override;
    void main(Work work) override;
    void mainAfter(double seconds, Work work) override;
    void global(QualityOfService quality, Work work) override;
    void change(Work work) override;
    bool finish(double seconds) override;

private:
    dispatch_group_t reading_ = dispatch_group_create();
    dispatch_group_t changing_ = dispatch_group_create();
    // Shared with the reading that waits: what has not begun when it turns false never does.
    std::shared_ptr<std::atomic<bool>> mayRead_ = std::make_shared<std::atomic<bool>>(true);
};

}  // namespace velto
