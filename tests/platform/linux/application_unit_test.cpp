#include "platform/linux/application_unit.h"

#include <gtest/gtest.h>

#include <string>

namespace velto {
namespace {

ApplicationUnit in(const std::string& unit) {
    return applicationUnitIn("0::/user.slice/user-1000.slice/user@1000.service/app.slice/" + unit +
                             "\n");
}

ApplicationUnit entry(const std::string& id) { return {.entry = id}; }
ApplicationUnit flatpak(const std::string& id) { return {.entry = id, .flatpak = id}; }
ApplicationUnit snap(const std::string& name, const std::string& id) {
    return {.entry = id, .snap = name};
}

// The names are those of desktops as people have listed them with systemd-cgls and ps in reports of
// GNOME Shell, Plasma, rofi, Flatpak and snapd.
TEST(ApplicationUnit, AProgramIsTheApplicationWhoseUnitTheDesktopMadeForIt) {
    EXPECT_EQ(in("app-firefox-1234.scope"), entry("firefox"));
    EXPECT_EQ(in("app-gnome-org.gnome.Nautilus-4321.scope"), entry("org.gnome.Nautilus"));
    EXPECT_EQ(in("app-gnome-firefox_firefox-2921.scope"), entry("firefox_firefox"));
    EXPECT_EQ(in("app-KDE-org.kde.kate-1234.scope"), entry("org.kde.kate"));
    EXPECT_EQ(in("app-org.kde.konsole@a1b2.service"), entry("org.kde.konsole"));
    EXPECT_EQ(in("app-brave\\x2dbrowser@1.service"), entry("brave-browser"));
    EXPECT_EQ(in("app-gnome-a\\x2db@autostart.service"), entry("a-b"));
    EXPECT_EQ(in("app-rofi-signal\\x2ddesktop-12745.service"), entry("signal-desktop"));
    EXPECT_EQ(in("dbus-:1.2-org.gnome.Ptyxis@1.service"), entry("org.gnome.Ptyxis"));
    EXPECT_EQ(in("app-gnome-x-1.scope/inner.service"), entry("x"));
}

TEST(ApplicationUnit, AFlatpakIsKnownByItsScope) {
    EXPECT_EQ(in("app-flatpak-org.gimp.GIMP-9182.scope"), flatpak("org.gimp.GIMP"));
    EXPECT_EQ(in("app-flatpak-com.opera.opera\\x2dgx-1295026887.scope"),
              flatpak("com.opera.opera-gx"));
    EXPECT_EQ(in("app-flatpak-org.telegram.desktop@12345.service"),
              flatpak("org.telegram.desktop"));
    EXPECT_EQ(in("flatpak-org.gimp.GIMP-4711.scope"), flatpak("org.gimp.GIMP"));
    EXPECT_EQ(in("app-gnome-flatpak-12.scope"), entry("flatpak"));
}

TEST(ApplicationUnit, ASnapIsKnownInEverySpelling) {
    const std::string uuid = "77218fe2-ab29-4bc5-a7be-30a9d58bbaf2";
    const auto firefox = snap("firefox", "firefox_firefox");
    EXPECT_EQ(in("snap.firefox.firefox-" + uuid + ".scope"), firefox);
    EXPECT_EQ(in("snap.firefox.firefox." + uuid + ".scope"), firefox);
    EXPECT_EQ(in("snap.firefox.firefox-1234.scope"), firefox);
    EXPECT_EQ(in("snap.firefox.firefox.scope"), firefox);
    EXPECT_EQ(in("snap.firefox_dev.firefox-" + uuid + ".scope"),
              snap("firefox_dev", "firefox_dev_firefox"));
    EXPECT_EQ(in("snap.snap-store.ubuntu-software-" + uuid + ".scope"),
              snap("snap-store", "snap-store_ubuntu-software"));
    EXPECT_EQ(in("snap.video-cafe.cafe-" + uuid + ".scope"), snap("video-cafe", "video-cafe_cafe"));
    EXPECT_EQ(in("snap.syncthing.daemon.service"), snap("syncthing", "syncthing_daemon"));
    EXPECT_EQ(in("snap.firefox.hook.configure-" + uuid + ".scope"), snap("firefox", ""));
}

TEST(ApplicationUnit, OfSeveralHierarchiesTheOneThatKnowsMostCounts) {
    EXPECT_EQ(
        applicationUnitIn("8:pids:/user.slice/user-1000.slice\n7:freezer:/snap.chromium\n"
                          "1:name=systemd:/user.slice/user-1000.slice/user@1000.service/"
                          "snap.chromium.chromium.8b8574d2-116e-411a-9bba-c145e8cc0aa2.scope\n"
                          "0::/user.slice\n"),
        snap("chromium", "chromium_chromium"));
    EXPECT_EQ(applicationUnitIn("7:freezer:/snap.chromium\n0::/user.slice/session-2.scope\n"),
              snap("chromium", ""));
}

TEST(ApplicationUnit, WhatIsNoApplicationsUnitIsNobodys) {
    for (const char* unit :
         {"app-org.gnome.Terminal.slice/vte-spawn-1234.scope", "session-2.scope", "app-.scope",
          "snap.foo.slice", "snap-core20-1974.mount", "dbus.service", "dbus-broker.service",
          "run-r25f0f897ba1c452087d2fd8e5ce07f59.scope", "flatpak-session-helper.service/x",
          "xdg-desktop-portal.service", "app-.slice", "snap..scope"}) {
        EXPECT_EQ(in(unit), ApplicationUnit{}) << unit;
    }
    EXPECT_EQ(in("app-gnome-bad\\xzz-1.scope"), entry("bad\\xzz"));
    EXPECT_EQ(applicationUnitIn(""), ApplicationUnit{});
    EXPECT_EQ(applicationUnitIn("garbage"), ApplicationUnit{});
}

}  // namespace
}  // namespace velto
