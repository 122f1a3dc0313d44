#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/PosixFileManager.h"
#include "platform/removal_check.h"
#include "support/TempHome.h"

namespace velto {
namespace {

constexpr uid_t nobody = 65534;

/// The reason for which "tree" cannot be removed as that user, 0 for none.
int reasonAs(uid_t user, const TempHome& home) {
    const pid_t child = fork();
    if (child == 0) {
        if (user != geteuid() && (setgid(user) != 0 || setuid(user) != 0)) _exit(255);
        PosixFileManager files;
        try {
            requireRemovable(*files.openFolder(home.path(), FolderPath::withoutLinks), "tree");
        } catch (const FileError& error) {
            _exit(error.code());
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(RequireRemovable, AUsersOwnThingsAreRemovable) {
    TempHome home;
    home.text("tree/a/b/c", "x");
    home.link("tree/link", "/etc");
    home.folder("tree/empty");
    chmod(home.path("tree/a/b").c_str(), 0500);  // opened up before it is emptied
    EXPECT_EQ(reasonAs(geteuid(), home), 0);
    chmod(home.path("tree/a/b").c_str(), 0700);
}

TEST(RequireRemovable, NothingThereIsNoError) {
    TempHome home;
    EXPECT_EQ(reasonAs(geteuid(), home), 0);
}

TEST(RequireRemovable, AFolderOfSomebodyElseInsideIsToldBeforehand) {
    if (geteuid() != 0) GTEST_SKIP() << "only the administrator can make such a folder";
    TempHome home;
    home.text("tree/own/theirs/file", "x");
    home.folder("tree/theirs, empty");
    chmod(home.path().c_str(), 0755);
    for (const char* path : {"", "tree", "tree/own", "tree/theirs, empty"}) {
        ASSERT_EQ(chown(home.path(path).c_str(), nobody, nobody), 0);
    }
    ASSERT_EQ(chown(home.path("tree/theirs, empty").c_str(), 0, 0), 0);
    EXPECT_EQ(reasonAs(nobody, home), EACCES);
    ASSERT_EQ(chown(home.path("tree/own/theirs").c_str(), nobody, nobody), 0);
    EXPECT_EQ(reasonAs(nobody, home), 0) << "files of others in an own folder can be removed";
    ASSERT_EQ(chown(home.path("tree/own/theirs").c_str(), 0, 0), 0);
    ASSERT_EQ(chmod(home.path("tree/own/theirs").c_str(), 0700), 0);
    EXPECT_EQ(reasonAs(nobody, home), EACCES) << "nor can it be looked into";
}

}  // namespace
}  // namespace velto
