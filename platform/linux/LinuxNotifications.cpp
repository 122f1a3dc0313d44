#include "platform/linux/LinuxNotifications.h"

#include <gio/gio.h>

#include <vector>

#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/linux/glib_pointers.h"
#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/text.h"

namespace velto {
namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* object = "/org/freedesktop/Notifications";
constexpr ReadLimit limit = ownFile(64 << 10);  // a few short values
constexpr int timeout = 5'000;                  // milliseconds; the service may have to start first
constexpr int usualTime = -1;                   // the service decides how long it shows
constexpr std::size_t mostKept = 100;           // of notifications that nobody has taken back

struct GlibUnrefVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, GlibUnrefVariant>;

/// The notifications that are shown, as the service that shows them knows them.
struct Shown {
    std::string bus;                     // the bus's own identifier: a new login has a new bus
    std::string owner;                   // the service's unique name on it
    std::vector<std::uint32_t> numbers;  // oldest first
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
            {"bus", shown.bus}, {"owner", shown.owner}, {"numbers", shown.numbers}};
        files.writeAtomically(path, record.dump());
    } catch (const FileError&) {
        // They then stay until the user dismisses them.
    }
}

std::optional<Shown> remembered(FileManager& files, const std::string& path) {
    try {
        const auto record = parseJson(files.read(path, limit));
        Shown shown{.bus = field<std::string>(record, "bus"),
                    .owner = field<std::string>(record, "owner"),
                    .numbers = {}};
        // An earlier version kept the last one alone.
        if (record.contains("number")) {
            shown.numbers = {field<std::uint32_t>(record, "number")};
        } else {
            shown.numbers = field<std::vector<std::uint32_t>>(record, "numbers");
        }
        return shown;
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
        // Closing the same numbers once more does no harm.
    }
    if (!shown) return;
    const GlibReference<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus || textOrNothing(g_dbus_connection_get_guid(bus.get())) != shown->bus) return;
    if (owner(bus.get()) != shown->owner) return;
    for (const std::uint32_t number : shown->numbers) {
        g_dbus_connection_call(bus.get(), service, object, service, "CloseNotification",
                               g_variant_new("(u)", number), nullptr, G_DBUS_CALL_FLAGS_NONE,
                               timeout, nullptr, nullptr, nullptr);
    }
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
    std::uint32_t number = 0;
    g_variant_get(answer.get(), "(u)", &number);
    Shown shown{.bus = textOrNothing(g_dbus_connection_get_guid(bus.get())),
                .owner = owner(bus.get()),
                .numbers = {}};
    // What the same service still shows is taken back together with this one.
    const auto before = remembered(files_, memory_);
    if (before && before->bus == shown.bus && before->owner == shown.owner) {
        shown.numbers = before->numbers;
    }
    shown.numbers.push_back(number);
    if (shown.numbers.size() > mostKept) shown.numbers.erase(shown.numbers.begin());
    remember(files_, memory_, shown);
}

}  // namespace velto
