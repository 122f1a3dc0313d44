#include "cleaning/further/tool_measures.h"

#include "cleaning/further/FurtherFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ToolMeasures, SizesAreReadAsTheToolsWriteThem) {
    EXPECT_EQ(decimalSize("1.13GB"), 1'130'000'000);
    EXPECT_EQ(decimalSize("834.8kB"), 834'800);
    EXPECT_EQ(decimalSize("0B"), 0);
    EXPECT_EQ(decimalSize("0B (0%)"), 0);
    EXPECT_EQ(decimalSize(" 34.15GB (94%)\r"), 34'150'000'000);
    EXPECT_EQ(binarySize("48.0M"), 50'331'648);
    EXPECT_EQ(binarySize("0B"), 0);
    EXPECT_EQ(binarySize("1.5G"), 1'610'612'736);
    for (const char* text : {"", "GB", "x1GB", "1.2.3GB", "-1GB", "1 000GB", "1,5GB", "1PB",
                             "99999999999999999999GB", "1e3GB"})
        EXPECT_EQ(decimalSize(text), std::nullopt) << text;
}

// The table is the one that docs.docker.com shows for `docker system df`.
TEST(ToolMeasures, WhatContainersCouldGiveBackComesWithItsCommand) {
    const auto measure = containerMeasure(
        "Images\t34.15GB (94%)\nContainers\t834.6kB (99%)\nLocal Volumes\t15.14GB (98%)\n"
        "Build Cache\t0B\n",
        "docker");
    ASSERT_TRUE(measure);
    EXPECT_EQ(measure->bytes, 49'290'834'600);
    EXPECT_THAT(measure->parts,
                ElementsAre(ToolPart{"Images", 34'150'000'000, "docker image prune --all"},
                            ToolPart{"Local Volumes", 15'140'000'000, "docker volume prune --all"},
                            ToolPart{"Containers", 834'600, "docker container prune"}));
    EXPECT_EQ(containerMeasure("Cannot connect to the Docker daemon", "docker"), std::nullopt);
    EXPECT_EQ(containerMeasure("", "docker"), std::nullopt);
    EXPECT_EQ(containerMeasure("Images\t8000000TB\nContainers\t8000000TB\n", "docker"),
              std::nullopt)
        << "more than any disk holds";
}

// Lines as systemd 255 and 257 write them.
TEST(ToolMeasures, TheJournalsUseIsRead) {
    const auto measure =
        journalMeasure("Archived and active journals take up 48.0M in the file system.\n");
    ASSERT_TRUE(measure);
    EXPECT_EQ(measure->bytes, 50'331'648);
    EXPECT_EQ(journalMeasure("No journal files were found.\n"), std::nullopt);
}

// The columns that snapcraft.io shows for `snap list`.
TEST(ToolMeasures, OnlyRevisionsThatAreDisabledAreOld) {
    const auto found = disabledRevisions(
        "Name      Version  Rev    Tracking       Publisher           Notes\n"
        "blender   3.5.0    3486   latest/stable  blenderfoundation✓  classic\n"
        "blender   3.4.1    3132   latest/stable  blenderfoundation✓  disabled,classic\n"
        "chromium  112.0    2424   latest/stable  canonical✓          -\n"
        "chromium  111.0    2406   latest/stable  canonical✓          disabled\n"
        "$(rm)     1.0      1      latest/stable  nobody              disabled\n"
        "--all     1.0      1      latest/stable  nobody              disabled\n"
        "broken\n");
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].name, "blender");
    EXPECT_EQ(found[0].revision, "3132");
    EXPECT_EQ(found[1].name, "chromium");
    EXPECT_EQ(found[1].revision, "2406");
}

struct ToolMeasuresTest : FurtherFixture {
    std::optional<FurtherGroup> group(const char* rule) {
        auto found = groups();
        discovery().askTools(found);
        for (const FurtherGroup& one : found) {
            if (one.rule->id == rule) return one;
        }
        return std::nullopt;
    }
};

TEST_F(ToolMeasuresTest, ContainersAreMeasuredByTheirToolAndNeverOfferedAsFiles) {
    file(".local/share/containers/storage/overlay/a/diff/b");
    file("tools/podman");
    machine.tools.outputs["podman"] = "Images\t1GB (50%)\nContainers\t0B\nLocal Volumes\t2MB\n";
    const auto podman = group("podman");
    ASSERT_TRUE(podman);
    EXPECT_EQ(podman->bytes, 1'002'000'000);
    EXPECT_THAT(podman->items, IsEmpty());
    EXPECT_EQ(podman->parts.size(), 2u);
    EXPECT_THAT(machine.tools.commands,
                ElementsAre(ElementsAre(home().path("tools/podman"), "system", "df", "--format",
                                        "{{.Type}}\t{{.Reclaimable}}")));
}

TEST_F(ToolMeasuresTest, AToolThatIsNotThereOrFailsLeavesTheSizeUnknown) {
    file(".local/share/containers/storage/overlay/a/diff/b");
    EXPECT_EQ(group("podman")->bytes, std::nullopt);
    EXPECT_THAT(machine.tools.commands, IsEmpty());
    file("tools/podman");
    machine.tools.result.exitStatus = 125;
    machine.tools.outputs["podman"] = "Images\t1GB (50%)\n";
    EXPECT_EQ(group("podman")->bytes, std::nullopt);
}

TEST_F(ToolMeasuresTest, AToolThatCouldGiveNothingBackIsNotShown) {
    file(".local/share/containers/storage/overlay/a/diff/b");
    file("tools/podman");
    machine.tools.outputs["podman"] = "Images\t0B (0%)\nContainers\t0B\nLocal Volumes\t0B\n";
    EXPECT_FALSE(group("podman"));
}

TEST_F(ToolMeasuresTest, NoToolIsStartedForWhatIsNotThere) {
    for (const char* tool : {"docker", "podman", "snap", "journalctl"})
        file(std::string("tools/") + tool);
    EXPECT_FALSE(group("podman"));
    EXPECT_THAT(machine.tools.commands, IsEmpty()) << "asking some makes their folders";
}

}  // namespace
}  // namespace velto
