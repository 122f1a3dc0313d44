#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFUUID.h>
#include <dispatch/dispatch.h>
#include <sys/types.h>

typedef UInt32 FSEventStreamCreateFlags;
typedef UInt32 FSEventStreamEventFlags;
typedef UInt64 FSEventStreamEventId;

enum {
    kFSEventStreamCreateFlagNone = 0x00000000,
    kFSEventStreamCreateFlagUseCFTypes = 0x00000001,
    kFSEventStreamCreateFlagNoDefer = 0x00000002,
    kFSEventStreamCreateFlagWatchRoot = 0x00000004,
};

enum {
    kFSEventStreamEventFlagNone = 0x00000000,
    kFSEventStreamEventFlagMustScanSubDirs = 0x00000001,
    kFSEventStreamEventFlagUserDropped = 0x00000002,
    kFSEventStreamEventFlagKernelDropped = 0x00000004,
    kFSEventStreamEventFlagEventIdsWrapped = 0x00000008,
    kFSEventStreamEventFlagHistoryDone = 0x00000010,
    kFSEventStreamEventFlagRootChanged = 0x00000020,
    kFSEventStreamEventFlagMount = 0x00000040,
    kFSEventStreamEventFlagUnmount = 0x00000080,
};

typedef struct __FSEventStream *FSEventStreamRef;
typedef const struct __FSEventStream *ConstFSEventStreamRef;

typedef struct FSEventStreamContext {
    CFIndex version;
    void *info;
    CFAllocatorRetainCallBack retain;
    CFAllocatorReleaseCallBack release;
    CFAllocatorCopyDescriptionCallBack copyDescription;
} FSEventStreamContext;

typedef void (*FSEventStreamCallback)(ConstFSEventStreamRef streamRef, void *clientCallBackInfo,
                                      size_t numEvents, void *eventPaths,
                                      const FSEventStreamEventFlags *eventFlags,
                                      const FSEventStreamEventId *eventIds);

__BEGIN_DECLS

FSEventStreamRef FSEventStreamCreate(CFAllocatorRef allocator, FSEventStreamCallback callback,
                                     FSEventStreamContext *context, CFArrayRef pathsToWatch,
                                     FSEventStreamEventId sinceWhen, CFTimeInterval latency,
                                     FSEventStreamCreateFlags flags);
void FSEventStreamSetDispatchQueue(FSEventStreamRef streamRef, dispatch_queue_t q);
Boolean FSEventStreamStart(FSEventStreamRef streamRef);
void FSEventStreamFlushSync(FSEventStreamRef streamRef);
void FSEventStreamStop(FSEventStreamRef streamRef);
void FSEventStreamInvalidate(FSEventStreamRef streamRef);
void FSEventStreamRelease(FSEventStreamRef streamRef);

FSEventStreamEventId FSEventsGetCurrentEventId(void);
CFUUIDRef FSEventsCopyUUIDForDevice(dev_t dev);

__END_DECLS
