// Identical files that are to share their space, on real volumes of every kind: those that can
// (btrfs, XFS) and those that cannot.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "filesystems/linux/SharingWorld.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::Field;
using Action = WatchedFileCalls::Action;
using Reason = SpaceSharing::Reason;

void makeThree(const SharingWorld& world, std::int64_t bytes = SharingWorld::length) {
    world.file("Documents/kept", 1, bytes);
    world.file("Downloads/one", 1, bytes);
    world.file("Pictures/two", 1, bytes);
    world.file("Pictures/other", 2, bytes);
}

std::int64_t sum(const std::vector<SpaceSharing::Copy>& copies) {
    std::int64_t bytes = 0;
    for (const SpaceSharing::Copy& copy : copies)
        bytes += copy.space.bytes;
    return bytes;
}

std::vector<std::optional<Reason>> reasons(const std::vector<SpaceSharing::Copy>& copies) {
    std::vector<std::optional<Reason>> found;
    for (const SpaceSharing::Copy& copy : copies)
        found.push_back(copy.stays);
    return found;
}

using Way = SharingWorld::Way;

struct Case {
    const char* volume;
    Way way = Way::byRange;
};

void PrintTo(const Case& one, std::ostream* stream) { *stream << one.volume; }

std::string nameOfCase(const testing::TestParamInfo<Case>& info) {
    return std::string(info.param.volume) + (info.param.way == Way::byClone ? "_by_clone" : "");
}

class SpaceSharingOn : public testing::TestWithParam<Case> {
protected:
    void onVolume(const std::function<void(SharingWorld& world)>& test) {
        const std::string reason = withMountsOfItsOwn([&]() -> std::string {
            SharingWorld world(volumeKind(GetParam().volume), GetParam().way);
            if (!world.problem().empty()) return world.problem();
            test(world);
            return "";
        });
        if (!reason.empty()) GTEST_SKIP() << reason;
    }
};

TEST_P(SpaceSharingOn, WhatIsToldComesBackAndEveryFileStaysAsItWas) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const std::string before = world.everything();
        const std::int64_t free = world.freeBytes();
        const auto told = world.sharing.foretell(world.group(), SharingWorld::compared);
        EXPECT_EQ(world.freeBytes(), free) << "asking has changed something";
        EXPECT_EQ(SharingWorld::sharedBytes(world.path("Downloads/one")), 0);

        const auto done = world.sharing.share(world.group(), SharingWorld::compared, {});
        EXPECT_EQ(reasons(done), (std::vector<std::optional<Reason>>(2)));
        EXPECT_EQ(world.everything(), before);
        for (const char* name : {"Documents/kept", "Downloads/one", "Pictures/two"})
            EXPECT_GE(SharingWorld::sharedBytes(world.path(name)), SharingWorld::length) << name;
        EXPECT_EQ(SharingWorld::sharedBytes(world.path("Pictures/other")), 0);
        EXPECT_EQ(sum(done), sum(told));
        EXPECT_GE(sum(told), 2 * SharingWorld::length);
        const std::int64_t back = world.freeBytes() - free;
        EXPECT_NEAR(static_cast<double>(back), static_cast<double>(sum(told)),
                    static_cast<double>(2 * world.block()));

        // Nothing more comes back, and it is known before.
        const auto again = world.sharing.foretell(world.group(), SharingWorld::compared);
        EXPECT_EQ(reasons(again), (std::vector<std::optional<Reason>>(2, Reason::one)));
        EXPECT_EQ(sum(again), 0);
    });
}

TEST_P(SpaceSharingOn, AFaultAtAnyCallLeavesEveryFileAsItWas) {
    onVolume([](SharingWorld& world) {
        constexpr std::int64_t shorter = 70'001;
        makeThree(world, shorter);
        const std::string before = world.everything();
        world.calls.countsAll = true;
        int faults = 0;
        for (const Action action : {Action::fail, Action::doThenFail}) {
            for (int at = 0;; ++at) {
                world.calls.action = action;
                world.calls.at = at;
                world.calls.count = 0;
                world.sharing.foretell(world.group(), SharingWorld::compared);
                world.sharing.share(world.group(), SharingWorld::compared, {});
                const bool isPast = world.calls.count <= at;
                world.calls.action = Action::none;
                world.sharing.settle();
                ASSERT_EQ(world.everything(), before) << at;
                if (isPast) break;
                ++faults;
                makeThree(world, shorter);  // with blocks of their own again
                ASSERT_EQ(world.everything(), before) << at;
            }
        }
        EXPECT_GT(faults, 40);
    });
}

