#pragma once

namespace velto {

/// The user's notification centre. Main thread; failures are logged, never thrown.
class Notifications {
public:
    virtual ~Notifications() = default;

    /// Takes back every notification of this program that is still shown.
    virtual void removeAllDelivered() = 0;
};

}  // namespace velto
