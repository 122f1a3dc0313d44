#import "app/window/macos/DragRegionView.h"

#include "app/window/window_rules.h"
#include "platform/macos/foundation_text.h"

namespace {

using velto::window::WidthRule;

NSLayoutConstraint* constraint(const WidthRule& rule, NSView* region, NSView* container) {
    NSLayoutRelation relation = NSLayoutRelationEqual;
    if (rule.relation == WidthRule::Relation::atLeast) {
        relation = NSLayoutRelationGreaterThanOrEqual;
    } else if (rule.relation == WidthRule::Relation::atMost) {
        relation = NSLayoutRelationLessThanOrEqual;
    }
    const bool relative = rule.relativeToContainer;
    NSLayoutConstraint* width = [NSLayoutConstraint
        constraintWithItem:region
                 attribute:NSLayoutAttributeWidth
                 relatedBy:relation
                    toItem:relative ? container : nil
                 attribute:relative ? NSLayoutAttributeWidth : NSLayoutAttributeNotAnAttribute
                multiplier:1
                  constant:rule.constant];
    width.priority = rule.priority;
    return width;
}

/// The child of `container` that holds the window's buttons; nil when they are elsewhere.
NSView* titleBarIn(NSView* container, NSWindow* window) {
    NSView* view = [window standardWindowButton:NSWindowCloseButton];
    while (view != nil && view.superview != container) view = view.superview;
    return view;
}

bool hasRegion(NSView* container) {
    for (NSView* view in container.subviews) {
        if ([view isKindOfClass:DragRegionView.class]) return true;
    }
    return false;
}

}  // namespace

@implementation DragRegionView

+ (void)installInWindow:(NSWindow*)window {
    NSView* container = window.contentView.superview;
    if (container == nil || hasRegion(container)) return;

    auto* region = [[DragRegionView alloc] initWithFrame:NSZeroRect];
    region.identifier = velto::nsString(velto::window::dragRegionIdentifier);
    region.translatesAutoresizingMaskIntoConstraints = NO;
    // Over the page, under the window's buttons.
    NSView* titleBar = titleBarIn(container, window);
    [container addSubview:region
               positioned:titleBar != nil ? NSWindowBelow : NSWindowAbove
               relativeTo:titleBar];

    [region.topAnchor constraintEqualToAnchor:container.topAnchor].active = YES;
    [region.heightAnchor constraintEqualToConstant:velto::window::dragRegionHeight].active = YES;
    [region.leadingAnchor constraintEqualToAnchor:container.leadingAnchor
                                         constant:velto::window::dragRegionLeading]
        .active = YES;
    for (const WidthRule& rule : velto::window::dragRegionWidthRules) {
        constraint(rule, region, container).active = YES;
    }
}

// The window moves with the very click that brings it to the front.
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return YES;
}

- (void)mouseDown:(NSEvent*)event {
    if (event.clickCount == 2) return [self actOnDoubleClick];
    [self.window performWindowDragWithEvent:event];
}

- (void)actOnDoubleClick {
    NSString* setting =
        [NSUserDefaults.standardUserDefaults stringForKey:@"AppleActionOnDoubleClick"];
    switch (velto::window::titleDoubleClickAction(velto::utf8(setting))) {
        case velto::window::TitleAction::zoom:
            return [self.window performZoom:nil];
        case velto::window::TitleAction::minimise:
            return [self.window performMiniaturize:nil];
        case velto::window::TitleAction::nothing:
            break;
    }
}

@end
