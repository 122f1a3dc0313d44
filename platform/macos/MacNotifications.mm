#include "platform/macos/MacNotifications.h"

#import <UserNotifications/UserNotifications.h>

#include "platform/macos/foundation_text.h"
#include "platform/notification_delivery.h"

namespace velto {
namespace {

using namespace std::chrono_literals;
constexpr auto patience = 5s;  // nobody is asked, so only a centre in trouble takes longer

NotificationPermission permissionOf(UNAuthorizationStatus status) {
    switch (status) {
        case UNAuthorizationStatusNotDetermined:
            return NotificationPermission::unasked;
        case UNAuthorizationStatusDenied:
            return NotificationPermission::refused;
        default:
            return NotificationPermission::given;
    }
}

class UserNotificationCentre final : public NotificationCentre {
public:
    void permission(std::function<void(NotificationPermission)> answer) override {
        [centre() getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings* settings) {
          answer(permissionOf(settings.authorizationStatus));
        }];
    }

    void add(const Notification& notification, std::function<void(std::string)> answer) override {
        UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
        content.title = nsString(notification.title);
        content.body = nsString(notification.body);
        UNNotificationRequest* const request =
            [UNNotificationRequest requestWithIdentifier:nsString(notification.identifier)
                                                 content:content
                                                 trigger:nil];
        [centre() addNotificationRequest:request
                   withCompletionHandler:^(NSError* error) {
                     answer(utf8(error.localizedDescription));
                   }];
    }

private:
    static UNUserNotificationCenter* centre() {
        return UNUserNotificationCenter.currentNotificationCenter;
    }
};

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
        UserNotificationCentre centre;
        deliver(centre, {.identifier = identifier, .title = title, .body = body}, patience, log_);
    }
}

}  // namespace velto
