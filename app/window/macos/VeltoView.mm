#import "app/window/macos/VeltoView.h"

#import <WebKit/WebKit.h>

#import "app/window/macos/BundleFinder.h"
#import "app/window/macos/Coordinator.h"
#import "app/window/macos/VeltoWebView.h"

#include "app/window/macos/MacWebView.h"
#include "app/window/macos/appearance.h"

@implementation VeltoView {
    VeltoWebView* _webView;
    Coordinator* _coordinator;  // kept here: the web view holds its delegate weakly
    std::shared_ptr<velto::MacWebView> _page;
}

- (instancetype)initWithApp:(velto::VeltoApp&)app platform:(velto::Platform&)platform {
    if ((self = [super initWithFrame:NSZeroRect])) {
        [self makeWebView];
        _coordinator = [[Coordinator alloc] initWithApp:app platform:platform];
        _webView.navigationDelegate = _coordinator;
        _page = std::make_shared<velto::MacWebView>(_webView);
        // Before loading, so that the page's own scripts find the state and the channel.
        app.windowOpened(_page);
        [self load:[BundleFinder resourceBundle:platform]];
    }
    return self;
}

- (void)makeWebView {
    // What the page stores for itself (its theme, for one) stays in the default store, which the
    // system keeps below Library/WebKit: the API offers no way to move it to the data folder.
    auto* configuration = [[WKWebViewConfiguration alloc] init];
    configuration.preferences.tabFocusesLinks = YES;  // the Tab key reaches every control
    _webView = [[VeltoWebView alloc] initWithFrame:NSZeroRect configuration:configuration];
    // Transparent until the page has loaded, not hidden: a hidden page is not laid out.
    _webView.alphaValue = 0;
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

- (void)load:(NSBundle*)bundle {
    NSURL* page = [bundle URLForResource:@"index" withExtension:@"html"];
    NSURL* resources = bundle.resourceURL;
    if (page == nil || resources == nil) velto::fatal("unable to find the page in its bundle");
    [_webView loadFileURL:page allowingReadAccessToURL:resources];
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
    [_webView stopLoading];
    [_webView removeFromSuperview];
    _page.reset();
    _webView = nil;
}

@end
