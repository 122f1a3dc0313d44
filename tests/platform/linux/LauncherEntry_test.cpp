#include "platform/linux/LauncherEntry.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/glib_pointers.h"

namespace velto {
namespace {

using testing::ElementsAre;

/// A dock: hears the signals of others on a connection and a thread of its own.
class Dock {
public:
    explicit Dock(const char* address)
        : context_(g_main_context_new()), loop_(g_main_loop_new(context_, FALSE)) {
        g_main_context_push_thread_default(context_);
        bus_.reset(connected(address));
        g_dbus_connection_signal_subscribe(bus_.get(), nullptr, "com.canonical.Unity.LauncherEntry",
                                           "Update", nullptr, nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
                                           &Dock::hear, this, nullptr);
        // Its answer comes after the subscription is in force.
        g_variant_unref(g_dbus_connection_call_sync(
            bus_.get(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr,
            nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        g_main_context_pop_thread_default(context_);
        thread_ = std::thread([this] { g_main_loop_run(loop_); });
    }
    ~Dock() {
        g_main_context_invoke(
            context_,
            +[](gpointer loop) -> gboolean {
                g_main_loop_quit(static_cast<GMainLoop*>(loop));
                return G_SOURCE_REMOVE;
            },
            loop_);
        thread_.join();
        bus_.reset();
        g_main_loop_unref(loop_);
        g_main_context_unref(context_);
    }
    Dock(const Dock&) = delete;
    Dock& operator=(const Dock&) = delete;

    static GDBusConnection* connected(const char* address) {
        return g_dbus_connection_new_for_address_sync(
            address,
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
    }

    std::vector<std::string> heard(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(30), [&] { return heard_.size() >= count; });
        return heard_;
    }

private:
    static void hear(GDBusConnection*, const char*, const char* path, const char*, const char*,
                     GVariant* values, gpointer self) {
        Dock& dock = *static_cast<Dock*>(self);
        const GlibText shown(g_variant_print(values, FALSE));
        const std::lock_guard lock(dock.mutex_);
        dock.heard_.push_back(std::string(path).substr(0, 35) + " " + shown.get());
        dock.changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> heard_;
    GMainContext* context_;
    GMainLoop* loop_;
    GlibReference<GDBusConnection> bus_;
    std::thread thread_;
};

class LauncherEntryTest : public testing::Test {
protected:
    LauncherEntryTest() : service_(g_test_dbus_new(G_TEST_DBUS_NONE)) { g_test_dbus_up(service_); }
    ~LauncherEntryTest() override {
        g_test_dbus_down(service_);
        g_object_unref(service_);
    }
    const char* address() const { return g_test_dbus_get_bus_address(service_); }

    GTestDBus* service_;
};

TEST_F(LauncherEntryTest, DocksHearOfTheProgressUnderTheNameOfTheDesktopEntry) {
    Dock dock(address());
    const GlibReference<GDBusConnection> bus(Dock::connected(address()));
    LauncherEntry entry(bus.get());
    entry.showProgress(0.25);
    entry.showProgress(std::nullopt);
    entry.hideProgress();
    const std::string start =
        "/com/canonical/unity/launcherentry/ ('application://app.velto.desktop', ";
    EXPECT_THAT(dock.heard(3),
                ElementsAre(start + "{'progress': <0.25>, 'progress-visible': <true>})",
                            start + "{'progress': <0.0>, 'progress-visible': <true>})",
                            start + "{'progress': <0.0>, 'progress-visible': <false>})"));
}

TEST_F(LauncherEntryTest, WithoutABusNobodyIsTold) {
    LauncherEntry entry(nullptr);
    entry.showProgress(0.5);
    entry.hideProgress();
    const GlibReference<GDBusConnection> bus(Dock::connected(address()));
    g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    LauncherEntry late(bus.get());
    late.showProgress(0.5);
    late.hideProgress();
}

}  // namespace
}  // namespace velto
