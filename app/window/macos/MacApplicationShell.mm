#include "app/window/macos/MacApplicationShell.h"

#include "app/window/macos/appearance.h"
#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

// Beside the window's frame, which the system keeps; no setting of the user's.
constexpr const char* appearanceKey = "VeltoWindowAppearance";

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

void MacApplicationShell::setWindow(NSWindow* window) {
    window_ = window;
    const auto kept = defaults_.value(appearanceKey);
    for (const Appearance known : {Appearance::light, Appearance::dark}) {
        if (kept == DefaultsValue(appearanceName(known))) {
            window.appearance = window::namedAppearance(known);
        }
    }
}

void MacApplicationShell::activate() { [NSApp activateIgnoringOtherApps:NO]; }

Appearance MacApplicationShell::appearance() const {
    NSWindow* window = window_;
    NSApplication* application = NSApp;
    return window::appearanceOf(window != nil ? window.effectiveAppearance
                                              : application.effectiveAppearance);
}

void MacApplicationShell::setAppearance(Appearance appearance) {
    window_.appearance = window::namedAppearance(appearance);
    defaults_.setValue(appearanceKey, appearanceName(appearance));
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
