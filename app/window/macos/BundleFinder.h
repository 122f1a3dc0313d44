#pragma once

#import <Foundation/Foundation.h>

#include "platform/Platform.h"

/// A class to locate the resource bundle by: the bundle that holds this code is found through it.
@interface BundleFinder : NSObject

/// The bundle with the page. Ends the program when there is none.
+ (NSBundle*)resourceBundle:(const velto::Platform&)platform;

@end
