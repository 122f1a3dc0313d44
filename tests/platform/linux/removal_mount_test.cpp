#include <gtest/gtest.h>

#include <cerrno>

#include "platform/posix/PosixFileManager.h"
#include "platform/removal_check.h"
#include "support/TempHome.h"
#include "support/linux/private_mounts.h"

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

}  // namespace
}  // namespace velto
