#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/glib_pointers.h"
#include "platform/linux/packages/OwnContext.h"

namespace velto {

/// One transaction of PackageKit: made, run once, and over. For the thread that makes it, which has
/// a main context of its own meanwhile. Every function throws PackageError.
class PackageKitTransaction {
public:
    struct Found {
        std::uint32_t info = 0;  // PkInfoEnum
        std::string identifier;  // "name;version;architecture;data"
    };

    /// `busAddress` in place of the system's bus.
    explicit PackageKitTransaction(const std::string& busAddress);
    ~PackageKitTransaction();
    PackageKitTransaction(const PackageKitTransaction&) = delete;
    PackageKitTransaction& operator=(const PackageKitTransaction&) = delete;

    /// Calls a method of the transaction and waits for its end: `seconds` at most, 0 for as long as
    /// it takes. Gives the packages that are named meanwhile.
    std::vector<Found> run(const char* method, GVariant* arguments, unsigned seconds);

private:
    struct Outcome {
        std::vector<Found> found;
        bool hasEnded = false;
        bool hasSucceeded = false;
        bool isUnavailable = false;
        std::uint32_t error = 0;  // PkErrorEnum
        std::string text;         // of the failure
    };

    void create();
    bool setHints();
    void subscribe();
    void take(const char* signal, GVariant* values);
    void end(const GError& error);
    void judge() const;

    OwnContext context_;
    GlibReference<GDBusConnection> bus_;
    std::string path_;
    std::vector<guint> subscriptions_;
    Outcome outcome_;
};

}  // namespace velto
