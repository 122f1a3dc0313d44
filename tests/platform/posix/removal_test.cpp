#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>

#include "platform/posix/FaultyFileCalls.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto {
namespace {

/// Runs something just before a folder is opened or a name removed, and refuses to remove one name.
class InterruptedCalls final : public FileCalls {
public:
    std::function<void(const std::string& name)> beforeOpen = [](const std::string&) {};
    std::function<void(const std::string& name)> beforeRemove = [](const std::string&) {};
    std::string refused;

    int open(int folder, const char* name, int flags, mode_t mode) override {
        beforeOpen(name);
        return FileCalls::open(folder, name, flags, mode);
    }
    int remove(int folder, const char* name, int flags) override {
        beforeRemove(name);
        if (name == refused) {
            errno = EACCES;
            return -1;
        }
        return FileCalls::remove(folder, name, flags);
    }
};

int removalFailure(PosixFileManager& files, const std::string& path) {
    try {
        files.removeAll(path);
        return 0;
    } catch (const FileError& error) {
        return error.code();
    }
}

class RemovalTest : public testing::Test {
protected:
    TempHome home;
    InterruptedCalls calls;
    PosixFileManager files{calls};
};

TEST_F(RemovalTest, AFileAFolderAndALinkGoAndNothingBesides) {
    home.file("tree/a/b/file", 1);
    home.file("tree/.hidden", 1);
    home.folder("tree/empty");
    home.file("beside", 1);
    files.removeAll(home.path("tree"));
    files.removeAll(home.path("beside"));
    files.removeAll(home.path("never there"));
    files.removeAll(home.path("never/there"));
    EXPECT_TRUE(files.list(home.path()).empty());
}

TEST_F(RemovalTest, WhatALinkLeadsToStays) {
    home.file("kept/file", 1);
    home.link("link", "kept");
    home.link("tree/inside", home.path("kept"));
    home.link("tree/file", home.path("kept/file"));
    files.removeAll(home.path("link/"));  // the slash would make the system follow it
    files.removeAll(home.path("tree"));
    EXPECT_FALSE(home.exists("link"));
    EXPECT_FALSE(home.exists("tree"));
    EXPECT_TRUE(home.exists("kept/file"));
}

TEST_F(RemovalTest, AFolderSwappedForALinkDoesNotLeadTheRemovalOut) {
    home.file("kept/precious", 1);
    home.file("tree/inner/file", 1);
    bool swapped = false;
    calls.beforeOpen = [&](const std::string& name) {
        if (name != "inner" || swapped) return;
        swapped = true;
        std::filesystem::rename(home.path("tree/inner"), home.path("moved"));
        home.link("tree/inner", home.path("kept"));
    };
    files.removeAll(home.path("tree"));
    EXPECT_TRUE(swapped);
    EXPECT_FALSE(home.exists("tree"));
    EXPECT_TRUE(home.exists("kept/precious"));
    EXPECT_TRUE(home.exists("moved/file"));
}

TEST_F(RemovalTest, AnEnteredFolderSwappedForALinkDoesNotLeadTheRemovalOut) {
    home.file("kept/file", 1);
    home.file("tree/inner/file", 1);
    bool swapped = false;
    calls.beforeRemove = [&](const std::string& name) {
        if (name != "file" || swapped) return;
        swapped = true;
        std::filesystem::rename(home.path("tree/inner"), home.path("moved"));
        home.link("tree/inner", home.path("kept"));
    };
    // The folder that it has entered is emptied where it is now; the link in its place is no
    // folder, and the removal ends there.
    EXPECT_EQ(removalFailure(files, home.path("tree")), ENOTDIR);
    EXPECT_TRUE(home.exists("kept/file"));
    EXPECT_FALSE(home.exists("moved/file"));
}

TEST_F(RemovalTest, AFileThatBecomesAFolderGoesToo) {
    home.file("tree/name", 1);
    bool swapped = false;
    calls.beforeRemove = [&](const std::string& name) {
        if (name != "name" || swapped) return;
        swapped = true;
        std::filesystem::remove(home.path("tree/name"));
        home.file("tree/name/inside", 1);
    };
    files.removeAll(home.path("tree"));
    EXPECT_FALSE(home.exists("tree"));
}

TEST_F(RemovalTest, AFolderThatAProgramFillsAgainIsEmptiedAgain) {
    home.file("cache/file", 1);
    int refills = 3;
    calls.beforeRemove = [&](const std::string& name) {
        if (name == "cache" && refills-- > 0) home.file("cache/late/file", 1);
    };
    files.removeAll(home.path("cache"));
    EXPECT_FALSE(home.exists("cache"));
}

TEST_F(RemovalTest, AFolderThatIsFilledForEverIsReportedAtLast) {
    home.folder("cache");
    calls.beforeRemove = [&](const std::string& name) {
        if (name == "cache") home.file("cache/late", 1);
    };
    EXPECT_EQ(removalFailure(files, home.path("cache")), ENOTEMPTY);
}

TEST_F(RemovalTest, ATreeDeeperThanDescriptorsAndPathsGoIsRemoved) {
    // No path of the length that systems take (4,096 bytes) reaches the lowest of the 300 levels.
    const std::string name(30, 'd');
    int folder = open(home.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < 300; ++level) {
        ASSERT_EQ(mkdirat(folder, name.c_str(), 0700), 0);
        close(openat(folder, "beside", O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        const int next = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_GE(next, 0);
        close(folder);
        folder = next;
    }
    close(folder);
    rlimit old{};
    getrlimit(RLIMIT_NOFILE, &old);
    const rlimit few{.rlim_cur = 128, .rlim_max = old.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    const int reason = removalFailure(files, home.path(name));
    setrlimit(RLIMIT_NOFILE, &old);
    EXPECT_EQ(reason, 0);
    EXPECT_FALSE(home.exists(name));
}

TEST_F(RemovalTest, ADeepFolderThatIsMovedAwayWhileItIsEmptiedEndsTheRemoval) {
    std::string path = "d";
    for (int level = 1; level < 100; ++level)
        path += "/d";
    home.file(path + "/last", 1);
    home.file("other/kept", 1);
    bool moved = false;
    calls.beforeRemove = [&](const std::string& name) {
        if (name != "last" || moved) return;
        moved = true;
        // The folder at level 20, whose handle is closed by now, goes elsewhere with all below it.
        std::filesystem::rename(home.path(path.substr(0, 2 * 20 - 1)), home.path("other/d"));
    };
    EXPECT_EQ(removalFailure(files, home.path("d")), ESTALE);
    EXPECT_TRUE(home.exists("other/kept"));
}

TEST_F(RemovalTest, TheErrorNamesTheItemThatCannotBeRemoved) {
    home.file("tree/inner/file", 1);
    calls.refused = "file";
    try {
        files.removeAll(home.path("tree"));
        FAIL();
    } catch (const FileError& error) {
        EXPECT_EQ(error.path(), home.path("tree/inner/file"));
        EXPECT_EQ(error.code(), EACCES);
    }
    EXPECT_TRUE(home.exists("tree/inner/file"));
}

TEST_F(RemovalTest, AFailureAnywhereIsReportedAndASecondTryFinishes) {
    for (int step = 0;; ++step) {
        home.file("tree/a/one", 1);
        home.file("tree/two", 1);
        FaultyFileCalls faulty;
        faulty.failAt = step;
        PosixFileManager limited(faulty);
        const bool failed = removalFailure(limited, home.path("tree")) != 0;
        EXPECT_EQ(home.exists("tree"), failed) << step;
        files.removeAll(home.path("tree"));
        EXPECT_FALSE(home.exists("tree"));
        if (!failed) break;
        ASSERT_LT(step, 50);
    }
}

TEST_F(RemovalTest, APathThatNamesNoItemIsRefused) {
    for (const char* path : {"", "/", "//", "relative"}) {
        EXPECT_EQ(removalFailure(files, path), EINVAL) << path;
    }
    EXPECT_EQ(removalFailure(files, home.path(".")), EINVAL);
    EXPECT_EQ(removalFailure(files, home.path("folder/..")), EINVAL);
    EXPECT_EQ(removalFailure(files, home.path("cut") + std::string("\0x", 2)), EINVAL);
    EXPECT_TRUE(std::filesystem::exists(home.path()));
}

}  // namespace
}  // namespace velto
