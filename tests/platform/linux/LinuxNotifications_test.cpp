#include "platform/linux/LinuxNotifications.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

#include <nlohmann/json.hpp>

#include "NotificationService.h"
#include "support/TempHome.h"
#include "support/fakes.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Keeps what the service is asked.
class Desktop {
public:
    explicit Desktop(const char* busAddress)
        : service_(busAddress, {.shown = [this](const auto& shown) { keep(shown); },
                                .closed = [this](std::uint32_t number) { close(number); }}) {}

    std::vector<std::string> shown() const {
        const std::lock_guard lock(mutex_);
        return shown_;
    }
    std::vector<std::uint32_t> closed() const {
        const std::lock_guard lock(mutex_);
        return closed_;
    }
    void waitForClosing(std::size_t count = 1) const {
        std::unique_lock lock(mutex_);
        hasClosed_.wait_for(lock, std::chrono::seconds(30),
                            [&] { return closed_.size() >= count; });
    }

private:
    void keep(const NotificationService::Notification& one) {
        const std::lock_guard lock(mutex_);
        shown_.push_back(one.application + "/" + one.icon + "/" + one.title + "/" + one.body);
    }
    void close(std::uint32_t number) {
        const std::lock_guard lock(mutex_);
        closed_.push_back(number);
        hasClosed_.notify_all();
    }

    mutable std::mutex mutex_;
    mutable std::condition_variable hasClosed_;
    std::vector<std::string> shown_;
    std::vector<std::uint32_t> closed_;
    NotificationService service_;  // last: it calls the above
};

/// A session bus of the test's own.
class LinuxNotificationsTest : public testing::Test {
protected:
    LinuxNotificationsTest() : bus_(g_test_dbus_new(G_TEST_DBUS_NONE)) { g_test_dbus_up(bus_); }
    ~LinuxNotificationsTest() override {
        g_test_dbus_down(bus_);
        g_object_unref(bus_);
    }

    const char* address() const { return g_test_dbus_get_bus_address(bus_); }
    LinuxNotifications notifications() { return {*files_, log_, home_.path("Velto/shown.json")}; }

    GTestDBus* bus_;
    TempHome home_;
    std::unique_ptr<FileManager> files_ = systemFileManager();
    FakeLog log_;
};

TEST_F(LinuxNotificationsTest, TheDesktopShowsItWithTheProgramsName) {
    Desktop desktop(address());
    notifications().post("id", "Velto maintenance complete", "3 items wait in Velto Trash.");
    EXPECT_THAT(desktop.shown(), ElementsAre("Velto/app.velto/Velto maintenance complete/"
                                             "3 items wait in Velto Trash."));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxNotificationsTest, AnotherProcessTakesItBack) {
    Desktop desktop(address());
    notifications().post("id", "title", "body");
    notifications().removeAllDelivered();
    desktop.waitForClosing();
    EXPECT_THAT(desktop.closed(), ElementsAre(42u));
    EXPECT_FALSE(home_.exists("Velto/shown.json"));
    notifications().removeAllDelivered();
}

TEST_F(LinuxNotificationsTest, AllThatWerePostedAreTakenBack) {
    Desktop desktop(address());
    for (int pass = 0; pass < 3; ++pass)
        notifications().post("id", "title", "body");
    ASSERT_THAT(desktop.shown(), SizeIs(3));
    notifications().removeAllDelivered();
    desktop.waitForClosing(3);
    EXPECT_THAT(desktop.closed(), ElementsAre(42u, 43u, 44u));
    EXPECT_FALSE(home_.exists("Velto/shown.json"));
}

TEST_F(LinuxNotificationsTest, TheOneThatAnEarlierVersionKeptIsTakenBackToo) {
    Desktop desktop(address());
    notifications().post("id", "title", "body");
    auto record = nlohmann::json::parse(home_.read("Velto/shown.json"));
    record.erase("numbers");
    record["number"] = 42;
    home_.text("Velto/shown.json", record.dump());
    notifications().post("id", "title", "body");
    notifications().removeAllDelivered();
    desktop.waitForClosing(2);
    EXPECT_THAT(desktop.closed(), ElementsAre(42u, 43u));
}

TEST_F(LinuxNotificationsTest, WhatAnotherServiceHasShownIsForgottenAtTheNextPost) {
    {
        const Desktop first(address());
        notifications().post("id", "title", "body");
        notifications().post("id", "title", "body");
    }
    const Desktop second(address());
    notifications().post("id", "title", "body");
    notifications().removeAllDelivered();
    second.waitForClosing();
    notifications().post("id", "title", "body");  // answered after what was asked before
    EXPECT_THAT(second.closed(), ElementsAre(42u));
}

TEST_F(LinuxNotificationsTest, TheMemoryDoesNotGrowWithoutEnd) {
    Desktop desktop(address());
    for (int pass = 0; pass < 103; ++pass)
        notifications().post("id", "title", "body");
    notifications().removeAllDelivered();
    desktop.waitForClosing(100);
    EXPECT_EQ(desktop.closed().front(), 45u) << "the oldest are given up";
    EXPECT_EQ(desktop.closed().back(), 144u);
}

TEST_F(LinuxNotificationsTest, AnotherServicesNotificationIsNotTakenForOurs) {
    {
        const Desktop first(address());
        notifications().post("id", "title", "body");
    }
    const Desktop second(address());
    notifications().removeAllDelivered();
    notifications().post("id", "title", "body");  // answered after what was asked before
    EXPECT_THAT(second.closed(), IsEmpty());
}

TEST_F(LinuxNotificationsTest, WithoutAServiceTheLogTellsWhy) {
    notifications().post("id", "title", "body");
    ASSERT_THAT(log_.lines(), SizeIs(1));
    EXPECT_THAT(log_.lines().front(), HasSubstr("Velto ▶ no se pudo entregar la notificación: "));
    EXPECT_FALSE(home_.exists("Velto/shown.json"));
}

TEST_F(LinuxNotificationsTest, ADamagedMemoryIsForgotten) {
    home_.text("Velto/shown.json", "{\"bus\":");
    notifications().removeAllDelivered();
    EXPECT_FALSE(home_.exists("Velto/shown.json"));
}

}  // namespace
}  // namespace velto
