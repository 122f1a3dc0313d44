#pragma once

#import <Foundation/Foundation.h>

@class WKContentRuleList;

@interface WKContentRuleListStore : NSObject
+ (instancetype)defaultStore;
+ (instancetype)storeWithURL:(NSURL *)url;
- (void)compileContentRuleListForIdentifier:(NSString *)identifier
                     encodedContentRuleList:(NSString *)encodedContentRuleList
                          completionHandler:(void (^)(WKContentRuleList *,
                                                      NSError *))completionHandler;
- (void)lookUpContentRuleListForIdentifier:(NSString *)identifier
                         completionHandler:(void (^)(WKContentRuleList *,
                                                     NSError *))completionHandler;
@end
