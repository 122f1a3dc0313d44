#include "platform/linux/packages/PackageKitTransaction.h"

#include <array>
#include <clocale>
#include <cstring>
#include <limits>

#include "platform/PackageService.h"

namespace velto {
namespace {

constexpr const char* service = "org.freedesktop.PackageKit";
constexpr const char* object = "/org/freedesktop/PackageKit";
constexpr const char* transactionInterface = "org.freedesktop.PackageKit.Transaction";
constexpr int timeToStart = 30'000;  // milliseconds; the service is started by the first call
constexpr int mostAttempts = 5;      // to get a transaction that is there
constexpr int mostLooks = 25;        // for each
constexpr gulong microsecondsBetweenLooks = 20'000;

// Of PkErrorEnum and PkExitEnum.
constexpr std::uint32_t errorCancelled = 17;
constexpr std::uint32_t errorCannotGetLock = 26;
constexpr std::uint32_t errorNotAuthorized = 48;
constexpr std::uint32_t errorLockRequired = 67;
constexpr std::uint32_t exitSuccess = 1;
constexpr std::uint32_t exitCancelled = 3;

struct UnrefVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, UnrefVariant>;

[[noreturn]] void failUnavailable(GError* error) {
    const GlibError reason(error);
    throw PackageError(PackageError::Reason::unavailable,
                       reason ? reason->message : "PackageKit does not answer");
}

GDBusConnection* connect(const std::string& address) {
    GError* error = nullptr;
    GDBusConnection* const bus =
        address.empty()
            ? g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error)
            : g_dbus_connection_new_for_address_sync(
                  address.c_str(),
                  static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                    G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                  nullptr, nullptr, &error);
    if (bus == nullptr) failUnavailable(error);
    return bus;
}

/// True for an answer of nobody: the service is not installed, not allowed to start, or died.
bool isMissing(const GError& error) {
    return g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != FALSE ||
           g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != FALSE ||
           g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) != FALSE ||
           g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND) != FALSE;
}

bool isNotThereYet(const GError& error) {
    return g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD) != FALSE ||
           g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_OBJECT) != FALSE;
}

}  // namespace

PackageKitTransaction::PackageKitTransaction(const std::string& busAddress)
    : bus_(connect(busAddress)) {
    // The service gives a transaction's path away before it has put the transaction on the bus, and
    // now and then never does: then another one is asked for.
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        create();
        if (setHints()) break;
    }
    subscribe();
}

void PackageKitTransaction::create() {
    GError* error = nullptr;
    const Variant made(g_dbus_connection_call_sync(
        bus_.get(), service, object, service, "CreateTransaction", nullptr, G_VARIANT_TYPE("(o)"),
        G_DBUS_CALL_FLAGS_NONE, timeToStart, nullptr, &error));
    if (!made) failUnavailable(error);
    const char* path = nullptr;
    g_variant_get(made.get(), "(&o)", &path);
    path_ = path;
}

PackageKitTransaction::~PackageKitTransaction() {
    for (const guint subscription : subscriptions_)
        g_dbus_connection_signal_unsubscribe(bus_.get(), subscription);
    // What is still on its way here is let go of by the context it belongs to.
    while (g_main_context_iteration(context_.get(), FALSE) != FALSE) {
    }
}

/// A question may be asked on the screen, in the user's language. False when there is no such
/// transaction.
bool PackageKitTransaction::setHints() {
    const char* const locale = std::setlocale(LC_MESSAGES, nullptr);
    const std::string language = std::string("locale=") + (locale == nullptr ? "C" : locale);
    const std::array<const char*, 4> hints{language.c_str(), "interactive=true", "background=false",
                                           nullptr};
    for (int look = 0; look < mostLooks; ++look) {
        GError* error = nullptr;
        const Variant answer(
            g_dbus_connection_call_sync(bus_.get(), service, path_.c_str(), transactionInterface,
                                        "SetHints", g_variant_new("(^as)", hints.data()), nullptr,
                                        G_DBUS_CALL_FLAGS_NONE, timeToStart, nullptr, &error));
        const GlibError reason(error);
        if (!reason || !isNotThereYet(*reason)) return true;  // one that knows less works as well
        g_usleep(microsecondsBetweenLooks);
    }
    return false;
}

