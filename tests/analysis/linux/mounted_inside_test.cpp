// A home in which something is mounted, and one with a closed folder, beside what du says of them.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "analysis/PermissionService.h"
#include "analysis/ScannerService.h"
#include "support/TestPlatform.h"
#include "support/linux/private_mounts.h"
#include "support/ordinary_user.h"

namespace velto {
namespace {

/// What du says of a folder of this volume, -1 when it does not.
std::int64_t du(const std::string& arguments) {
    const std::string command = "du -x -s --block-size=1 " + arguments + " 2>/dev/null";
    FILE* output = popen(command.c_str(), "r");
    long long bytes = -1;
    if (output == nullptr || std::fscanf(output, "%lld", &bytes) != 1) bytes = -1;
    if (output != nullptr) pclose(output);
    return bytes;
}

struct MountedInside : testing::Test {
    MountedInside() {
        machine.platform.layout = HomeLayout::freedesktop(
            home.path(), [](const std::string&) { return std::nullopt; }, "");
    }

    void scan() {
        const PermissionService permissions(machine.platform);
        ScannerService scanner(machine.platform, permissions, 3);
        scanner.scan({}, CancellationFlag(), nullptr);
        tree = scanner.folders();
        counted = scanner.bytesScanned;
    }
    const FolderTree::Folder& at(const std::string& path) const {
        return (*tree)[tree->find(home.path(path))];
    }
    std::int64_t blocks(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(lstat(home.path(path).c_str(), &status), 0);
        return std::int64_t{status.st_blocks} * 512;
    }

    TestPlatform machine;
    TempHome& home = machine.home;
    std::shared_ptr<const FolderTree> tree;
    std::int64_t counted = 0;
};

TEST_F(MountedInside, EachFolderTakesWhatDuSaysWithoutWhatIsMounted) {
    home.file(".cargo/registry/index/a", 300'000);
    home.file(".cargo/.crates.toml", 10);
    home.file("work/real/deep/a", 60'000);
    home.sparse("work/hole", 1'000'000'000);
    home.file("work/one", 50'000);
    home.link("work/a long link", std::string(300, 'x'));
    ASSERT_EQ(::link(home.path("work/one").c_str(), home.path("work/two").c_str()), 0);
    for (const char* name : {"work/disk", "work/bound", "many"})
        home.folder(name);
    for (int index = 0; index < 10'000; ++index) {
        const std::string path = home.path("many/" + std::to_string(index));
        ::close(::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    }
    const auto outcome = withPrivateMounts([&] {
        if (!mountMemory(home.path("work/disk"))) return false;
        if (!bindTo(home.path("work/real"), home.path("work/bound"))) return false;
        home.file("work/disk/elsewhere", 40'000);
        scan();
        EXPECT_EQ(at("work/disk").own.state, FolderState::otherVolume);
        EXPECT_EQ(at("work/disk").bytes, 0);
        EXPECT_EQ(at("work/bound").own.state, FolderState::alreadyWalked);
        EXPECT_EQ(at("work/real").own.state, FolderState::measured);
        EXPECT_EQ(tree->find(home.path("work/bound/deep")), FolderTree::none);
        for (const char* path : {".cargo", ".cargo/registry", "many", "work/real"})
            EXPECT_EQ(at(path).bytes, du(home.path(path))) << path;
        const std::string without = "--exclude=" + home.path("work/bound") + " ";
        EXPECT_EQ(at("work").bytes, du(without + home.path("work")));
        EXPECT_EQ((*tree)[0].bytes, du(without + home.path()));
        EXPECT_EQ(at("many").files, 10'000U);
        EXPECT_EQ(counted, blocks(".cargo/registry/index/a") + blocks(".cargo/.crates.toml") +
                               blocks("work/real/deep/a") + blocks("work/hole") +
                               2 * blocks("work/one"))
            << "nothing of what is mounted, and each name of a file";
        return true;
    });
    if (outcome == InPrivate::notAllowed) GTEST_SKIP() << "mounting is not allowed here";
    EXPECT_EQ(outcome, InPrivate::done);
}

TEST_F(MountedInside, ALibraryThatIsMountedIsWalkedAsARootOfItsOwn) {
    home.file("work/a", 50'000);
    home.folder(".cache");
    const auto outcome = withPrivateMounts([&] {
        if (!mountMemory(home.path(".cache"))) return false;
        home.file(".cache/app/a", 40'000);
        scan();
        EXPECT_EQ((*tree)[0].bytes, du(home.path()));
        EXPECT_EQ(at(".cache").bytes, du(home.path(".cache")));
        EXPECT_EQ(counted, blocks("work/a") + blocks(".cache/app/a"));
        return true;
    });
    if (outcome == InPrivate::notAllowed) GTEST_SKIP() << "mounting is not allowed here";
    EXPECT_EQ(outcome, InPrivate::done);
}

TEST_F(MountedInside, AClosedFolderTakesWhatItsOwnListingTakes) {
    home.file("work/closed/secret", 50'000);
    home.file("work/unlisted/file", 50'000);
    home.file("work/open/a", 50'000);
    const int failures = asOrdinaryUser({home.path()}, [&] {
        chmod(home.path("work/closed").c_str(), 0);
        chmod(home.path("work/unlisted").c_str(), 0400);  // names without what they are
        scan();
        EXPECT_EQ(at("work/closed").own.state, FolderState::unreadable);
        EXPECT_EQ(at("work/closed").bytes, du(home.path("work/closed")));
        EXPECT_EQ(at("work/unlisted").own.state, FolderState::measured);
        EXPECT_EQ(at("work/unlisted").unreadable, 1U);
        EXPECT_EQ(at("work").unreadable, 2U);
        EXPECT_EQ((*tree)[0].bytes, du(home.path()));
        chmod(home.path("work/closed").c_str(), 0700);
        chmod(home.path("work/unlisted").c_str(), 0700);
        return testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace velto
