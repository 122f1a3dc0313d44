#include "platform/linux/LinuxNotifications.h"

#include <gio/gio.h>

#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/linux/glib_pointers.h"
#include "platform/values/json_fields.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* object = "/org/freedesktop/Notifications";
constexpr int timeout = 5'000;  // milliseconds; the service may have to start first
constexpr int usualTime = -1;   // the service decides how long it shows

struct GlibUnrefVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, GlibUnrefVariant>;

/// A notification as the service that shows it knows it.
struct Shown {
    std::string bus;    // the bus's own identifier: a new login has a new bus
    std::string owner;  // the service's unique name on it
    std::uint32_t number = 0;
};

std::string textOrNothing(const char* text) { return text == nullptr ? "" : text; }

std::string owner(GDBusConnection* bus) {
    const Variant answer(g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetNameOwner", g_variant_new("(s)", service), G_VARIANT_TYPE("(s)"),
        G_DBUS_CALL_FLAGS_NONE, timeout, nullptr, nullptr));
    if (!answer) return {};
    const char* name = nullptr;
    g_variant_get(answer.get(), "(&s)", &name);
    return textOrNothing(name);
}

GVariant* notification(const std::string& title, const std::string& body) {
    GVariantBuilder actions;
    g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(programIdentifier));
    constexpr std::uint32_t replacesNothing = 0;
    return g_variant_new("(susssasa{sv}i)", "Velto", replacesNothing, programIdentifier,
                         title.c_str(), body.c_str(), &actions, &hints, usualTime);
}

void remember(FileManager& files, const std::string& path, const Shown& shown) {
    try {
        files.createFolders(parentFolder(path));
        const nlohmann::ordered_json record{
            {"bus", shown.bus}, {"owner", shown.owner}, {"number", shown.number}};
        files.writeAtomically(path, record.dump());
    } catch (const FileError&) {
        // It then stays until the user dismisses it.
    }
}

std::optional<Shown> remembered(FileManager& files, const std::string& path) {
    try {
        const auto record = nlohmann::json::parse(files.read(path));
        return Shown{.bus = field<std::string>(record, "bus"),
                     .owner = field<std::string>(record, "owner"),
                     .number = field<std::uint32_t>(record, "number")};
    } catch (const FileError&) {
        return std::nullopt;  // nothing was posted
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

}  // namespace

void LinuxNotifications::removeAllDelivered() {
    if (!files_.exists(memory_)) return;
    const auto shown = remembered(files_, memory_);
    try {
        files_.removeAll(memory_);
    } catch (const FileError&) {
        // Closing the same number once more does no harm.
    }
    if (!shown) return;
    const GlibReference<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus || textOrNothing(g_dbus_connection_get_guid(bus.get())) != shown->bus) return;
    if (owner(bus.get()) != shown->owner) return;
    g_dbus_connection_call(bus.get(), service, object, service, "CloseNotification",
                           g_variant_new("(u)", shown->number), nullptr, G_DBUS_CALL_FLAGS_NONE,
                           timeout, nullptr, nullptr, nullptr);
    // Nobody else may hold the connection, and what is not written is lost with it.
    g_dbus_connection_flush_sync(bus.get(), nullptr, nullptr);
}

void LinuxNotifications::post(const std::string&, const std::string& title,
                              const std::string& body) {
    const auto failed = [&](GError* error) {
        const GlibError reason(error);
        log_.line("Velto ▶ no se pudo entregar la notificación: " +
                  singleLine(reason ? reason->message : "error desconocido"));
    };
    GError* error = nullptr;
    const GlibReference<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (!bus) return failed(error);
    const Variant answer(g_dbus_connection_call_sync(
        bus.get(), service, object, service, "Notify", notification(title, body),
        G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, timeout, nullptr, &error));
    if (!answer) return failed(error);
    Shown shown{.bus = textOrNothing(g_dbus_connection_get_guid(bus.get())),
                .owner = owner(bus.get())};
    g_variant_get(answer.get(), "(u)", &shown.number);
    remember(files_, memory_, shown);
}

}  // namespace velto
