#import "app/window/macos/ApplicationController.h"

#import "app/window/macos/VeltoViewHost.h"

#include <cstdlib>

#include "app/program_end.h"
#include "app/window/macos/main_menu.h"
#include "app/window/window_rules.h"

namespace {

NSString* const frameName = @"VeltoWindow";

NSWindow* makeWindow() {
    namespace rules = velto::window;
    constexpr auto style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                           NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable |
                           NSWindowStyleMaskFullSizeContentView;
    auto* window = [[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, rules::initialWidth, rules::initialHeight)
                  styleMask:style
                    backing:NSBackingStoreBuffered
                      defer:NO];
    window.title = @"Velto";         // hidden in the window, shown in menus and Mission Control
    window.releasedWhenClosed = NO;  // its owner is the controller
    window.restorable = NO;          // its frame is remembered by name instead
    window.tabbingMode = NSWindowTabbingModeDisallowed;
    window.minSize = NSMakeSize(rules::minimumWidth, rules::minimumHeight);
    [window center];
    [window setFrameUsingName:frameName];
    [window setFrameAutosaveName:frameName];
    return window;
}

}  // namespace

@implementation ApplicationController {
    velto::VeltoApp* _app;
    velto::Platform* _platform;
    velto::MacApplicationShell* _shell;
    NSWindow* _window;
    VeltoViewHost* _host;
}

- (instancetype)initWithApp:(velto::VeltoApp&)app
                   platform:(velto::Platform&)platform
                      shell:(velto::MacApplicationShell&)shell {
    if ((self = [super init])) {
        _app = &app;
        _platform = &platform;
        _shell = &shell;
    }
    return self;
}

// The application.

- (void)applicationWillFinishLaunching:(NSNotification*)notification {
    NSWindow.allowsAutomaticWindowTabbing = NO;
    [self installMenu];
    __weak ApplicationController* weakSelf = self;  // the language outlives the controller
    _app->language().observe([weakSelf] { [weakSelf installMenu]; });
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    _app->delegate().applicationDidFinishLaunching();
    [self openWindow];
}

- (void)applicationDidBecomeActive:(NSNotification*)notification {
    _app->delegate().applicationDidBecomeActive();
}

- (void)applicationDidResignActive:(NSNotification*)notification {
    _app->delegate().applicationDidResignActive();
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender {
    return _app->delegate().applicationShouldTerminateAfterLastWindowClosed();
}

// The system waits for the reply, and runs the loop meanwhile.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender {
    const bool mayEnd =
        _app->quit().request([sender] { [sender replyToApplicationShouldTerminate:YES]; });
    return mayEnd ? NSTerminateNow : NSTerminateLater;
}

// The process ends when this returns, from inside the system's own code: the window, which quitting
// leaves open, goes first, then the work.
- (void)applicationWillTerminate:(NSNotification*)notification {
    [_window close];
    _app->delegate().applicationWillTerminate();
    _app->setTaskBar(nullptr);
    velto::finishWork(*_platform, EXIT_SUCCESS);
}

// A click in the Dock, or a second start of the program.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)flag {
    if (_window != nil) return YES;  // the system brings it back, from the Dock too
    [self openWindow];
    return NO;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app {
    return YES;
}

// The menu.

- (void)installMenu {
    velto::window::installMainMenu(*_app, { self, @selector(performCommand:) });
}

- (void)performCommand:(NSMenuItem*)item {
    if (item.tag == velto::window::settingsTag) {
        return _app->perform(velto::VeltoApp::settingsCommand());
    }
    if (item.tag == velto::window::guideTag) {
        return _app->perform(velto::VeltoApp::guideCommand());
    }
    _app->perform(velto::VeltoApp::commands()[static_cast<std::size_t>(item.tag)]);
}

// The window.

- (void)openWindow {
    NSWindow* window = makeWindow();
    window.delegate = self;
    _window = window;
    _shell->setWindow(window);
    // Inside the window's own content view rather than in its place: the probe then finds the
    // window whole when it configures it.
    NSView* content = window.contentView;
    _host = [[VeltoViewHost alloc] initWithApp:*_app platform:*_platform];
    _host.frame = content.bounds;
    _host.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [content addSubview:_host];
}

// The window with which the program ends stays until what runs is done.
- (BOOL)windowShouldClose:(NSWindow*)sender {
    if (!_app->delegate().applicationShouldTerminateAfterLastWindowClosed()) return YES;
    __weak NSWindow* weakWindow = sender;
    return _app->quit().request([weakWindow] { [weakWindow close]; });
}

- (void)windowWillClose:(NSNotification*)notification {
    NSWindow* window = _window;
    if (window == nil || notification.object != window) return;
    [_host removeFromSuperview];  // the probe leaves the window and stops observing it
    [_host close];
    _host = nil;
    window.delegate = nil;
    _shell->setWindow(nil);
    _window = nil;
    // The window is still at work on its closing; it goes once that is done.
    dispatch_async(dispatch_get_main_queue(), ^{
      (void)window;
    });
}

@end
