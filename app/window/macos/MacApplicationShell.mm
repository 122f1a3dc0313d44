#include "app/window/macos/MacApplicationShell.h"

#include "app/window/kept_appearance.h"
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

void MacApplicationShell::setWindow(NSWindow* window) {
    window_ = window;
    if (const auto kept = window::keptAppearance(defaults_)) {
        window.appearance = window::namedAppearance(*kept);
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
    window::keepAppearance(defaults_, appearance);
}

void MacApplicationShell::followSystemAppearance() {
    window_.appearance = nil;
    window::keepAppearance(defaults_, std::nullopt);
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

// The panel's own Cancel is in the system's language.
void MacApplicationShell::chooseFolder(const FolderQuestion& question, FolderAnswer answer) {
    NSOpenPanel* panel = [NSOpenPanel openPanel];
    panel.canChooseFiles = NO;
    panel.canChooseDirectories = YES;
    panel.canCreateDirectories = YES;
    panel.allowsMultipleSelection = NO;
    panel.message = nsString(question.title);
    panel.prompt = nsString(question.accept);
    panel.directoryURL = [NSURL fileURLWithPath:nsString(question.startAt) isDirectory:YES];
    const auto finish = [panel, answer = std::move(answer)](NSModalResponse response) {
        NSURL* folder = response == NSModalResponseOK ? panel.URL : nil;
        answer(folder.fileURL ? std::optional<std::string>(folder.fileSystemRepresentation)
                              : std::nullopt);
    };
    NSWindow* window = window_;
    if (window == nil || !window.isVisible || window.attachedSheet != nil) {
        finish([panel runModal]);
        return;
    }
    [panel beginSheetModalForWindow:window
                  completionHandler:^(NSModalResponse response) {
                    finish(response);
                  }];
}

}  // namespace velto
