#include "uninstall/removal_rules.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"

namespace velto {
namespace {

const HomeLayout mac = HomeLayout::macOS("/Users/ana");
const HomeLayout freedesktopHome = HomeLayout::freedesktop(
    "/home/ana", [](const std::string&) { return std::nullopt; }, "");
const std::string bundle = "/Applications/Foo.app";

bool isSafe(const std::string& path) { return isSafeToRemove(path, bundle, mac); }

TEST(RemovalRules, WhatAnApplicationLeavesMayBeRemoved) {
    for (const char* path :
         {"/Users/ana/Library/Caches/com.example.foo", "/Users/ana/Library/Preferences/a.plist",
          "/Users/ana/x", "/Applications/Other.app", "/Library/LaunchDaemons/com.example.foo.plist",
          "/Applications/Foo.app", "/Applications//Foo.app/", "/Applications/x/../Foo.app"}) {
        EXPECT_TRUE(isSafe(path)) << path;
    }
}

TEST(RemovalRules, EverySharedFolderStays) {
    const char* const ofHome[] = {"Library",
                                  "Library/Application Support",
                                  "Library/Application Scripts",
                                  "Library/Caches",
                                  "Library/Containers",
                                  "Library/Cookies",
                                  "Library/Group Containers",
                                  "Library/HTTPStorages",
                                  "Library/LaunchAgents",
                                  "Library/Logs",
                                  "Library/Preferences",
                                  "Library/Logs/DiagnosticReports",
                                  "Library/Application Support/CrashReporter",
                                  "Library/Saved Application State",
                                  "Library/WebKit",
                                  "Applications"};
    for (const char* folder : ofHome) {
        const std::string path = std::string("/Users/ana/") + folder;
        EXPECT_FALSE(isSafe(path)) << path;
        EXPECT_FALSE(isSafe(path + "/")) << path;
        EXPECT_FALSE(isSafe(path + "/x/..")) << path;
        EXPECT_TRUE(isSafe(path + "/x")) << path;
        EXPECT_TRUE(isProtectedPlace(path, mac)) << path;
    }
    for (const char* path :
         {"/Applications", "/Applications/Utilities", "/Library", "/Library/Application Support",
          "/Library/Caches", "/Library/LaunchAgents", "/Library/LaunchDaemons", "/Library/Logs",
          "/Library/Preferences"}) {
        EXPECT_FALSE(isSafe(path)) << path;
        EXPECT_TRUE(isSafe(std::string(path) + "/x")) << path;
    }
}

TEST(RemovalRules, TheSystemAndOtherPeoplesFilesStay) {
    for (const char* folder :
         {"/System", "/usr", "/bin", "/sbin", "/etc", "/var", "/private", "/opt"}) {
        EXPECT_FALSE(isSafe(folder)) << folder;
        EXPECT_FALSE(isSafe(std::string(folder) + "/x")) << folder;
    }
    for (const char* path : {"", "/", "relative", "/Users/ana", "/Users/ana/", "/Users/anais/x",
                             "/Users/ana/../berta/x", "/Users/ana/..", "/tmp/x", "/ApplicationsX/a",
                             "/LibraryX/a", "/Users"}) {
        EXPECT_FALSE(isSafe(path)) << path;
    }
}

TEST(RemovalRules, AHomeInsideAFolderOfTheSystemIsOutOfReach) {
    const HomeLayout layout = HomeLayout::macOS("/private/var/ana");
    EXPECT_FALSE(isSafeToRemove("/private/var/ana/Library/Caches/x", bundle, layout));
}

TEST(RemovalRules, NothingIsTheBundleWithoutABundle) {
    EXPECT_FALSE(isSafeToRemove("", "", mac));
    EXPECT_FALSE(isSafeToRemove("relative", "other", mac));
}

TEST(RemovalRules, OnALinuxHomeTheFoldersOfAllApplicationsStay) {
    const auto isSafeThere = [](const std::string& path) {
        return isSafeToRemove("/home/ana/" + path, "/home/ana/Applications/Foo.AppImage",
                              freedesktopHome);
    };
    for (const char* path : {".config",
                             ".local",
                             ".local/share",
                             ".local/state",
                             ".local/bin",
                             ".cache",
                             ".var",
                             ".var/app",
                             ".config/autostart",
                             ".config/systemd",
                             ".config/systemd/user",
                             ".local/share/applications",
                             ".local/share/Trash",
                             ".local/share/Trash/files/x",
                             ".ssh",
                             ".ssh/id_ed25519",
                             ".gnupg",
                             ".gnupg/private-keys-v1.d/x",
                             ".bashrc",
                             ".mozilla",
                             ".profile",
                             "Documents",
                             "Downloads",
                             "Pictures",
                             "Music",
                             "Videos",
                             "Desktop",
                             "Applications",
                             "",
                             "../berta/x",
                             "../../usr/bin/env",
                             ".local/share/flatpak"}) {
        EXPECT_FALSE(isSafeThere(path)) << path;
    }
    for (const char* path :
         {".config/foo", ".cache/foo", ".local/share/foo", ".local/state/foo", ".var/app/org.foo",
          ".config/autostart/foo.desktop", ".config/systemd/user/foo.service", ".local/bin/foo",
          "Applications/Foo.AppImage", "Applications/Other.AppImage", "apps/foo"}) {
        EXPECT_TRUE(isSafeThere(path)) << path;
    }
    EXPECT_TRUE(isProtectedPlace("/home/ana/.ssh/id", freedesktopHome));
    EXPECT_TRUE(isProtectedPlace("/home/ana/.bashrc", freedesktopHome));
    EXPECT_FALSE(isProtectedPlace("/usr/bin/env", freedesktopHome));
}

TEST(RemovalRules, OutOfReachIsNotProtected) {
    for (const char* path : {"/Users/other/Library/Mail", "/Users/anais/Library/Mail", "/System/x",
                             "/Library", "/Applications"}) {
        EXPECT_FALSE(isProtectedPlace(path, mac)) << path;
    }
    for (const char* path : {"/Users/ana", "/Users/ana/Library/Mail/x", "/Users/ana/Library"}) {
        EXPECT_TRUE(isProtectedPlace(path, mac)) << path;
    }
    EXPECT_TRUE(isProtectedPlace("/private/var/ana/x", HomeLayout::macOS("/private/var/ana")));
}

// Classification

TEST(RemovalRules, EveryErrorHasItsReason) {
    using Domain = RemovalError::Domain;
    using Reason = RemovalReason;
    const std::string inside = "/Users/ana/Library/x";
    const std::string outside = "/Library/x";
    struct Row {
        RemovalError error;
        Reason inHome;
        Reason elsewhere;
    };
    const auto trash = [](TrashError::Reason reason) {
        return RemovalError{Domain::trash, static_cast<int>(reason)};
    };
    const Row rows[] = {
        {trash(TrashError::Reason::outsideHome), Reason::admin, Reason::admin},
        {trash(TrashError::Reason::protected_), Reason::protected_, Reason::protected_},
        {trash(TrashError::Reason::notFound), Reason::gone, Reason::gone},
        {trash(TrashError::Reason::alreadyInTrash), Reason::other, Reason::other},
        {{Domain::posix, 1}, Reason::perm, Reason::admin},
        {{Domain::posix, 13}, Reason::perm, Reason::admin},
        {{Domain::posix, 2}, Reason::gone, Reason::gone},
        {{Domain::posix, 16}, Reason::busy, Reason::busy},
        {{Domain::posix, 26}, Reason::busy, Reason::busy},
        {{Domain::posix, 5}, Reason::other, Reason::other},
        {{Domain::posix, 513}, Reason::other, Reason::other},
        {{Domain::cocoa, 513}, Reason::perm, Reason::admin},
        {{Domain::cocoa, 257}, Reason::perm, Reason::admin},
        {{Domain::cocoa, 4}, Reason::gone, Reason::gone},
        {{Domain::cocoa, 260}, Reason::gone, Reason::gone},
        {{Domain::cocoa, 512}, Reason::other, Reason::other},
        {{Domain::cocoa, 2}, Reason::other, Reason::other},
        {{Domain::other, 1}, Reason::other, Reason::other},
        {{Domain::other, 513}, Reason::other, Reason::other},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(classify(row.error, inside, mac), row.inHome)
            << static_cast<int>(row.error.domain) << " " << row.error.code;
        EXPECT_EQ(classify(row.error, outside, mac), row.elsewhere)
            << static_cast<int>(row.error.domain) << " " << row.error.code;
    }
}

TEST(RemovalRules, TheCodesHaveTheirNumbers) {
    const char* const codes[] = {"admin", "perm", "busy", "gone", "protected", "other"};
    for (int number = 0; number < 6; ++number)
        EXPECT_EQ(code(static_cast<RemovalReason>(number)), codes[number]);
}

TEST(RemovalRules, AnExceptionStatesItsError) {
    EXPECT_EQ(removalError(FileError("remove", "/x", EBUSY)),
              (RemovalError{RemovalError::Domain::posix, EBUSY}));
    EXPECT_EQ(removalError(TrashError(TrashError::Reason::notFound)),
              (RemovalError{RemovalError::Domain::trash,
                            static_cast<int>(TrashError::Reason::notFound)}));
    EXPECT_EQ(removalError(std::runtime_error("x")), RemovalError{});
}

}  // namespace
}  // namespace velto
