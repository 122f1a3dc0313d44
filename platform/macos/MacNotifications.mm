#include "platform/macos/MacNotifications.h"

#import <UserNotifications/UserNotifications.h>

namespace velto {

void MacNotifications::removeAllDelivered() {
    if (!runsFromBundle_) return;
    [UNUserNotificationCenter.currentNotificationCenter removeAllDeliveredNotifications];
}

}  // namespace velto
