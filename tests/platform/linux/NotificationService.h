#pragma once

#include <functional>
#include <string>

#include "ServiceOnBus.h"

namespace velto {

/// The desktop's notification service on a session bus. Its numbers begin with 42.
class NotificationService {
public:
    struct Notification {
        std::string application, icon, title, body;
        std::uint32_t number = 0;
    };
    struct Handlers {
        std::function<void(const Notification&)> shown;
        std::function<void(std::uint32_t number)> closed;
    };

    /// Returns when it is reachable. The handlers are called on the service's thread.
    NotificationService(const char* busAddress, Handlers handlers);

private:
    void answer(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation);

    Handlers handlers_;
    std::uint32_t number_ = 41;
    ServiceOnBus service_;  // last: it calls the above
};

}  // namespace velto
