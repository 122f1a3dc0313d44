#import <Foundation/Foundation.h>

#include <atomic>
#include <cstdint>
#include <utility>

#include "platform/SerialQueue.h"

namespace velto {
namespace {

constexpr std::uint64_t noLeeway = 0;

std::uint64_t nanoseconds(double seconds) {
    return static_cast<std::uint64_t>(seconds * double{NSEC_PER_SEC});
}

class DispatchTimer final : public SerialQueue::Timer {
public:
    explicit DispatchTimer(dispatch_source_t source) : source_(source) {}
    ~DispatchTimer() override { dispatch_source_cancel(source_); }
    DispatchTimer(const DispatchTimer&) = delete;
    DispatchTimer& operator=(const DispatchTimer&) = delete;

private:
    dispatch_source_t source_;
};

/// Blocks hold this, so that the queue's end reaches those that have not begun.
struct Gate {
    std::atomic<bool> isOpen = true;
};

class DispatchQueue final : public SerialQueue {
public:
    explicit DispatchQueue(const std::string& label)
        : queue_(dispatch_queue_create(
              label.c_str(), dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL,
                                                                     QOS_CLASS_UTILITY, 0))) {}

    ~DispatchQueue() override {
        gate_->isOpen = false;
        const dispatch_block_t nothing = ^{
        };
        dispatch_sync(queue_, nothing);  // waits for what runs
    }
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    void async(Work work) override { dispatch_async(queue_, guarded(std::move(work))); }

    std::unique_ptr<Timer> repeat(double first, double period, Work work) override {
        dispatch_source_t source = dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0, queue_);
        dispatch_source_set_timer(
            source, dispatch_time(DISPATCH_TIME_NOW, static_cast<std::int64_t>(nanoseconds(first))),
            nanoseconds(period), noLeeway);
        dispatch_source_set_event_handler(source, guarded(std::move(work)));
        dispatch_resume(source);
        return std::make_unique<DispatchTimer>(source);
    }

private:
    dispatch_block_t guarded(Work work) const {
        const auto gate = gate_;
        return ^{
          @autoreleasepool {
              if (gate->isOpen) work();
          }
        };
    }

    dispatch_queue_t queue_;
    std::shared_ptr<Gate> gate_ = std::make_shared<Gate>();
};

}  // namespace

std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) {
    return std::make_unique<DispatchQueue>(label);
}

}  // namespace velto
