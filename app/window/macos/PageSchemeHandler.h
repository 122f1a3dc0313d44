#pragma once

#import <WebKit/WebKit.h>

#include <string>

#include "platform/FileManager.h"

/// Serves the page's addresses to a web view from the resource bundle. Its runtime name is long
/// because such names are shared with every framework of the system.
__attribute__((objc_runtime_name("VeltoPageSchemeHandler")))
@interface PageSchemeHandler : NSObject<WKURLSchemeHandler>

/// The file manager outlives the handler; `folder` is the bundle's folder, links resolved.
- (instancetype)initWithFiles:(const velto::FileManager&)files folder:(const std::string&)folder;

@end
