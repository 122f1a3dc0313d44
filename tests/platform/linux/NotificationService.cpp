#include "NotificationService.h"

namespace velto {
namespace {

constexpr const char* interfaceText = R"(<node>
  <interface name="org.freedesktop.Notifications">
    <method name="Notify">
      <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
      <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
      <arg type="u" direction="out"/>
    </method>
    <method name="CloseNotification"><arg type="u" direction="in"/></method>
  </interface>
</node>)";

std::string textOf(GVariant* arguments, gsize index) {
    const char* text = nullptr;
    g_variant_get_child(arguments, index, "&s", &text);
    return text;
}

}  // namespace

NotificationService::NotificationService(const char* busAddress, Handlers handlers)
    : handlers_(std::move(handlers)),
      context_(g_main_context_new()),
      loop_(g_main_loop_new(context_, FALSE)) {
    thread_ = std::thread([this, busAddress] { serve(busAddress); });
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

NotificationService::~NotificationService() {
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

void NotificationService::serve(const char* busAddress) {
    g_main_context_push_thread_default(context_);
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection* const bus =
        g_dbus_connection_new_for_address_sync(busAddress, flags, nullptr, nullptr, nullptr);
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(interfaceText, nullptr);
    const auto called = [](GDBusConnection*, const char*, const char*, const char*,
                           const char* method, GVariant* arguments,
                           GDBusMethodInvocation* invocation, gpointer data) {
        static_cast<NotificationService*>(data)->answer(method, arguments, invocation);
    };
    const GDBusInterfaceVTable table{
        .method_call = called, .get_property = nullptr, .set_property = nullptr, .padding = {}};
    g_dbus_connection_register_object(bus, "/org/freedesktop/Notifications", node->interfaces[0],
                                      &table, this, nullptr, nullptr);
    GVariant* const granted = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", "org.freedesktop.Notifications", 0), nullptr, G_DBUS_CALL_FLAGS_NONE,
        -1, nullptr, nullptr);
    g_variant_unref(granted);
    g_main_loop_run(loop_);
    g_dbus_connection_close_sync(bus, nullptr, nullptr);
    g_dbus_node_info_unref(node);
    g_object_unref(bus);
    g_main_context_pop_thread_default(context_);
}

void NotificationService::answer(const std::string& method, GVariant* arguments,
                                 GDBusMethodInvocation* invocation) {
    if (method == "CloseNotification") {
        std::uint32_t number = 0;
        g_variant_get(arguments, "(u)", &number);
        handlers_.closed(number);
        g_dbus_method_invocation_return_value(invocation, nullptr);
        return;
    }
    handlers_.shown({.application = textOf(arguments, 0),
                     .icon = textOf(arguments, 2),
                     .title = textOf(arguments, 3),
                     .body = textOf(arguments, 4),
                     .number = ++number_});
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", number_));
}

}  // namespace velto
