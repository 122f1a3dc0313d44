#include "platform/linux/ProcessDescriber.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/linux/process_program.h"
#include "support/TempHome.h"

namespace velto {
namespace {

/// A recorded tree of processes, as below /proc.
struct DescriberTest : testing::Test {
    TempHome proc;
    TempHome runtime;
    const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";

    void record(int process, const std::string& group, const std::string& space = "4026531836") {
        const std::string folder = std::to_string(process);
        proc.text(folder + "/cgroup", group);
        proc.link(folder + "/ns/pid", "pid:[" + space + "]");
    }
    std::string scriptOf(const std::string& executable, const std::string& commandLine) {
        std::string zeros = commandLine;
        std::ranges::replace(zeros, ' ', '\0');
        proc.text("5/cmdline", zeros + '\0');
        return scriptOfProcess(proc.path("5"), executable);
    }
    RunningApplication describe(int process, const std::string& executable) {
        return ProcessDescriber(proc.path(), runtime.path()).describe(process, executable);
    }
};

TEST_F(DescriberTest, TheUnitTellsWhichFlatpakSnapOrEntryItIs) {
    record(10, slice + "app-flatpak-org.gimp.GIMP-9182.scope\n");
    record(11, slice + "snap.firefox.firefox-77218fe2-ab29-4bc5-a7be-30a9d58bbaf2.scope\n");
    record(12, slice + "app-gnome-org.gnome.Weather-4026.scope\n");
    EXPECT_EQ(describe(10, "/app/bin/gimp-2.10").flatpak, "org.gimp.GIMP");
    EXPECT_EQ(describe(11, "/snap/firefox/4793/usr/lib/firefox/firefox").snap, "firefox");
    EXPECT_EQ(describe(11, "/snap/firefox/4793/usr/lib/firefox/firefox").entry, "firefox_firefox");
    EXPECT_EQ(describe(12, "/usr/bin/gjs-console").entry, "org.gnome.Weather");
}

TEST_F(DescriberTest, WhatRunsInThisProgramsOwnUnitIsToldApartByNoUnit) {
    const std::string terminal = slice + "app-org.kde.konsole-4558.scope\n";
    proc.text("self/cgroup", terminal);
    record(10, terminal);
    record(11, slice + "app-org.kde.konsole-999.scope\n");
    EXPECT_EQ(describe(10, "/usr/bin/make").entry, "");
    EXPECT_EQ(describe(11, "/usr/bin/konsole").entry, "org.kde.konsole");
}

TEST_F(DescriberTest, WithoutUnitsASnapIsKnownByWhereItLies) {
    record(10, "0::/\n");
    EXPECT_EQ(describe(10, "/snap/firefox/4793/usr/lib/firefox/firefox").snap, "firefox");
    EXPECT_EQ(describe(10, "/var/lib/snapd/snap/foo/1/foo").snap, "foo");
    EXPECT_EQ(describe(10, "/home/me/snap/foo/1/foo").snap, "");
}

// What Flatpak writes into $XDG_RUNTIME_DIR/.flatpak/<instance> (its own source, and what portals
// read there).
TEST_F(DescriberTest, WithoutUnitsAFlatpakIsKnownByTheNamespaceThatItsNotesName) {
    proc.link("self/ns/pid", "pid:[4026531836]");
    runtime.text(".flatpak/2710843061/bwrapinfo.json",
                 "{\n    \"child-pid\": 20,\n    \"pid-namespace\": 4026532841\n}\n");
    runtime.text(".flatpak/2710843061/info",
                 "[Application]\nname=org.gimp.GIMP\nruntime=runtime/org.gnome.Platform/x86_64/46\n"
                 "\n[Instance]\ninstance-id=2710843061\nname=wrong\n");
    // Its first process is another's by now: nothing of this session becomes a Flatpak.
    runtime.text(".flatpak/99/bwrapinfo.json", R"({"child-pid": 30})");
    runtime.text(".flatpak/99/info", "[Application]\nname=org.ended.App\n");
    runtime.text(".flatpak/98/bwrapinfo.json", "{\"child-pid\": ");
    record(20, "0::/\n", "4026532841");
    record(21, "0::/\n", "4026532841");
    record(30, "0::/\n");
    EXPECT_EQ(describe(20, "/usr/bin/bwrap").flatpak, "org.gimp.GIMP");
    EXPECT_EQ(describe(21, "/app/bin/gimp-2.10").flatpak, "org.gimp.GIMP");
    EXPECT_EQ(describe(30, "/usr/bin/cat").flatpak, "");
}

TEST_F(DescriberTest, TheScriptOfAnInterpreterIsFoundAmongItsArguments) {
    EXPECT_EQ(scriptOf("/usr/bin/python3.12", "/usr/bin/python3 /usr/bin/gnome-tweaks"),
              "/usr/bin/gnome-tweaks");
    EXPECT_EQ(scriptOf("/usr/bin/gjs-console", "gjs -m /usr/bin/x"), "/usr/bin/x");
    EXPECT_EQ(scriptOf("/usr/bin/python3.12", "python3 -m http.server /srv"), "");
    EXPECT_EQ(
        scriptOf("/usr/bin/gjs-console", "/usr/bin/gjs-console /usr/bin/org.gnome.Weather -x"),
        "/usr/bin/org.gnome.Weather");
    EXPECT_EQ(scriptOf("/usr/bin/python3", "python3 -W ignore -u /opt/a/../b/main.py --x"),
              "/opt/b/main.py");
    EXPECT_EQ(scriptOf("/usr/lib/jvm/j/bin/java", "java -Xmx1g -cp a.jar -jar /opt/a/a.jar"),
              "/opt/a/a.jar");
    EXPECT_EQ(scriptOf("/usr/lib/electron28/electron", "electron28 --flag /usr/lib/code/app.asar"),
              "/usr/lib/code/app.asar");
    EXPECT_EQ(scriptOf("/usr/bin/dash", "sh -c /opt/a/x"), "");
    EXPECT_EQ(scriptOf("/usr/bin/python3", "python3"), "");
    EXPECT_EQ(scriptOf("/usr/bin/vlc", "vlc /home/me/film.py"), "");
    proc.link("5/cwd", "/home/me/apps/foo");
    EXPECT_EQ(scriptOf("/usr/bin/node", "node ./main.js"), "/home/me/apps/foo/main.js");
}

}  // namespace
}  // namespace velto
