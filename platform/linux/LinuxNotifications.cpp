#include "platform/linux/LinuxNotifications.h"

#include <gio/gio.h>

namespace velto {

void LinuxNotifications::removeAllDelivered() {
    GApplication* const application = g_application_get_default();
    if (application == nullptr || g_application_get_is_registered(application) == FALSE) return;
    g_application_withdraw_notification(application, maintenanceNotification);
}

}  // namespace velto
