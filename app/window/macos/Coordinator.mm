#import "app/window/macos/Coordinator.h"

#include "app/window/ReloadPace.h"
#include "app/window/navigation.h"
#include "platform/macos/foundation_text.h"
#include "platform/values/text.h"

using velto::window::NavigationKind;
using velto::window::NavigationPolicy;
using velto::window::NavigationTarget;

namespace {

NavigationKind kindOf(WKNavigationAction* action) {
    switch (action.navigationType) {
        case WKNavigationTypeLinkActivated:
            return NavigationKind::linkFollowed;
        case WKNavigationTypeFormSubmitted:
        case WKNavigationTypeFormResubmitted:
            return NavigationKind::formSent;
        default:
            return NavigationKind::other;
    }
}

NavigationTarget targetOf(WKNavigationAction* action) {
    if (action.shouldPerformDownload) return NavigationTarget::download;
    if (action.targetFrame == nil) return NavigationTarget::newWindow;
    return action.targetFrame.isMainFrame ? NavigationTarget::mainFrame
                                          : NavigationTarget::frameInside;
}

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
    const std::string address = velto::utf8(navigationAction.request.URL.absoluteString);
    const auto policy = velto::window::policyFor({.kind = kindOf(navigationAction),
                                                  .target = targetOf(navigationAction),
                                                  .address = address});
    decisionHandler(policy == NavigationPolicy::allow ? WKNavigationActionPolicyAllow
                                                      : WKNavigationActionPolicyCancel);
    if (policy == NavigationPolicy::openInBrowser) _platform->workspace->openURL(address);
    if (policy == NavigationPolicy::refuse) [self logRefusal:address];
}

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse*)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy))decisionHandler {
    const std::string address = velto::utf8(navigationResponse.response.URL.absoluteString);
    const std::string type = velto::utf8(navigationResponse.response.MIMEType);
    const bool allowed = velto::window::mayBeShown(
        {.address = address, .type = type, .isMainFrame = navigationResponse.isForMainFrame});
    decisionHandler(allowed ? WKNavigationResponsePolicyAllow : WKNavigationResponsePolicyCancel);
    if (!allowed) [self logRefusal:address];
}

- (void)logRefusal:(const std::string&)address {
    _platform->log->line(velto::window::refusalLine(address));
}

// Nobody who asks for a name and a password is the page's business.
- (void)webView:(WKWebView*)webView
    didReceiveAuthenticationChallenge:(NSURLAuthenticationChallenge*)challenge
                    completionHandler:(void (^)(NSURLSessionAuthChallengeDisposition disposition,
                                                NSURLCredential* credential))completionHandler {
    completionHandler(NSURLSessionAuthChallengeCancelAuthenticationChallenge, nil);
}

// What the page could ask of a browser beyond this (dialogs of scripts, for one) the system leaves
// out when no method answers for it.

- (WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures {
    return nil;
}

- (void)webView:(WKWebView*)webView
    runOpenPanelWithParameters:(WKOpenPanelParameters*)parameters
              initiatedByFrame:(WKFrameInfo*)frame
             completionHandler:(void (^)(NSArray<NSURL*>* URLs))completionHandler {
    completionHandler(nil);
}

- (void)webView:(WKWebView*)webView
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:
                               (void (^)(WKPermissionDecision decision))decisionHandler {
    decisionHandler(WKPermissionDecisionDeny);
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
    // What was refused or handed to the browser ends its navigation like this; the page still
    // stands.
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
