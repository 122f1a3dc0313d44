#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"
#include "support/tree_text.h"
#include "support/volumes.h"

namespace velto {

/// The reason with which `action` fails, 0 when it does not.
template <typename Action>
int reasonOf(Action action) {
    try {
        action();
        return 0;
    } catch (const FileError& error) {
        EXPECT_FALSE(error.attempt().empty());
        EXPECT_FALSE(error.path().empty());
        return error.code();
    }
}

/// Two homes with an open folder in each, and a mover whose system calls a test can watch.
struct MoveWorld {
    MoveWorld(const std::string& sourceVolume, const std::string& targetVolume)
        : source(sourceVolume), target(targetVolume) {
        calls.waitsForDisk = false;
    }

    TempHome source;
    TempHome target;
    WatchedFileCalls calls;
    PosixFileManager files{calls};
    std::unique_ptr<FolderHandle> from = files.openFolder(source.path(), FolderPath::withoutLinks);
    std::unique_ptr<FolderHandle> to = files.openFolder(target.path(), FolderPath::withoutLinks);

    static constexpr const char* scratch = ".scratch";

    /// Moves "item" in steps; the reason when it fails, else 0.
    int move() {
        return reasonOf([&] { files.moveInSteps(*from, "item", *to, "moved", scratch); });
    }
    /// And back.
    int moveBack() {
        return reasonOf([&] { files.moveInSteps(*to, "moved", *from, "item", scratch); });
    }
    MoveState settle() { return files.settleMove(*from, "item", *to, "moved", scratch); }

    std::string sourceText() const { return treeText(source.path("item"), TreeDetail::everything); }
    std::string targetText() const {
        return treeText(target.path("moved"), TreeDetail::everything);
    }
    /// The names that stand in either folder, "item" and "moved" included.
    std::set<std::string> names() const {
        std::set<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(source.path()))
            all.insert("source/" + entry.path().filename().string());
        for (const auto& entry : std::filesystem::directory_iterator(target.path()))
            all.insert("target/" + entry.path().filename().string());
        return all;
    }
    bool isOnlyAtSource() const { return names() == std::set<std::string>{"source/item"}; }
    bool isOnlyAtTarget() const { return names() == std::set<std::string>{"target/moved"}; }
};

/// Moves within one volume.
class MoveWithinVolume : public testing::Test, protected MoveWorld {
protected:
    MoveWithinVolume() : MoveWorld(otherVolume(), otherVolume()) {}
};

/// Moves from the build folder's volume to the other one.
class MoveBetweenVolumes : public testing::Test, protected MoveWorld {
protected:
    MoveBetweenVolumes() : MoveWorld(buildVolume(), otherVolume()) {}
    void SetUp() override {
        if (!areTwoVolumes(buildVolume(), otherVolume())) {
            GTEST_SKIP() << "memory and build folder are one volume here";
        }
    }
};

inline void setTimes(const std::string& path, const timespec& accessed, const timespec& modified) {
    const timespec times[2] = {accessed, modified};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

inline void setMode(const std::string& path, mode_t mode) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0) << path;
}

}  // namespace velto
