#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <utility>

#include "platform/posix/PosixFileManager.h"
#include "platform/removal_check.h"
#include "support/TempHome.h"
#include "support/linux/private_mounts.h"
#include "support/volumes.h"

namespace velto {
namespace {

TEST(RemovalAcrossVolumes, ADiskThatIsMountedInsideIsNotEmptied) {
    TempHome home;
    home.folder("tree/disk");
    const InPrivate result = withPrivateMounts([&] {
        if (!mountMemory(home.path("tree/disk"))) return false;
        PosixFileManager files;
        files.writeAtomically(home.path("tree/disk/photo"), "kept");
        const auto folder = files.openFolder(home.path(), FolderPath::withoutLinks);
        try {
            requireRemovable(*folder, "tree");
            ADD_FAILURE() << "taken for removable";
        } catch (const FileError& error) {
            EXPECT_EQ(error.code(), EBUSY);
        }
        try {
            files.removeAll(home.path("tree"));
            ADD_FAILURE() << "removed";
        } catch (const FileError& error) {
            EXPECT_EQ(error.path(), home.path("tree/disk"));
            EXPECT_EQ(error.code(), EXDEV);
        }
        EXPECT_EQ(home.read("tree/disk/photo"), "kept");
        return true;
    });
    if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount anything";
    EXPECT_EQ(result, InPrivate::done);
}

/// Two folders of one volume, the second of which stands inside the first as well.
class RemovalOfABoundFolder : public testing::Test {
protected:
    template <typename Action>
    void inPrivate(Action action) {
        const InPrivate result = withPrivateMounts([&] {
            home.text("a/first", "x");
            home.text("a/tree/z/file", "x");
            home.text("Projects/thesis", "kept");
            return action();
        });
        if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount that";
        EXPECT_EQ(result, InPrivate::done);
    }

    /// Nothing of the item may be gone, not even what comes before the mount.
    void expectRefused(const std::string& place) {
        PosixFileManager files;
        const auto folder = files.openFolder(home.path(), FolderPath::withoutLinks);
        const std::pair<int, std::function<void()>> attempts[] = {
            {EBUSY, [&] { requireRemovable(*folder, "a"); }},
            {EXDEV, [&] { files.removeAll(*folder, "a"); }},
            {EXDEV, [&] { files.removeAll(home.path("a")); }}};
        for (const auto& [code, attempt] : attempts) {
            try {
                attempt();
                ADD_FAILURE() << "removed";
            } catch (const FileError& error) {
                EXPECT_NE(dynamic_cast<const SomethingMounted*>(&error), nullptr);
                EXPECT_EQ(error.code(), code);
                EXPECT_EQ(error.path(), place);
                EXPECT_EQ(error.what(),
                          "could not remove " + place + ": something else is mounted there");
            }
            EXPECT_EQ(home.read("Projects/thesis"), "kept");
            EXPECT_TRUE(home.exists("a/first"));
            EXPECT_TRUE(home.exists("a/tree"));
        }
    }
    void expectRemovable() {
        PosixFileManager files;
        const auto folder = files.openFolder(home.path(), FolderPath::withoutLinks);
        requireRemovable(*folder, "a");
        files.removeAll(*folder, "a");
        EXPECT_FALSE(home.exists("a"));
        EXPECT_EQ(home.read("Projects/thesis"), "kept");
    }

    TempHome home;
};

TEST_F(RemovalOfABoundFolder, TheFolderThatIsBoundInsideIsNotEmptied) {
    inPrivate([&] {
        if (!bindTo(home.path("Projects"), home.path("a/tree/z"))) return false;
        expectRefused(home.path("a/tree/z"));
        return true;
    });
}

TEST_F(RemovalOfABoundFolder, TheItemItselfMayBeWhatIsBound) {
    inPrivate([&] {
        home.folder("Projects/tree");
        home.text("Projects/first", "x");
        if (!bindTo(home.path("Projects"), home.path("a"))) return false;
        expectRefused(home.path("a"));
        return true;
    });
}

TEST_F(RemovalOfABoundFolder, AFileMayBeBoundToo) {
    inPrivate([&] {
        if (!bindTo(home.path("Projects/thesis"), home.path("a/tree/z/file"))) return false;
        expectRefused(home.path("a/tree/z/file"));
        return true;
    });
}

TEST_F(RemovalOfABoundFolder, WhatIsBoundOutsideOfTheItemIsNoObstacle) {
    inPrivate([&] {
        // The whole home stands on a mount of its own.
        if (!bindTo(home.path(), home.path())) return false;
        expectRemovable();
        return true;
    });
}

TEST_F(RemovalOfABoundFolder, PartsOfAnOverlayAreOneMount) {
    inPrivate([&] {
        const TempHome changes;
        if (!layOverlay(home.path(), changes.path())) return false;
        home.text("a/tree/new", "x");
        expectRemovable();
        return true;
    });
}

TEST_F(RemovalOfABoundFolder, ASubvolumeIsTheUsersOwn) {
    inPrivate([&] {
        TempHome image(buildVolume());
        const std::string disk = image.folder("disk");
        if (!mountBtrfs(disk) || !makeSubvolume(disk + "/a") || !makeSubvolume(disk + "/a/inner")) {
            return false;
        }
        PosixFileManager files;
        files.writeAtomically(disk + "/a/inner/file", "x");
        const auto folder = files.openFolder(disk, FolderPath::withoutLinks);
        requireRemovable(*folder, "a");
        files.removeAll(*folder, "a");
        EXPECT_FALSE(files.exists(disk + "/a"));
        return true;
    });
}

}  // namespace
}  // namespace velto
