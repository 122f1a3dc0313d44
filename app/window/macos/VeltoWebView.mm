#import "app/window/macos/VeltoWebView.h"

#include "app/window/window_rules.h"
#include "platform/macos/foundation_text.h"

namespace {

void removeUnwantedItems(NSMenu* menu) {
    for (NSMenuItem* item in menu.itemArray) {  // a copy: items may go meanwhile
        if (velto::window::isDeveloperMenuItem(velto::utf8(item.title)) ||
            velto::window::isBrowsingMenuItem(velto::utf8(item.identifier))) {
            [menu removeItem:item];
        }
    }
}

}  // namespace

@implementation VeltoWebView

// The web engine builds its menu late and shows it by itself, so most menus pass only through
// `willOpenMenu:`.
- (NSMenu*)menuForEvent:(NSEvent*)event {
    NSMenu* menu = [super menuForEvent:event];
    removeUnwantedItems(menu);
    return menu;
}

- (void)willOpenMenu:(NSMenu*)menu withEvent:(NSEvent*)event {
    [super willOpenMenu:menu withEvent:event];
    removeUnwantedItems(menu);
}

// The engine registers for what it would take, and would show a dropped document in the page's
// place. What it still hears of a drag is answered with no.
- (void)registerForDraggedTypes:(NSArray<NSPasteboardType>*)newTypes {
}

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)sender {
    return NSDragOperationNone;
}

- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)sender {
    return NSDragOperationNone;
}

- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)sender {
    return NO;
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)sender {
    return NO;
}

@end
