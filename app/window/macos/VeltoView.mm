#import "app/window/macos/VeltoView.h"

#import <WebKit/WebKit.h>

#import "app/window/macos/BundleFinder.h"
#import "app/window/macos/Coordinator.h"
#import "app/window/macos/PageSchemeHandler.h"
#import "app/window/macos/VeltoWebView.h"

#include "app/window/macos/MacWebView.h"
#include "app/window/macos/appearance.h"
#include "app/window/navigation.h"
#include "app/window/zoom.h"
#include "platform/macos/foundation_text.h"

@implementation VeltoView {
    VeltoWebView* _webView;
    Coordinator* _coordinator;  // kept here: the web view holds its delegate weakly
    std::shared_ptr<velto::MacWebView> _page;
    velto::UserDefaults* _defaults;
}

- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _defaults = platform.defaults.get();
        [self makeWebView:[self pageHandler:platform]];
        _coordinator = [[Coordinator alloc] initWithApp:app platform:platform];
        _webView.navigationDelegate = _coordinator;
        _webView.UIDelegate = _coordinator;
        _page = std::make_shared<velto::MacWebView>(_webView, *platform.log);
        // Before loading, so that the page's own scripts find the state and the channel.
        app.windowOpened(_page);
        [self showPageAt:velto::window::keptZoom(*_defaults)];
        [self load];
    }
    return self;
}

/// Serves the page from its bundle.
- (PageSchemeHandler*)pageHandler:(const velto::Platform&)platform {
    NSBundle* bundle = [BundleFinder resourceBundle:platform];
    NSURL* page = [bundle URLForResource:@"index" withExtension:@"html"];
    if (page == nil) velto::fatal("unable to find the page in its bundle");
    const std::string folder =
        platform.files->resolved(velto::pathOf(page.URLByDeletingLastPathComponent));
    return [[PageSchemeHandler alloc] initWithFiles:*platform.files folder:folder];
}

- (void)makeWebView:(PageSchemeHandler*)pageHandler {
    // What the page stores for itself (its theme, for one) stays in the default store, which the
    // system keeps below Library/WebKit: the API offers no way to move it to the data folder.
    auto* configuration = [[WKWebViewConfiguration alloc] init];
    configuration.preferences.tabFocusesLinks = YES;  // the Tab key reaches every control
    configuration.preferences.javaScriptCanOpenWindowsAutomatically = NO;
    [configuration setURLSchemeHandler:pageHandler
                          forURLScheme:velto::nsString(velto::window::pageScheme)];
    [self addBlockingRulesTo:configuration.userContentController];
    _webView = [[VeltoWebView alloc] initWithFrame:NSZeroRect configuration:configuration];
    // Transparent until the page has loaded, not hidden: a hidden page is not laid out.
    _webView.alphaValue = 0;
    _webView.allowsLinkPreview = NO;
    [_webView unregisterDraggedTypes];
    _webView.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:_webView];
    [NSLayoutConstraint activateConstraints:@[
        [_webView.topAnchor constraintEqualToAnchor:self.topAnchor],
        [_webView.bottomAnchor constraintEqualToAnchor:self.bottomAnchor],
        [_webView.leadingAnchor constraintEqualToAnchor:self.leadingAnchor],
        [_webView.trailingAnchor constraintEqualToAnchor:self.trailingAnchor],
    ]];
    [self paintUnderPage];
}

/// Behind the page's own policy and that of navigations. The page need not wait for it: it asks for
/// nothing that would be blocked.
- (void)addBlockingRulesTo:(WKUserContentController*)content {
    [WKContentRuleListStore.defaultStore
        compileContentRuleListForIdentifier:@"velto-network"
                     encodedContentRuleList:velto::nsString(velto::window::blockingRules)
                          completionHandler:^(WKContentRuleList* list, NSError*) {
                            if (list != nil) [content addContentRuleList:list];
                          }];
}

// Keys go to the page from the start, without a click into it.
- (void)viewDidMoveToWindow {
    [super viewDidMoveToWindow];
    if (_webView != nil) [self.window makeFirstResponder:_webView];
}

- (void)load {
    NSURL* page = [NSURL URLWithString:velto::nsString(velto::window::pageAddress)];
    [_webView loadRequest:[NSURLRequest requestWithURL:page]];
}

// The menu's entries come here through the view that has the focus.

- (void)enlargePage:(id)sender {
    [self keepPageAt:velto::window::zoomedIn(_webView.pageZoom)];
}

- (void)reducePage:(id)sender {
    [self keepPageAt:velto::window::zoomedOut(_webView.pageZoom)];
}

- (void)showPageAsItIs:(id)sender {
    [self keepPageAt:velto::window::ownSize];
}

- (void)keepPageAt:(double)zoom {
    [self showPageAt:zoom];
    velto::window::keepZoom(*_defaults, zoom);
}

- (void)showPageAt:(double)zoom {
    _webView.pageZoom = zoom;
    // The window's buttons lie over the left corner, where the page leaves the strip to them.
    const std::string room = velto::window::roomScript(0, zoom);
    _page->evaluate(room);
    _page->addUserScript(room);  // for when it is loaded again; the last one holds
}

- (void)viewDidChangeEffectiveAppearance {
    [super viewDidChangeEffectiveAppearance];
    [self paintUnderPage];
}

- (void)paintUnderPage {
    _webView.underPageBackgroundColor =
        velto::window::backgroundColourFor(self.effectiveAppearance);
}

- (void)close {
    _webView.navigationDelegate = nil;
    _webView.UIDelegate = nil;
    [_webView stopLoading];
    [_webView removeFromSuperview];
    _page.reset();
    _webView = nil;
}

@end
