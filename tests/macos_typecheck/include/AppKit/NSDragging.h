#pragma once

#import <AppKit/AppKitDefines.h>
#import <Foundation/NSGeometry.h>
#import <Foundation/NSObject.h>

@class NSPasteboard, NSWindow;

typedef NS_OPTIONS(NSUInteger, NSDragOperation) {
    NSDragOperationNone = 0,
    NSDragOperationCopy = 1,
    NSDragOperationLink = 2,
    NSDragOperationGeneric = 4,
    NSDragOperationPrivate = 8,
    NSDragOperationMove = 16,
    NSDragOperationDelete = 32,
    NSDragOperationEvery = NSUIntegerMax,
};

@protocol NSDraggingInfo <NSObject>
@property(readonly, strong) NSWindow *draggingDestinationWindow;
@property(readonly) NSDragOperation draggingSourceOperationMask;
@property(readonly) NSPoint draggingLocation;
@property(readonly, strong) NSPasteboard *draggingPasteboard;
@property(readonly) NSInteger draggingSequenceNumber;
@end

@protocol NSDraggingDestination <NSObject>
@optional
- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)sender;
- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)sender;
- (void)draggingExited:(id<NSDraggingInfo>)sender;
- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)sender;
- (BOOL)performDragOperation:(id<NSDraggingInfo>)sender;
- (void)concludeDragOperation:(id<NSDraggingInfo>)sender;
- (void)draggingEnded:(id<NSDraggingInfo>)sender;
@end
