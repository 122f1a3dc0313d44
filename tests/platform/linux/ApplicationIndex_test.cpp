#include "platform/linux/ApplicationIndex.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

const std::vector<ListedApplication> installed{
    {"org.mozilla.firefox", "Firefox", "/usr/share/applications/org.mozilla.firefox.desktop",
     "/usr/lib/firefox/firefox", false},
    {"chromium", "Chromium", "/usr/share/applications/chromium.desktop", "/usr/bin/chromium",
     false},
    {"org.gnome.TextEditor", "Text Editor", "/e", "/usr/bin/gnome-text-editor", false},
    {"org.gimp.GIMP", "GIMP", "/g", "/usr/bin/flatpak", true, "", "org.gimp.GIMP", ""},
    {"snapped_snapped", "Snapped", "/s", "/usr/bin/snap", true, "", "", "snapped"},
    {"script-thing", "Script", "/p", "/usr/bin/python3.11", true, "/home/me/thing/main.py", "", ""},
    {"tweaks", "Tweaks", "/w", "/usr/bin/gnome-tweaks", false},
    {"tool", "Tool", "/t", "/home/me/Downloads/tool", false},
    {"own", "Own", "/o", "/home/me/apps/own/own", false},
};

struct ApplicationIndexTest : testing::Test {
    ApplicationIndex index{installed};

    std::string find(std::string_view group, const std::string& executable,
                     const std::string& script = {}) {
        const RunningApp* found = index.find(group, executable, script);
        return found == nullptr ? "" : found->name;
    }
};

TEST_F(ApplicationIndexTest, AProgramIsTheApplicationThatItsEntryStarts) {
    EXPECT_EQ(find("", "/usr/bin/gnome-text-editor"), "Text Editor");
    const RunningApp* found = index.find("", "/usr/lib/firefox/firefox");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->bundle, "org.mozilla.firefox");
    EXPECT_EQ(found->path, "/usr/share/applications/org.mozilla.firefox.desktop");
}

TEST_F(ApplicationIndexTest, HelpersInTheApplicationsFolderAreItsToo) {
    EXPECT_EQ(find("", "/usr/lib/firefox/gmp/plugin-container"), "Firefox");
    EXPECT_EQ(find("", "/home/me/apps/own/lib/helper"), "Own");
    EXPECT_EQ(find("", "/usr/lib/firefoxes/other"), "");
}

TEST_F(ApplicationIndexTest, AScriptStandsForTheProgramsInTheFolderOfItsName) {
    EXPECT_EQ(find("", "/usr/lib/chromium/chromium"), "Chromium");
}

TEST_F(ApplicationIndexTest, WhatLiesBesideAProgramInASharedFolderIsNotIts) {
    EXPECT_EQ(find("", "/usr/bin/cat"), "");
    EXPECT_EQ(find("", "/home/me/Downloads/other"), "");
    EXPECT_EQ(find("", "/home/me/Downloads/tool"), "Tool");
}

TEST_F(ApplicationIndexTest, AnInterpreterIsNoApplicationByItself) {
    EXPECT_EQ(find("", "/usr/bin/python3.11"), "");
    EXPECT_EQ(find("", "/usr/bin/flatpak"), "");
}

TEST_F(ApplicationIndexTest, TheDesktopsUnitTellsWhatTheProgramDoesNot) {
    EXPECT_EQ(find("0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                   "app-flatpak-org.gimp.GIMP-4711.scope\n",
                   "/app/bin/gimp-2.10"),
              "GIMP");
    EXPECT_EQ(find("0::/user.slice/app.slice/app-gnome-script\\x2dthing-99.scope\n",
                   "/usr/bin/python3.11"),
              "Script");
    EXPECT_EQ(find("0::/a/app-tool@0a1b2c.service\n", "/bin/sh"), "Tool");
    EXPECT_EQ(find("0::/a/snap.snapped.snapped-0f3c-11ee-b962.scope\n", "/snap/snapped/1/x"),
              "Snapped");
    EXPECT_EQ(find("0::/a/app-gnome-unknown-1.scope\n", "/usr/lib/firefox/firefox"), "Firefox");
}

TEST_F(ApplicationIndexTest, AllThatRunsInASnapIsItsApplication) {
    const std::string inside = "/snap/snapped/4259/usr/lib/snapped/snapped";
    const std::string uuid = "77218fe2-ab29-4bc5-a7be-30a9d58bbaf2";
    EXPECT_EQ(find("0::/user.slice/snap.snapped.snapped-" + uuid + ".scope\n", inside), "Snapped");
    EXPECT_EQ(find("0::/user.slice/snap.snapped.snapped." + uuid + ".scope\n", inside), "Snapped");
    EXPECT_EQ(find("0::/user.slice/snap.snapped.helper-" + uuid + ".scope\n", "/usr/bin/x"),
              "Snapped");
    EXPECT_EQ(find("0::/user.slice/session-2.scope\n", inside), "Snapped");
    EXPECT_EQ(find("", "/var/lib/snapd/snap/snapped/12/bin/x"), "Snapped");
    EXPECT_EQ(find("", "/snap/snappedlike/12/bin/x"), "");
    EXPECT_EQ(find("", "/snap/bin/snapped"), "");
}

TEST_F(ApplicationIndexTest, AScriptIsItsApplicationAndItsInterpreterIsNot) {
    EXPECT_EQ(find("", "/usr/bin/python3.12", "/usr/bin/gnome-tweaks"), "Tweaks");
    EXPECT_EQ(find("", "/usr/bin/python3.12", "/usr/share/gnome-tweaks/main.py"), "Tweaks");
    EXPECT_EQ(find("", "/usr/bin/python3.12", "/home/me/thing/main.py"), "Script");
    EXPECT_EQ(find("", "/usr/bin/python3.12", "/home/me/thing/other.py"), "");
    EXPECT_EQ(find("", "/usr/bin/python3.12"), "");
}

TEST_F(ApplicationIndexTest, AProcessOfNoApplicationIsNobodys) {
    EXPECT_EQ(find("0::/init.scope\n", ""), "");
    EXPECT_EQ(find("garbage", "relative"), "");
}

}  // namespace
}  // namespace velto
