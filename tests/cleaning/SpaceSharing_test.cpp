#include "cleaning/SpaceSharing.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "support/FakeBlockSharing.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Why = SpaceSharing::Reason;

struct SpaceSharingRules : testing::Test {
    TestPlatform machine;
    FakeBlockSharing& volume = install<FakeBlockSharing>(machine.platform.sharing);
    SpaceSharing sharing{machine.platform};
    std::string kept = machine.home.text("Documents/kept.bin", "the same").path();
    std::string one = machine.home.text("Downloads/one.bin", "the same").path();
    std::string two = machine.home.text("Pictures/two.bin", "the same").path();

    /// After every file was made.
    static constexpr double compared = 4'000'000'000;

    std::vector<std::optional<Why>> foretold(const std::vector<std::string>& copies,
                                             double when = compared) {
        return reasons(sharing.foretell({kept, copies}, when));
    }
    std::vector<std::optional<Why>> shared(const std::vector<std::string>& copies,
                                           double when = compared) {
        return reasons(sharing.share({kept, copies}, when, {}));
    }
    static std::vector<std::optional<Why>> reasons(const std::vector<SpaceSharing::Copy>& copies) {
        std::vector<std::optional<Why>> found;
        for (const SpaceSharing::Copy& copy : copies)
            found.push_back(copy.stays);
        return found;
    }
};

TEST_F(SpaceSharingRules, WhatIsToldIsWhatComesBack) {
    volume.spaces[two] = {.bytes = 5, .isExact = false};
    const auto told = sharing.foretell({kept, {one, two}}, compared);
    EXPECT_TRUE(volume.asked.empty());
    const auto done = sharing.share({kept, {one, two}}, compared, {});
    ASSERT_EQ(done.size(), 2u);
    EXPECT_EQ(told[0].space, (OwnSpace{8, true}));
    EXPECT_EQ(told[1].space, (OwnSpace{5, false}));
    EXPECT_EQ(done[0].space, told[0].space);
    EXPECT_EQ(done[1].space, told[1].space);
    EXPECT_EQ(shared({one, two}), (std::vector<std::optional<Why>>{Why::one, Why::one}));
    EXPECT_EQ(volume.asked.size(), 2u);
}

TEST_F(SpaceSharingRules, NamesOfOneFileAreNoCopies) {
    const std::string ofKept = machine.home.path("again.bin");
    const std::string ofOne = machine.home.path("one again.bin");
    ASSERT_EQ(link(kept.c_str(), ofKept.c_str()), 0);
    ASSERT_EQ(link(one.c_str(), ofOne.c_str()), 0);
    EXPECT_EQ(shared({ofKept, one, ofOne}),
              (std::vector<std::optional<Why>>{Why::linked, std::nullopt, Why::linked}));
    EXPECT_THAT(volume.asked, ElementsAre(std::pair(kept, one)));
}

TEST_F(SpaceSharingRules, AFileThatWasChangedSinceItWasComparedStays) {
    machine.home.text("Downloads/one.bin", "the SAME");
    struct stat status;
    ASSERT_EQ(stat(one.c_str(), &status), 0);
    const auto written = static_cast<double>(status.st_mtime);
    EXPECT_EQ(shared({one}, written - 10), (std::vector<std::optional<Why>>{Why::keptFile}));
    const timespec old[2] = {{1'000'000, 0}, {1'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, kept.c_str(), old, 0), 0);
    EXPECT_EQ(shared({one}, written - 10), (std::vector<std::optional<Why>>{Why::changed}));
    EXPECT_THAT(volume.asked, IsEmpty());
    // Where the times say nothing, what is in it does; another length is seen before.
    EXPECT_EQ(shared({one}), (std::vector<std::optional<Why>>{Why::changed}));
    machine.home.text("Downloads/one.bin", "longer than it was");
    volume.asked.clear();
    EXPECT_EQ(shared({one}), (std::vector<std::optional<Why>>{Why::changed}));
    EXPECT_THAT(volume.asked, IsEmpty());
}

TEST_F(SpaceSharingRules, WhatTheTrashWouldNotTakeIsNotTouched) {
    machine.home.link("linked.bin", one);
    const std::string mail = machine.home.text("Library/Mail/x.bin", "the same").path();
    const std::string own =
        machine.home.text("Library/Application Support/Velto/Trash/x.bin", "the same").path();
    const std::string folder = machine.home.folder("folder.bin");
    EXPECT_EQ(shared({machine.home.path("linked.bin"), mail, own, "/etc/hostname",
                      machine.home.path("none"), folder}),
              (std::vector<std::optional<Why>>{Why::refused, Why::refused, Why::refused,
                                               Why::refused, Why::gone, Why::cannot}));
    EXPECT_EQ(sharing.foretell({mail, {one}}, compared).front().stays, Why::keptFile);
    EXPECT_THAT(volume.asked, IsEmpty());
}

TEST_F(SpaceSharingRules, WhyTheSystemRefusesIsSaidAndTheOthersGoOn) {
    const std::pair<int, Why> rows[] = {{ENOTSUP, Why::cannot},  {EINVAL, Why::cannot},
                                        {EXDEV, Why::otherDisk}, {EPERM, Why::closed},
                                        {EROFS, Why::closed},    {ETXTBSY, Why::inUse},
                                        {EMLINK, Why::linked},   {EIO, Why::other}};
    for (const auto& [code, reason] : rows) {
        volume.refusals[one] = code;
        EXPECT_EQ(foretold({one, two}), (std::vector<std::optional<Why>>{reason, std::nullopt}))
            << code;
    }
    EXPECT_EQ(shared({one, two}), (std::vector<std::optional<Why>>{Why::other, std::nullopt}));
    EXPECT_THAT(volume.asked, ElementsAre(std::pair(kept, two)));
}

TEST_F(SpaceSharingRules, StoppingLeavesOutWhatWasNotComeTo) {
    bool isStopped = false;
    volume.before = [&](const std::string&) { isStopped = true; };
    const auto done = sharing.share({kept, {one, two}}, compared, [&] { return isStopped; });
    EXPECT_EQ(reasons(done), (std::vector<std::optional<Why>>{Why::stopped}));
    EXPECT_THAT(volume.shared, IsEmpty());
}

}  // namespace
}  // namespace velto
