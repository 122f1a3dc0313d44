#include "platform/macos/MacDispatcher.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstdint>

namespace velto {
namespace {

/// What is handed to a queue. The block owns the work and runs it inside a pool of its own: the
/// global queue's threads empty theirs only now and then.
dispatch_block_t block(Dispatcher::Work work) {
    return ^{
      @autoreleasepool {
          work();
      }
    };
}

}  // namespace

bool MacDispatcher::isMainThread() const { return NSThread.isMainThread; }

void MacDispatcher::main(Work work) {
    dispatch_async(dispatch_get_main_queue(), block(std::move(work)));
}

void MacDispatcher::mainAfter(double seconds, Work work) {
    const auto delay = static_cast<std::int64_t>(std::max(seconds, 0.0) * double{NSEC_PER_SEC});
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, delay), dispatch_get_main_queue(),
                   block(std::move(work)));
}

void MacDispatcher::global(QualityOfService quality, Work work) {
    const auto serviceClass =
        quality == QualityOfService::userInitiated ? QOS_CLASS_USER_INITIATED : QOS_CLASS_UTILITY;
    dispatch_async(dispatch_get_global_queue(serviceClass, 0), block(std::move(work)));
}

}  // namespace velto
