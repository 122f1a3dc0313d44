#pragma once

#import <AppKit/NSControl.h>

@class NSImage;

@interface NSImageView : NSControl
+ (instancetype)imageViewWithImage:(NSImage *)image;
@property(strong) NSImage *image;
@end
