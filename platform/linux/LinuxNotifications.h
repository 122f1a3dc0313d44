#pragma once

#include "platform/Notifications.h"

namespace velto {

/// The identifier under which a maintenance pass posts its notification through GIO.
inline constexpr const char* maintenanceNotification = "maintenance";

/// Notifications as GIO sends them. A desktop offers no way to list a program's notifications, nor
/// to take all of them back: the known one is withdrawn, and only while a GApplication runs, since
/// GIO withdraws through it. Where the desktop's server knows numbers instead of identifiers, it
/// can take back only what this very process posted; the rest stays until the user dismisses it.
class LinuxNotifications final : public Notifications {
public:
    void removeAllDelivered() override;
};

}  // namespace velto
