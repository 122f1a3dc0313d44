#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/PosixFileManager.h"
#include "platform/removal_check.h"
#include "support/TempHome.h"

namespace velto {
namespace {

constexpr int refused = 0, notRefused = 1, emptied = 2, notAllowed = 3;

/// Removes a folder with a volume mounted inside, in a process with mounts of its own.
int removeAround(const TempHome& home) {
    if (unshare(CLONE_NEWNS) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", home.path("tree/disk").c_str(), "tmpfs", 0, nullptr) != 0) {
        return notAllowed;
    }
    PosixFileManager files;
    files.writeAtomically(home.path("tree/disk/photo"), "kept");
    try {
        requireRemovable(*files.openFolder(home.path(), FolderPath::withoutLinks), "tree");
        return notRefused;
    } catch (const FileError& error) {
        if (error.code() != EBUSY) return notRefused;
    }
    int reason = 0;
    try {
        files.removeAll(home.path("tree"));
    } catch (const FileError& error) {
        reason = error.path() == home.path("tree/disk") ? error.code() : -1;
    }
    if (!files.exists(home.path("tree/disk/photo"))) return emptied;
    return reason == EXDEV ? refused : notRefused;
}

TEST(RemovalAcrossVolumes, ADiskThatIsMountedInsideIsNotEmptied) {
    TempHome home;
    home.folder("tree/disk");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(removeAround(home));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == notAllowed) {
        GTEST_SKIP() << "this user may not mount anything";
    }
    EXPECT_EQ(WEXITSTATUS(status), refused);
}

}  // namespace
}  // namespace velto
