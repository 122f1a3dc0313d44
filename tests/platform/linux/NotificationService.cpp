#include "NotificationService.h"

#include <utility>

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

}  // namespace

NotificationService::NotificationService(const char* busAddress, Handlers handlers)
    : handlers_(std::move(handlers)),
      service_(busAddress, "org.freedesktop.Notifications",
               {{"/org/freedesktop/Notifications", interfaceText}},
               [this](const auto& method, GVariant* arguments, GDBusMethodInvocation* invocation) {
                   answer(method, arguments, invocation);
               }) {}

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
