#pragma once

#include <gio/gio.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace velto {

/// A service of the tests' own on a bus, on a thread and a connection of its own.
class ServiceOnBus {
public:
    struct Object {
        std::string path;
        std::string interface;  // introspection text of a node with that one interface
    };
    /// A call of a method. Runs on the service's thread; answers through `invocation`.
    using Called = std::function<void(const std::string& method, GVariant* arguments,
                                      GDBusMethodInvocation* invocation)>;

    /// Returns when it is reachable under its name.
    ServiceOnBus(std::string address, std::string name, std::vector<Object> objects, Called called);
    ~ServiceOnBus();
    ServiceOnBus(const ServiceOnBus&) = delete;
    ServiceOnBus& operator=(const ServiceOnBus&) = delete;

    /// For `Called` alone.
    void emit(const char* path, const char* interface, const char* signal, GVariant* values);

    /// Gives its name up, as one that ends does. For `Called` alone.
    void leave();

private:
    void serve();
    void askBus(const char* method, GVariant* arguments);

    std::string address_;
    std::string name_;
    std::vector<Object> objects_;
    Called called_;
    GDBusConnection* bus_ = nullptr;
    GMainContext* context_;
    GMainLoop* loop_;
    std::atomic<bool> isReady_ = false;
    std::thread thread_;
};

/// A text among the arguments of a call.
std::string textOf(GVariant* arguments, gsize index);

}  // namespace velto