TEST_P(SpaceSharingOn, DyingAtAnyStepLeavesEveryFileAsItWas) {
    onVolume([](SharingWorld& world) {
        // Longer than a step, so that the process also ends between two of one file.
        constexpr std::int64_t longer = RangeSharing::stepLength + SharingWorld::length;
        const auto make = [&] {
            world.file("Documents/kept", 1, longer);
            world.file("Downloads/one", 1, longer);
        };
        make();
        const std::string before = world.everything();
        const std::string content = SharingWorld::contentAt(world.path("Downloads/one"));
        const SpaceSharing::Group group{world.path("Documents/kept"),
                                        {world.path("Downloads/one")}};
        int deaths = 0;
        for (const Action action : {Action::dieBefore, Action::dieMidway, Action::dieAfter}) {
            make();
            for (int at = 0;; ++at) {
                const pid_t child = fork();
                if (child == 0) {
                    world.calls.action = action;
                    world.calls.at = at;
                    world.calls.count = 0;
                    world.sharing.share(group, SharingWorld::compared, {});
                    _exit(0);
                }
                int status = 0;
                ASSERT_EQ(waitpid(child, &status, 0), child);
                ASSERT_TRUE(WIFEXITED(status));
                ASSERT_EQ(SharingWorld::contentAt(world.path("Downloads/one")), content) << at;
                world.sharing.settle();
                ASSERT_EQ(world.everything(), before) << at;
                if (WEXITSTATUS(status) != WatchedFileCalls::died) break;
                ++deaths;
                // The next one goes on from there.
                world.sharing.share(group, SharingWorld::compared, {});
                ASSERT_EQ(world.everything(), before) << at;
                make();
            }
        }
        EXPECT_GE(deaths, 6);  // two steps, three ways
    });
}

TEST_P(SpaceSharingOn, ACopyThatDiffersByOneByteStaysAndTheOthersShare) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const int file = open(world.path("Downloads/one").c_str(), O_WRONLY | O_CLOEXEC);
        ASSERT_EQ(pwrite(file, "!", 1, SharingWorld::length - 1), 1);
        close(file);
        const timespec times[2] = {{1'500'000'000, 0}, {1'600'000'000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, world.path("Downloads/one").c_str(), times, 0), 0);
        const std::string before = world.everything();
        const auto done = world.sharing.share(world.group(), SharingWorld::compared, {});
        EXPECT_EQ(reasons(done),
                  (std::vector<std::optional<Reason>>{Reason::changed, std::nullopt}));
        EXPECT_EQ(world.everything(), before);
        EXPECT_EQ(SharingWorld::sharedBytes(world.path("Downloads/one")), 0);
    });
}

TEST_P(SpaceSharingOn, AHoleAndWrittenZerosComeTogether) {
    onVolume([](SharingWorld& world) {
        world.file("Documents/kept", 1);
        fs::resize_file(world.path("Documents/kept"), 0);
        fs::resize_file(world.path("Documents/kept"), SharingWorld::length);
        world.file("Downloads/one", 1);
        std::ofstream(world.path("Downloads/one"), std::ios::binary)
            << std::string(SharingWorld::length, '\0');
        const std::int64_t free = world.freeBytes();
        const std::string before = world.everything();
        const SpaceSharing::Group group{world.path("Documents/kept"),
                                        {world.path("Downloads/one")}};
        constexpr double later = 4'000'000'000;  // whenever this runs
        const auto told = world.sharing.foretell(group, later);
        const auto done = world.sharing.share(group, later, {});
        EXPECT_EQ(reasons(done), (std::vector<std::optional<Reason>>(1)));
        EXPECT_EQ(sum(done), sum(told));
        EXPECT_NEAR(static_cast<double>(world.freeBytes() - free), static_cast<double>(sum(told)),
                    static_cast<double>(world.block()));
        EXPECT_EQ(world.everything(), before);
    });
}

TEST_P(SpaceSharingOn, StoppingLeavesWhatWasNotComeTo) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const std::string before = world.everything();
        bool isStopped = false;
        const auto done = world.sharing.share(
            world.group(), SharingWorld::compared, [&] { return isStopped; },
            [&](std::size_t, std::int64_t) { isStopped = true; });
        ASSERT_EQ(done.size(), 1u);
        EXPECT_EQ(done.front().path, world.path("Downloads/one"));
        EXPECT_EQ(SharingWorld::sharedBytes(world.path("Pictures/two")), 0);
        EXPECT_EQ(world.everything(), before);
    });
}

TEST_P(SpaceSharingOn, AChangeOfOneFileAfterwardsIsNotSeenInTheOther) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        world.sharing.share(world.group(), SharingWorld::compared, {});
        const int file = open(world.path("Downloads/one").c_str(), O_WRONLY | O_CLOEXEC);
        ASSERT_EQ(pwrite(file, "changed", 7, 1'000'000), 7);
        close(file);
        std::ifstream kept(world.path("Documents/kept"), std::ios::binary);
        kept.seekg(1'000'000);
        std::string bytes(7, '\0');
        kept.read(bytes.data(), 7);
        EXPECT_NE(bytes, "changed");
    });
}

