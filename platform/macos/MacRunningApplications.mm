#include "platform/macos/MacRunningApplications.h"

#import <AppKit/AppKit.h>

#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

RunningApplication describe(NSRunningApplication* application) {
    return {.process = application.processIdentifier,
            .bundleIdentifier = utf8(application.bundleIdentifier),
            .bundlePath = pathOf(application.bundleURL),
            .executable = pathOf(application.executableURL)};
}

class Control final : public ProcessControl {
public:
    explicit Control(NSRunningApplication* application) : application_(application) {}

    void terminate() override { [application_ terminate]; }
    void forceTerminate() override { [application_ forceTerminate]; }
    bool isTerminated() override { return application_.terminated; }

private:
    NSRunningApplication* application_;
};

}  // namespace

struct MacRunningApplications::Observers {
    NSMutableArray<id>* tokens = [NSMutableArray array];
};

MacRunningApplications::MacRunningApplications() = default;

MacRunningApplications::~MacRunningApplications() {
    if (!observers_) return;
    for (id token in observers_->tokens) {
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:token];
    }
}

std::vector<RunningApplication> MacRunningApplications::list() {
    @autoreleasepool {
        std::vector<RunningApplication> running;
        for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
            running.push_back(describe(application));
        }
        return running;
    }
}

std::unique_ptr<ProcessControl> MacRunningApplications::control(
    const RunningApplication& application) {
    @autoreleasepool {
        NSRunningApplication* found = [NSRunningApplication
            runningApplicationWithProcessIdentifier:static_cast<pid_t>(application.process)];
        // The number may be another application's by now.
        if (found == nil || pathOf(found.bundleURL) != application.bundlePath) return nullptr;
        return std::make_unique<Control>(found);
    }
}

void MacRunningApplications::observe(std::function<void(const RunningApplication&)> used) {
    observers_ = std::make_unique<Observers>();
    NSNotificationCenter* center = NSWorkspace.sharedWorkspace.notificationCenter;
    for (NSNotificationName name in @[
             NSWorkspaceDidLaunchApplicationNotification,
             NSWorkspaceDidActivateApplicationNotification
         ]) {
        id token = [center addObserverForName:name
                                       object:nil
                                        queue:NSOperationQueue.mainQueue
                                   usingBlock:^(NSNotification* notification) {
                                     NSRunningApplication* application =
                                         notification.userInfo[NSWorkspaceApplicationKey];
                                     if (application != nil) used(describe(application));
                                   }];
        [observers_->tokens addObject:token];
    }
}

}  // namespace velto
