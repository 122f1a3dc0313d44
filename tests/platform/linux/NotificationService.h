#pragma once

#include <gio/gio.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace velto {

/// The desktop's notification service on a session bus, on a thread and a connection of its own.
/// Its numbers begin with 42.
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
    ~NotificationService();
    NotificationService(const NotificationService&) = delete;
    NotificationService& operator=(const NotificationService&) = delete;

private:
    void serve(const char* busAddress);
    void answer(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation);

    Handlers handlers_;
    GMainContext* context_;
    GMainLoop* loop_;
    std::uint32_t number_ = 41;
    std::atomic<bool> isReady_ = false;
    std::thread thread_;
};

}  // namespace velto