/// What one way does and the other has no need of.
class CloneSharingOn : public SpaceSharingOn {};

TEST_P(CloneSharingOn, AFileThatSomebodyHasOpenStays) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const std::string before = world.everything();
        int asked = 0;
        // Each time that it is asked it may be the first at which somebody is seen.
        for (int from = 0; from < 3; ++from) {
            asked = 0;
            world.calls.openElsewhere = [&] { return asked++ >= from ? 1 : 0; };
            const SpaceSharing::Group group{world.path("Documents/kept"),
                                            {world.path("Downloads/one")}};
            const auto done = world.sharing.share(group, SharingWorld::compared, {});
            EXPECT_EQ(reasons(done), (std::vector<std::optional<Reason>>{Reason::inUse})) << from;
            EXPECT_EQ(world.everything(), before) << from;
        }
    });
}

TEST_P(CloneSharingOn, WhatIsWrittenInTheLastInstantIsNotLost) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const std::string one = world.path("Downloads/one");
        world.calls.before = [&](const char* call, const char*) {
            if (std::string_view(call) != "exchange") return;
            world.calls.before = nullptr;
            std::ofstream(one, std::ios::binary) << "newest";
        };
        const auto done =
            world.sharing.share({world.path("Documents/kept"), {one}}, SharingWorld::compared, {});
        EXPECT_EQ(reasons(done), (std::vector<std::optional<Reason>>{Reason::inUse}));
        std::string content;
        std::ifstream(one, std::ios::binary) >> content;
        EXPECT_EQ(content, "newest");
    });
}

TEST_P(CloneSharingOn, AFileWithFurtherNamesStays) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        fs::create_hard_link(world.path("Downloads/one"), world.path("Downloads/again"));
        const std::string before = world.everything();
        const auto done = world.sharing.share(
            {world.path("Documents/kept"), {world.path("Downloads/one")}}, 4'000'000'000, {});
        EXPECT_EQ(reasons(done), (std::vector<std::optional<Reason>>{Reason::linked}));
        EXPECT_EQ(world.everything(), before);
    });
}

TEST_P(CloneSharingOn, WhatACutOffOneHasLeftIsKeptBesideWhenItIsNoLongerTheSame) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const std::string one = world.path("Downloads/one");
        const pid_t child = fork();
        if (child == 0) {
            world.calls.before = [&](const char* call, const char*) {
                if (std::string_view(call) == "remove") _exit(WatchedFileCalls::died);
            };
            world.sharing.share({world.path("Documents/kept"), {one}}, SharingWorld::compared, {});
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(WEXITSTATUS(status), WatchedFileCalls::died);
        const std::string before = world.everything();
        std::ofstream(one, std::ios::binary) << "newest";
        world.sharing.settle();
        EXPECT_TRUE(fs::exists(world.path("Downloads/one (restaurado 1)")));
        EXPECT_EQ(fs::file_size(world.path("Downloads/one (restaurado 1)")),
                  static_cast<std::uintmax_t>(SharingWorld::length));
        EXPECT_EQ(fs::file_size(one), 6u);
        EXPECT_FALSE(fs::exists(world.platform.layout.dataFolder + "/Sharing.journal"));
    });
}

INSTANTIATE_TEST_SUITE_P(Volumes, CloneSharingOn,
                         testing::Values(Case{"btrfs", Way::byClone}, Case{"xfs", Way::byClone}),
                         nameOfCase);

INSTANTIATE_TEST_SUITE_P(Volumes, SpaceSharingOn,
                         testing::Values(Case{"btrfs"}, Case{"xfs"}, Case{"btrfs", Way::byClone},
                                         Case{"xfs", Way::byClone}),
                         nameOfCase);

class NoSharingOn : public SpaceSharingOn {};

TEST_P(NoSharingOn, ItIsSaidAndNothingIsTouched) {
    onVolume([](SharingWorld& world) {
        makeThree(world);
        const std::string before = world.everything();
        const auto told = world.sharing.foretell(world.group(), SharingWorld::compared);
        EXPECT_EQ(reasons(told), (std::vector<std::optional<Reason>>(2, Reason::cannot)));
        const auto done = world.sharing.share(world.group(), SharingWorld::compared, {});
        EXPECT_EQ(reasons(done), (std::vector<std::optional<Reason>>(2, Reason::cannot)));
        EXPECT_EQ(sum(done), 0);
        EXPECT_EQ(world.everything(), before);
    });
}

INSTANTIATE_TEST_SUITE_P(Volumes, NoSharingOn,
                         testing::Values(Case{"ext4"}, Case{"tmpfs"}, Case{"overlay"},
                                         Case{"fuse"}),
                         nameOfCase);

}  // namespace
}  // namespace velto
