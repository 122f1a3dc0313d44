#include "platform/notification_permission.h"

#import <UserNotifications/UserNotifications.h>

#include "platform/Platform.h"

namespace velto {

void askToNotify(const Platform& platform) {
    if (!platform.runsFromBundle) return;  // see MacNotifications
    [UNUserNotificationCenter.currentNotificationCenter
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                      completionHandler:^(BOOL, NSError*){
                      }];
}

}  // namespace velto
