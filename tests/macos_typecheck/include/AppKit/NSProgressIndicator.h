#pragma once

#import <AppKit/NSView.h>

typedef NS_ENUM(NSUInteger, NSProgressIndicatorStyle) {
    NSProgressIndicatorStyleBar = 0,
    NSProgressIndicatorStyleSpinning = 1,
};

@interface NSProgressIndicator : NSView
@property(getter=isIndeterminate) BOOL indeterminate;
@property double doubleValue;
- (void)incrementBy:(double)delta;
@property double minValue;
@property double maxValue;
@property NSProgressIndicatorStyle style;
- (void)startAnimation:(id)sender;
- (void)stopAnimation:(id)sender;
@end
