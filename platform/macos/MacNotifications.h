#pragma once

#include "platform/Notifications.h"

namespace velto {

class MacNotifications final : public Notifications {
public:
    /// The notification centre raises an exception in a program without a bundle, so it is left
    /// alone there; such a program cannot have posted anything either.
    explicit MacNotifications(bool runsFromBundle) : runsFromBundle_(runsFromBundle) {}

    void removeAllDelivered() override;

private:
    bool runsFromBundle_;
};

}  // namespace velto
