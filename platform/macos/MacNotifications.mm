#include "platform/macos/MacNotifications.h"

#import <UserNotifications/UserNotifications.h>

#include "platform/macos/foundation_text.h"

namespace velto {
namespace {

// The first notification asks the user whether there may be any; nobody may be there to answer.
constexpr int64_t patience = 30 * NSEC_PER_SEC;

}  // namespace

void MacNotifications::removeAllDelivered() {
    if (!runsFromBundle_) return;
    [UNUserNotificationCenter.currentNotificationCenter removeAllDeliveredNotifications];
}

void MacNotifications::post(const std::string& identifier, const std::string& title,
                            const std::string& body) {
    if (!runsFromBundle_) {
        log_.line("Velto ▶ sin bundle de aplicación: la notificación se omite");
        return;
    }
    @autoreleasepool {
        UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
        content.title = nsString(title);
        content.body = nsString(body);
        UNNotificationRequest* const request =
            [UNNotificationRequest requestWithIdentifier:nsString(identifier)
                                                 content:content
                                                 trigger:nil];
        UNUserNotificationCenter* const centre = UNUserNotificationCenter.currentNotificationCenter;
        dispatch_semaphore_t const done = dispatch_semaphore_create(0);
        __block NSString* failure = nil;
        void (^const finish)(NSError*) = ^(NSError* error) {
          failure = error.localizedDescription;
          dispatch_semaphore_signal(done);
        };
        [centre requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                              completionHandler:^(BOOL, NSError*) {
                                // Refused: adding it tells why.
                                [centre addNotificationRequest:request
                                         withCompletionHandler:finish];
                              }];
        const long isLate =
            dispatch_semaphore_wait(done, dispatch_time(DISPATCH_TIME_NOW, patience));
        NSString* const reason = isLate != 0 ? @"no answer" : failure;
        if (reason != nil) {
            log_.line("Velto ▶ no se pudo entregar la notificación: " + utf8(reason));
        }
    }
}

}  // namespace velto
