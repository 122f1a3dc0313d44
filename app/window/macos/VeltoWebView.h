#pragma once

#import <WebKit/WebKit.h>

/// The web view that shows the page, without the developer entries in its context menu and without
/// taking drops.
@interface VeltoWebView : WKWebView
@end
