#import "app/window/macos/Coordinator.h"

#include "app/window/ReloadPace.h"
#include "app/window/window_rules.h"
#include "platform/macos/foundation_text.h"
#include "platform/values/text.h"

using velto::window::NavigationKind;
using velto::window::NavigationPolicy;

namespace {

constexpr NSInteger interruptedByPolicy = 102;  // <WebKit/WebKitErrors.h>

}  // namespace

@implementation Coordinator {
    velto::VeltoApp* _app;
    velto::Platform* _platform;
    velto::window::ReloadPace _reloads;
}

- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform {
    if ((self = [super init])) {
        _app = &app;
        _platform = &platform;
    }
    return self;
}

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    const bool followed = navigationAction.navigationType == WKNavigationTypeLinkActivated;
    const auto kind = followed ? NavigationKind::linkFollowed : NavigationKind::other;
    if (velto::window::policyFor(kind) == NavigationPolicy::allow) {
        decisionHandler(WKNavigationActionPolicyAllow);
        return;
    }
    decisionHandler(WKNavigationActionPolicyCancel);
    _platform->workspace->openURL(velto::utf8(navigationAction.request.URL.absoluteString));
}

- (void)webView:(WKWebView*)webView didFinishNavigation:(WKNavigation*)navigation {
    webView.alphaValue = 1;  // until now the window has shown its background colour
    _app->pageLoaded();
}

- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)error {
    [self logFailure:error];
}

- (void)webView:(WKWebView*)webView
    didFailNavigation:(WKNavigation*)navigation
            withError:(NSError*)error {
    [self logFailure:error];
}

- (void)logFailure:(NSError*)error {
    // A link that was handed to the browser ends its navigation like this; the page still stands.
    if ([error.domain isEqualToString:@"WebKitErrorDomain"] && error.code == interruptedByPolicy) {
        return;
    }
    _platform->log->line("Velto ▶ no se pudo cargar la página: " +
                         velto::singleLine(velto::utf8(error.localizedDescription)));
}

// The page's process is not the program's: it may be ended for want of memory. A new one starts
// with the state that the bridge holds.
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView {
    _platform->log->line("Velto ▶ el proceso de la página terminó: se carga de nuevo");
    const double delay = _reloads.delay(_platform->clock->monotonic());
    __weak WKWebView* weakView = webView;  // it goes with its window
    _platform->dispatcher->mainAfter(delay, [weakView] { [weakView reload]; });
}

@end
