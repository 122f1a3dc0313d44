#pragma once

#import <WebKit/WebKit.h>

#include "app/VeltoApp.h"

/// Decides where navigations of the page go, refuses what else it could ask of a browser, and tells
/// the application when the page has loaded.
/// Its runtime name is long because such names are shared with every framework of the system.
__attribute__((objc_runtime_name("VeltoViewCoordinator")))
@interface Coordinator : NSObject<WKNavigationDelegate, WKUIDelegate>

/// Both outlive the coordinator.
- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform;

@end
