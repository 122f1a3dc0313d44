#pragma once

#include <string>

namespace velto {

/// The user's notification centre. Failures are logged, never thrown.
class Notifications {
public:
    virtual ~Notifications() = default;

    /// Takes back every notification of this program that is still shown. Main thread.
    virtual void removeAllDelivered() = 0;

    /// Shows a notification at once under an identifier of its own. Needs no window and no running
    /// main loop; returns when the centre has it, or has refused it, or does not answer.
    virtual void post(const std::string& identifier, const std::string& title,
                      const std::string& body) = 0;
};

}  // namespace velto
