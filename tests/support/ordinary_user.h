#pragma once

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace velto {

/// Runs `action` in a process of its own that has no rights of an administrator, whoever runs the
/// tests, and returns its result (0 ... 250). The homes are given to that user with all that they
/// hold; paths in them may be out of its reach, folders that are open already are not.
template <typename Action>
int asOrdinaryUser(const std::vector<std::string>& homes, Action action) {
    constexpr uid_t nobody = 65534;
    constexpr int failed = 251;
    const bool isAdministrator = geteuid() == 0;
    for (const std::string& home : homes) {
        if (!isAdministrator) break;
        EXPECT_EQ(lchown(home.c_str(), nobody, nobody), 0);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home))
            EXPECT_EQ(lchown(entry.path().c_str(), nobody, nobody), 0);
    }
    const pid_t child = fork();
    if (child == 0) {
        if (isAdministrator &&
            (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0)) {
            _exit(failed);
        }
        _exit(action());
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), failed) << "could not become another user";
    return WEXITSTATUS(status);
}

}  // namespace velto
