#pragma once

#import <Foundation/Foundation.h>

@interface WKContentRuleList : NSObject
@property(nonatomic, readonly, copy) NSString *identifier;
@end
