#include "ServiceOnBus.h"

#include <utility>

namespace velto {

std::string textOf(GVariant* arguments, gsize index) {
    const char* text = nullptr;
    g_variant_get_child(arguments, index, "&s", &text);
    return text;
}

ServiceOnBus::ServiceOnBus(std::string address, std::string name, std::vector<Object> objects,
                           Called called)
    : address_(std::move(address)),
      name_(std::move(name)),
      objects_(std::move(objects)),
      called_(std::move(called)),
      context_(g_main_context_new()),
      loop_(g_main_loop_new(context_, FALSE)) {
    thread_ = std::thread([this] { serve(); });
    // The loop runs only once the service has its name.
    GSource* const source = g_idle_source_new();
    g_source_set_callback(
        source,
        [](gpointer data) {
            auto& ready = *static_cast<std::atomic<bool>*>(data);
            ready = true;
            ready.notify_one();
            return G_SOURCE_REMOVE;
        },
        &isReady_, nullptr);
    g_source_attach(source, context_);
    g_source_unref(source);
    isReady_.wait(false);
}

ServiceOnBus::~ServiceOnBus() {
    g_main_context_invoke(
        context_,
        [](gpointer loop) {
            g_main_loop_quit(static_cast<GMainLoop*>(loop));
            return G_SOURCE_REMOVE;
        },
        loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
}

void ServiceOnBus::serve() {
    g_main_context_push_thread_default(context_);
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    bus_ =
        g_dbus_connection_new_for_address_sync(address_.c_str(), flags, nullptr, nullptr, nullptr);
    const auto called = [](GDBusConnection*, const char*, const char*, const char*,
                           const char* method, GVariant* arguments,
                           GDBusMethodInvocation* invocation, gpointer data) {
        static_cast<ServiceOnBus*>(data)->called_(method, arguments, invocation);
    };
    const GDBusInterfaceVTable table{
        .method_call = called, .get_property = nullptr, .set_property = nullptr, .padding = {}};
    for (const Object& object : objects_) {
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(object.interface.c_str(), nullptr);
        g_dbus_connection_register_object(bus_, object.path.c_str(), node->interfaces[0], &table,
                                          this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
    }
    askBus("RequestName", g_variant_new("(su)", name_.c_str(), 0));
    g_main_loop_run(loop_);
    g_dbus_connection_close_sync(bus_, nullptr, nullptr);
    g_object_unref(bus_);
    g_main_context_pop_thread_default(context_);
}

void ServiceOnBus::emit(const char* path, const char* interface, const char* signal,
                        GVariant* values) {
    g_dbus_connection_emit_signal(bus_, nullptr, path, interface, signal, values, nullptr);
}

void ServiceOnBus::leave() { askBus("ReleaseName", g_variant_new("(s)", name_.c_str())); }

void ServiceOnBus::askBus(const char* method, GVariant* arguments) {
    GVariant* const answer = g_dbus_connection_call_sync(
        bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    g_variant_unref(answer);
}

}  // namespace velto
