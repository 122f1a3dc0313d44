#import <Foundation/Foundation.h>

#include <CoreServices/CoreServices.h>
#include <dispatch/dispatch.h>
#include <sys/stat.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <span>

#include "platform/FolderChanges.h"
#include "platform/change_history.h"
#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

static_assert(change_flags::mustScanSubfolders == kFSEventStreamEventFlagMustScanSubDirs);
static_assert(change_flags::userDropped == kFSEventStreamEventFlagUserDropped);
static_assert(change_flags::kernelDropped == kFSEventStreamEventFlagKernelDropped);
static_assert(change_flags::identifiersWrapped == kFSEventStreamEventFlagEventIdsWrapped);
static_assert(change_flags::historyDone == kFSEventStreamEventFlagHistoryDone);
static_assert(change_flags::rootChanged == kFSEventStreamEventFlagRootChanged);
static_assert(change_flags::mount == kFSEventStreamEventFlagMount);
static_assert(change_flags::unmount == kFSEventStreamEventFlagUnmount);

constexpr std::chrono::milliseconds step{50};  // between two looks at the flag
constexpr int mostSteps = 200;                 // ten seconds: a walk takes no longer
constexpr CFTimeInterval atOnce = 0;           // the past has happened: nothing to gather

/// What the stream's queue and the asking thread share.
struct Listening {
    std::mutex lock;
    ChangeHistory history;
    dispatch_semaphore_t over = dispatch_semaphore_create(0);
};

void take(ConstFSEventStreamRef, void* information, size_t count, void* paths,
          const FSEventStreamEventFlags flags[], const FSEventStreamEventId[]) {
    Listening& listening = *static_cast<Listening*>(information);
    const std::span names(static_cast<const char**>(paths), count);
    const std::lock_guard guard(listening.lock);
    for (size_t index = 0; index < count; ++index)
        listening.history.take(names[index], flags[index]);
    if (listening.history.isOver()) dispatch_semaphore_signal(listening.over);
}

class MacFolderChanges final : public FolderChanges {
public:
    std::optional<ChangeMark> mark(const std::string& folder) override {
        struct stat found {};
        if (::stat(folder.c_str(), &found) != 0) return std::nullopt;
        // Another one when the volume's history was begun anew; none where it has none.
        const CFUUIDRef identifier = FSEventsCopyUUIDForDevice(found.st_dev);
        if (identifier == nullptr) return std::nullopt;
        const CFStringRef text = CFUUIDCreateString(kCFAllocatorDefault, identifier);
        CFRelease(identifier);
        ChangeMark mark{.volume = utf8((__bridge_transfer NSString*)text),
                        .event = FSEventsGetCurrentEventId()};
        return mark;
    }

    std::optional<std::vector<FolderChange>> since(const ChangeMark& mark,
                                                   const std::string& folder,
                                                   const CancellationFlag& cancelled) override {
        @autoreleasepool {
            Listening listening;
            FSEventStreamContext context{};
            context.info = &listening;
            NSArray* const folders = @[ nsString(folder) ];
            const FSEventStreamRef stream = FSEventStreamCreate(
                kCFAllocatorDefault, take, &context, (__bridge CFArrayRef)folders, mark.event,
                atOnce, kFSEventStreamCreateFlagNoDefer | kFSEventStreamCreateFlagWatchRoot);
            if (stream == nullptr) return std::nullopt;
            const dispatch_queue_t queue =
                dispatch_queue_create("app.velto.changes", DISPATCH_QUEUE_SERIAL);
            FSEventStreamSetDispatchQueue(stream, queue);
            if (FSEventStreamStart(stream)) {
                FSEventStreamFlushSync(stream);
                wait(listening, cancelled);
                FSEventStreamStop(stream);
            }
            FSEventStreamInvalidate(stream);
            // Whatever was on its way to `listening` has arrived.
            dispatch_sync(queue, ^{
                          });
            FSEventStreamRelease(stream);
            return listening.history.takeResult();
        }
    }

private:
    static void wait(Listening& listening, const CancellationFlag& cancelled) {
        const auto length = std::chrono::nanoseconds(step).count();
        for (int looks = 0; looks < mostSteps && !cancelled.isCancelled(); ++looks) {
            const auto until = dispatch_time(DISPATCH_TIME_NOW, length);
            if (dispatch_semaphore_wait(listening.over, until) == 0) return;
        }
    }
};

}  // namespace

std::unique_ptr<FolderChanges> makeFolderChanges() { return std::make_unique<MacFolderChanges>(); }

}  // namespace velto
