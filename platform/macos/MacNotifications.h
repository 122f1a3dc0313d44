#pragma once

#include "platform/Log.h"
#include "platform/Notifications.h"

namespace velto {

class MacNotifications final : public Notifications {
public:
    /// The notification centre raises an exception in a program without a bundle, so it is left
    /// alone there; such a program cannot have posted anything either. The log outlives the object.
    MacNotifications(Log& log, bool runsFromBundle) : log_(log), runsFromBundle_(runsFromBundle) {}

    void removeAllDelivered() override;
    void post(const std::string& identifier, const std::string& title,
              const std::string& body) override;

private:
    Log& log_;
    bool runsFromBundle_;
};

}  // namespace velto