void PackageKitTransaction::subscribe() {
    const auto told = [](GDBusConnection*, const char*, const char*, const char*,
                         const char* signal, GVariant* values, gpointer data) {
        static_cast<PackageKitTransaction*>(data)->take(signal, values);
    };
    subscriptions_.push_back(g_dbus_connection_signal_subscribe(
        bus_.get(), service, transactionInterface, nullptr, path_.c_str(), nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, told, this, nullptr));
    // A service that dies tells nothing more.
    subscriptions_.push_back(g_dbus_connection_signal_subscribe(
        bus_.get(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", nullptr,
        service, G_DBUS_SIGNAL_FLAGS_NONE, told, this, nullptr));
}

void PackageKitTransaction::take(const char* signal, GVariant* values) {
    const auto is = [&](const char* name, const char* type) {
        return std::strcmp(signal, name) == 0 &&
               g_variant_is_of_type(values, G_VARIANT_TYPE(type)) != FALSE;
    };
    if (is("Package", "(uss)")) {
        Found found;
        const char* identifier = nullptr;
        g_variant_get(values, "(u&s&s)", &found.info, &identifier, nullptr);
        found.identifier = identifier;
        outcome_.found.push_back(std::move(found));
    } else if (is("ErrorCode", "(us)")) {
        const char* text = nullptr;
        g_variant_get(values, "(u&s)", &outcome_.error, &text);
        outcome_.text = text;
    } else if (is("Finished", "(uu)")) {
        std::uint32_t exit = 0;
        g_variant_get(values, "(uu)", &exit, nullptr);
        outcome_.hasEnded = true;
        outcome_.hasSucceeded = exit == exitSuccess;
        if (exit == exitCancelled) outcome_.error = errorCancelled;
    } else if (is("NameOwnerChanged", "(sss)")) {
        const char* owner = nullptr;
        g_variant_get(values, "(&s&s&s)", nullptr, nullptr, &owner);
        if (*owner != '\0') return;
        outcome_.hasEnded = true;
        outcome_.isUnavailable = true;
        outcome_.text = "PackageKit has ended";
    }
}

void PackageKitTransaction::end(const GError& error) {
    outcome_.hasEnded = true;
    outcome_.isUnavailable = isMissing(error);
    const GlibText name(g_dbus_error_get_remote_error(&error));
    if (name && std::strstr(name.get(), "RefusedByPolicy") != nullptr) {
        outcome_.error = errorNotAuthorized;
    }
    outcome_.text = error.message;
}

std::vector<PackageKitTransaction::Found> PackageKitTransaction::run(const char* method,
                                                                     GVariant* arguments,
                                                                     unsigned seconds) {
    bool isLate = false;
    GSource* const timer = seconds > 0 ? g_timeout_source_new_seconds(seconds) : nullptr;
    if (timer != nullptr) {
        const auto expired = [](gpointer late) -> gboolean {
            *static_cast<bool*>(late) = true;
            return G_SOURCE_REMOVE;
        };
        g_source_set_callback(timer, expired, &isLate, nullptr);
        g_source_attach(timer, context_.get());
    }
    bool isAnswered = false;
    struct Call {
        PackageKitTransaction& transaction;
        bool& isAnswered;
    } call{*this, isAnswered};
    const auto answered = [](GObject* bus, GAsyncResult* result, gpointer data) {
        Call& asked = *static_cast<Call*>(data);
        GError* error = nullptr;
        const Variant answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
        asked.isAnswered = true;
        if (const GlibError reason(error); reason) asked.transaction.end(*reason);
    };
    // The answer may come only when the user has answered.
    const GlibReference<GCancellable> cancellable(g_cancellable_new());
    g_dbus_connection_call(bus_.get(), service, path_.c_str(), transactionInterface, method,
                           arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                           std::numeric_limits<int>::max(), cancellable.get(), answered, &call);
    while (!outcome_.hasEnded && !isLate)
        g_main_context_iteration(context_.get(), TRUE);
    if (timer != nullptr) {
        g_source_destroy(timer);
        g_source_unref(timer);
    }
    const Outcome ended = outcome_;
    g_cancellable_cancel(cancellable.get());
    while (!isAnswered)
        g_main_context_iteration(context_.get(), TRUE);
    outcome_ = ended;
    if (isLate) {
        throw PackageError(PackageError::Reason::unavailable, "PackageKit takes too long");
    }
    judge();
    return outcome_.found;
}

void PackageKitTransaction::judge() const {
    using enum PackageError::Reason;
    if (outcome_.hasSucceeded && outcome_.error == 0) return;
    if (outcome_.isUnavailable) throw PackageError(unavailable, outcome_.text);
    switch (outcome_.error) {
        case errorNotAuthorized:
        case errorCancelled:
            throw PackageError(refused, outcome_.text);
        case errorCannotGetLock:
        case errorLockRequired:
            throw PackageError(busy, outcome_.text);
        default:
            throw PackageError(failed, outcome_.text);
    }
}

}  // namespace velto
