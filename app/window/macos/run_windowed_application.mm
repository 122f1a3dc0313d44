#import <AppKit/AppKit.h>

#import "app/window/macos/ApplicationController.h"

#include "app/VeltoApp.h"
#include "app/window/macos/DockTile.h"

namespace velto {

int runWindowedApplication(VeltoApp& app, Platform& platform, const AppCommand* asked) {
    @autoreleasepool {
        NSApplication* application = NSApplication.sharedApplication;
        // Outside a bundle a program has neither a menu bar nor a place in the Dock by itself.
        [application setActivationPolicy:NSApplicationActivationPolicyRegular];
        MacApplicationShell shell(*platform.defaults);
        app.setShell(shell);
        DockTile dock;
        app.setTaskBar(&dock);
        if (asked != nullptr) app.performWhenShown(*asked);
        // The application holds its delegate weakly; without the attribute the compiler could
        // release it right after the assignment.
        __attribute__((objc_precise_lifetime)) ApplicationController* controller =
            [[ApplicationController alloc] initWithApp:app platform:platform shell:shell];
        application.delegate = controller;
        [application run];  // quitting ends the process in here
    }
    return 0;
}

}  // namespace velto
