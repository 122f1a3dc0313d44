#pragma once

#import <Foundation/NSObject.h>
#import <Foundation/NSGeometry.h>

@class NSView;

@interface NSDockTile : NSObject
@property(readonly) NSSize size;
@property(strong) NSView *contentView;
- (void)display;
@property BOOL showsApplicationBadge;
@property(copy) NSString *badgeLabel;
@end
