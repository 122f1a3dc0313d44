#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "DesktopWorld.h"
#include "uninstall/desktop_applications.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DesktopRunning : public testing::Test, protected DesktopWorld {};

TEST_F(DesktopRunning, AProgramThatRunsIsAnApplicationThatRuns) {
    const std::string path = program("Applications/Foobar.AppImage");
    userEntry("foobar", "Foobar", "env LANG=C " + path);
    machine.running.add({.executable = path});
    const auto found = find("Foobar");
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->running);
    EXPECT_EQ(found->last, machine.clock.time);
    EXPECT_EQ(usage.launches().at("foobar"), machine.clock.time);
}

TEST_F(DesktopRunning, AFlatpakOrSnapThatRunsIsSeenToRun) {
    home.folder(".local/share/flatpak/app/org.acme.Mine");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", "/bin/true run org.acme.Mine", "X-Flatpak=org.acme.Mine\n");
    entry(disk.path("snapd/desktop/applications/office_writer.desktop"), "Writer", "/bin/true",
          "X-SnapInstanceName=office\n");
    entry(disk.path("snapd/desktop/applications/office_calc.desktop"), "Calc", "/bin/true",
          "X-SnapInstanceName=office\n");
    EXPECT_FALSE(find("Mine")->running || find("Writer")->running || find("Calc")->running);
    machine.running.add({.executable = "/app/bin/mine", .flatpak = "org.acme.Mine"});
    machine.running.add(
        {.executable = "/snap/office/9/writer", .entry = "office_writer", .snap = "office"});
    EXPECT_TRUE(find("Mine")->running && find("Writer")->running);
    EXPECT_FALSE(find("Calc")->running);
    EXPECT_TRUE(usage.launches().contains("org.acme.Mine"));
    EXPECT_TRUE(usage.launches().contains("office_writer"));
}

TEST_F(DesktopRunning, WhatRunsInASandboxIsNotTakenForAProgramOfTheSystem) {
    systemEntry("sleeper", "Sleeper", "/bin/sleep");
    const std::string sleeper = std::filesystem::canonical("/bin/sleep");
    machine.running.add({.executable = sleeper, .flatpak = "org.acme.Other"});
    EXPECT_FALSE(find("Sleeper")->running);
    machine.running.add({.executable = sleeper});
    EXPECT_TRUE(find("Sleeper")->running);
}

TEST_F(DesktopRunning, AProgramThatAnInterpreterRunsIsSeenToRunByItsScriptOrItsUnit) {
    const std::string script = program("apps/notes/notes");
    const std::string python = "/usr/bin/python3.12";
    home.link("notes-link", "apps/notes/notes");
    userEntry("notes", "Notes", script);
    userEntry("told", "Told", "sh " + program("scripts/told.py"));
    systemEntry("org.acme.Weather", "Weather", "sh -c weather");
    machine.running.add({.executable = python, .script = "/usr/lib/other.py"});
    EXPECT_FALSE(find("Notes")->running || find("Told")->running || find("Weather")->running);
    machine.running.add({.executable = python, .script = home.path("notes-link")});
    EXPECT_TRUE(find("Notes")->running);
    machine.running.processes.back()->application.script = home.path("apps/notes/lib/window.py");
    EXPECT_TRUE(find("Notes")->running);
    machine.running.add({.executable = python, .script = home.path("scripts/told.py")});
    EXPECT_TRUE(find("Told")->running);
    machine.running.add({.executable = "/usr/bin/gjs-console", .entry = "org.acme.Weather"});
    EXPECT_TRUE(find("Weather")->running);
    EXPECT_EQ(remover.quitApp(*find("Notes")), 1);
    EXPECT_EQ(remover.quitApp(*find("Told")), 1);
    EXPECT_EQ(remover.quitApp(*find("Weather")), 1);
    EXPECT_FALSE(machine.running.processes.front()->terminated);
}

TEST_F(DesktopRunning, AFlatpakIsAskedToQuitAndNotItsSandbox) {
    const std::string path = home.folder(".local/share/flatpak/app/org.acme.Mine");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", "/bin/true run org.acme.Mine", "X-Flatpak=org.acme.Mine\n");
    const auto add = [&](const std::string& executable) -> FakeRunningApplications::Process& {
        return machine.running.add({.executable = executable, .flatpak = "org.acme.Mine"});
    };
    auto& outer = add("/usr/bin/bwrap");
    auto& proxy = add("/usr/bin/xdg-dbus-proxy");
    auto& window = add("/app/bin/mine");
    auto& helper = add("/app/lib/helper");
    auto& other = machine.running.add({.executable = "/app/bin/mine", .flatpak = "org.acme.Two"});
    // The sandbox goes when nothing is left in it.
    machine.sleeper.onSleep = [&] { outer.terminated = proxy.terminated = true; };
    EXPECT_EQ(remover.quitApp(*apps.readApp(path)), 4);
    EXPECT_EQ(window.asked, 1);
    EXPECT_EQ(helper.asked, 1);
    EXPECT_EQ(outer.asked + proxy.asked, 0);
    EXPECT_EQ(outer.forced + proxy.forced + window.forced + helper.forced, 0);
    EXPECT_FALSE(other.terminated);
}

TEST_F(DesktopRunning, AFlatpakThatDoesNotListenIsEndedWithItsSandboxAfterTwoSeconds) {
    const std::string path = home.folder(".local/share/flatpak/app/org.acme.Mine");
    entry(home.path(".local/share/flatpak/exports/share/applications/org.acme.Mine.desktop"),
          "Mine", "/bin/true run org.acme.Mine", "X-Flatpak=org.acme.Mine\n");
    auto& outer = machine.running.add({.executable = "/usr/bin/bwrap", .flatpak = "org.acme.Mine"});
    auto& window = machine.running.add({.executable = "/app/bin/m", .flatpak = "org.acme.Mine"});
    window.ignoresTerminate = true;
    const double start = machine.clock.time;
    EXPECT_EQ(remover.quitApp(*apps.readApp(path)), 2);
    EXPECT_GE(machine.clock.time - start, 2.0);
    EXPECT_EQ(window.forced, 1);
    EXPECT_EQ(outer.forced, 1);
}

TEST_F(DesktopRunning, WhatOnlyMayBeTheApplicationIsNotEnded) {
    // Programs in a folder that several applications share, and what a terminal runs.
    entry(disk.path("usr/share/applications/top.desktop"), "Top", "/bin/sleep -e /bin/cat");
    auto& process = machine.running.add({.executable = std::filesystem::canonical("/bin/sleep")});
    EXPECT_TRUE(find("Top")->running);
    EXPECT_EQ(remover.quitApp(*find("Top")), 0);
    EXPECT_FALSE(process.terminated);
}

}  // namespace
}  // namespace velto
