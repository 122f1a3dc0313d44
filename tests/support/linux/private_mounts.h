#pragma once

#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace velto {

/// Gives this process mounts of its own, as an ordinary user too where the system lets users have
/// namespaces. False where it does not.
bool enterPrivateMounts();

/// Mounts an empty volume in memory of at most that size ("256k"; "" for any) on a folder. False
/// where that is not allowed.
bool mountMemory(const std::string& folder, const std::string& size = "");

/// Lets a folder or a file stand at another place as well (a bind mount).
bool bindTo(const std::string& what, const std::string& place);

/// Lays an overlay over the folder: what it holds shows through, changes go to a volume in memory
/// at `scratch`.
bool layOverlay(const std::string& folder, const std::string& scratch);

/// Mounts an empty btrfs volume on a folder; the image is made beside it.
bool mountBtrfs(const std::string& folder);
bool makeSubvolume(const std::string& folder);

enum class InPrivate { done, failed, notAllowed };

/// Runs `action` in a process with mounts of its own, which end with it; what it expects in vain is
/// a failure. It returns false where it was not allowed to mount something.
template <typename Action>
InPrivate withPrivateMounts(Action action) {
    constexpr int failed = 1;
    constexpr int notAllowed = 2;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const bool isAllowed = enterPrivateMounts() && action();
        std::fflush(nullptr);
        _exit(!isAllowed ? notAllowed : testing::Test::HasFailure() ? failed : 0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == notAllowed) return InPrivate::notAllowed;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? InPrivate::done : InPrivate::failed;
}

}  // namespace velto
