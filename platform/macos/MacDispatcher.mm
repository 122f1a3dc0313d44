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

/// The same for work that somebody waits for: the system neither slows it down while the window is
/// out of sight nor, unless it may, puts the machine to sleep meanwhile.
dispatch_block_t activity(NSActivityOptions options, Dispatcher::Work work) {
    return block([options, work = std::move(work)]() mutable {
        NSProcessInfo* const process = NSProcessInfo.processInfo;
        const id<NSObject> token = [process beginActivityWithOptions:options reason:@"Velto"];
        work();
        work = nullptr;
        [process endActivity:token];
    });
}

std::int64_t nanoseconds(double seconds) {
    return static_cast<std::int64_t>(std::max(seconds, 0.0) * double{NSEC_PER_SEC});
}

}  // namespace

bool MacDispatcher::isMainThread() const { return NSThread.isMainThread; }

void MacDispatcher::main(Work work) {
    dispatch_async(dispatch_get_main_queue(), block(std::move(work)));
}

void MacDispatcher::mainAfter(double seconds, Work work) {
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds(seconds)),
                   dispatch_get_main_queue(), block(std::move(work)));
}

void MacDispatcher::global(QualityOfService quality, Work work) {
    const bool isAwaited = quality == QualityOfService::userInitiated;
    Work reading = [mayRead = mayRead_, work = std::move(work)]() mutable {
        if (*mayRead) work();
        work = nullptr;  // letting go may hang too: it counts as reading
    };
    dispatch_group_async(
        reading_,
        dispatch_get_global_queue(isAwaited ? QOS_CLASS_USER_INITIATED : QOS_CLASS_UTILITY, 0),
        isAwaited ? activity(NSActivityUserInitiatedAllowingIdleSystemSleep, std::move(reading))
                  : block(std::move(reading)));
}

void MacDispatcher::change(Work work) {
    dispatch_group_async(changing_, dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0),
                         activity(NSActivityUserInitiated, std::move(work)));
}

bool MacDispatcher::finish(double seconds) {
    *mayRead_ = false;
    const dispatch_time_t end = dispatch_time(DISPATCH_TIME_NOW, nanoseconds(seconds));
    dispatch_group_wait(changing_, DISPATCH_TIME_FOREVER);
    return dispatch_group_wait(reading_, end) == 0;
}

}  // namespace velto
