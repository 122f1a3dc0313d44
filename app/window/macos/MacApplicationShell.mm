#include "app/window/macos/MacApplicationShell.h"

#include "app/window/macos/appearance.h"
#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

NSAlert* alertFor(const Confirmation& question) {
    NSAlert* alert = [[NSAlert alloc] init];
    alert.messageText = nsString(question.title);
    alert.informativeText = nsString(question.body);
    [alert addButtonWithTitle:nsString(question.accept)];  // the first one answers to Return
    NSButton* decline = [alert addButtonWithTitle:nsString(question.decline)];
    // Escape works by itself only on a button titled "Cancel" in the system's language.
    decline.keyEquivalent = @"\033";
    return alert;
}

}  // namespace

void MacApplicationShell::activate() { [NSApp activateIgnoringOtherApps:NO]; }

Appearance MacApplicationShell::appearance() const {
    NSWindow* window = window_;
    NSApplication* application = NSApp;
    return window::appearanceOf(window != nil ? window.effectiveAppearance
                                              : application.effectiveAppearance);
}

void MacApplicationShell::setAppearance(Appearance appearance) {
    window_.appearance = window::namedAppearance(appearance);
}

void MacApplicationShell::confirm(const Confirmation& question, std::function<void(bool)> answer) {
    NSAlert* alert = alertFor(question);
    NSWindow* window = window_;
    if (window == nil || !window.isVisible || window.attachedSheet != nil) {
        answer([alert runModal] == NSAlertFirstButtonReturn);
        return;
    }
    [alert beginSheetModalForWindow:window
                  completionHandler:^(NSModalResponse response) {
                    answer(response == NSAlertFirstButtonReturn);
                  }];
}

}  // namespace velto
