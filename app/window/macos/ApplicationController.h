#pragma once

#import <AppKit/AppKit.h>

#include "app/VeltoApp.h"
#include "app/window/macos/MacApplicationShell.h"

/// Carries the events of the application and of its window to the portable objects. Its runtime
/// name is long because such names are shared with every framework of the system.
__attribute__((objc_runtime_name("VeltoApplicationController")))
@interface ApplicationController : NSObject<NSApplicationDelegate, NSWindowDelegate>

/// All three outlive the controller.
- (instancetype)initWithApp:(velto::VeltoApp&)app
                   platform:(velto::Platform&)platform
                      shell:(velto::MacApplicationShell&)shell;

@end
