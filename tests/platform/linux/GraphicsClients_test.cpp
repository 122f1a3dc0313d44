#include "platform/linux/GraphicsClients.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fmt/format.h>

#include "support/TempHome.h"

namespace velto {
namespace {

/// As the manual page proc_pid_fdinfo(5) shows it for Intel's driver.
std::string fdinfo(int client, std::uint64_t render) {
    return fmt::format(
        "pos:\t0\nflags:\t02100002\nmnt_id:\t26\nino:\t284\ndrm-driver:\ti915\n"
        "drm-client-id:\t{}\ndrm-pdev:\t0000:00:02.0\ndrm-total-system0:\t6044 KiB\n"
        "drm-engine-render:\t{} ns\ndrm-engine-copy:\t0 ns\ndrm-engine-video:\t20 ns\n"
        "drm-engine-capacity-video:\t2\ndrm-engine-video-enhance:\t0 ns\n",
        client, render);
}

TEST(EngineTimes, EachEngineHasItsTimeAndUnits) {
    const auto engines = engineTimesIn(fdinfo(39, 346'249));
    ASSERT_EQ(engines.size(), 4u);
    EXPECT_EQ(engines[0].device, "0000:00:02.0");
    EXPECT_EQ(engines[0].client, 39u);
    EXPECT_EQ(engines[0].engine, "render");
    EXPECT_EQ(engines[0].nanoseconds, 346'249u);
    EXPECT_EQ(engines[0].units, 1);
    EXPECT_EQ(engines[2].engine, "video");
    EXPECT_EQ(engines[2].units, 2);
}

TEST(EngineTimes, AFileOfAnythingElseHasNone) {
    EXPECT_TRUE(engineTimesIn("").empty());
    EXPECT_TRUE(engineTimesIn("pos:\t0\nflags:\t02\nmnt_id:\t15\n").empty());
    EXPECT_TRUE(engineTimesIn("drm-driver:\tsimpledrm\ndrm-client-id:\t3\n").empty());
    EXPECT_TRUE(engineTimesIn("drm-engine-render:\t5 ns\n").empty());  // of nobody
    EXPECT_TRUE(engineTimesIn("drm-client-id:\t3\ndrm-engine-render:\t5 KiB\n").empty());
    // Without a bus the driver stands for the device.
    EXPECT_EQ(
        engineTimesIn("drm-driver:\tv3d\ndrm-client-id:\t3\ndrm-engine-bin:\t5 ns\n").at(0).device,
        "v3d");
}

struct Graphics : testing::Test {
    TempHome machine;
    GraphicsClients clients{machine.path("proc"), machine.path("sys")};

    void card(const std::string& name, const std::string& driver) {
        machine.folder("drivers/" + driver);
        machine.folder("sys/class/drm/" + name + "/device");
        machine.link("sys/class/drm/" + name + "/device/driver", machine.path("drivers/" + driver));
    }
    void file(const std::string& process, const std::string& number, const std::string& target,
              const std::string& info) {
        machine.folder("proc/" + process + "/fd");
        machine.link("proc/" + process + "/fd/" + number, target);
        machine.text("proc/" + process + "/fdinfo/" + number, info);
    }
};

TEST_F(Graphics, ADriverThatSaysItIsBelievedAndNobodyIsAsked) {
    card("card1", "amdgpu");
    machine.folder("sys/class/drm/card1-DP-1/device");
    machine.text("sys/class/drm/card1/device/gpu_busy_percent", "37\n");
    file("100", "9", "/dev/dri/renderD128", fdinfo(1, 5));
    const auto read = clients.read();
    EXPECT_EQ(read.busy, 37);
    EXPECT_TRUE(read.engines.empty());
    machine.text("sys/class/drm/card1/device/gpu_busy_percent", "250\n");
    EXPECT_EQ(clients.read().busy, 100);
    // Asking one that sleeps would wake it up.
    machine.text("sys/class/drm/card1/device/power/runtime_status", "suspended\n");
    EXPECT_EQ(clients.read().busy, 0);
}

TEST_F(Graphics, UsersAreFoundAmongTheFilesAndCountedOnceEach) {
    card("card0", "i915");
    file("100", "9", "/dev/dri/renderD128", fdinfo(1, 500));
    file("100", "10", "/dev/dri/renderD128", fdinfo(1, 500));  // a copy of the same
    file("100", "11", "/dev/null", "pos:\t0\n");
    file("200", "4", "/dev/dri/card0", fdinfo(2, 700));
    file("self", "4", "/dev/dri/card0", fdinfo(3, 700));
    const auto read = clients.read();
    EXPECT_FALSE(read.busy);
    std::uint64_t render = 0;
    for (const EngineTime& one : read.engines)
        render += one.engine == "render" ? one.nanoseconds : 0;
    EXPECT_EQ(render, 1'200u);
    EXPECT_EQ(read.engines.size(), 8u);
}

TEST_F(Graphics, AUserThatHasEndedIsForgotten) {
    card("card0", "i915");
    file("100", "9", "/dev/dri/renderD128", fdinfo(1, 500));
    EXPECT_EQ(clients.read().engines.size(), 4u);
    machine.text("proc/100/fdinfo/9", "pos:\t0\n");  // the number is another file's by now
    EXPECT_TRUE(clients.read().engines.empty());
}

TEST_F(Graphics, OfManyProcessesAFewAreLookedThroughAtEachReading) {
    card("card0", "i915");
    constexpr int users = 3 * static_cast<int>(GraphicsClients::processesPerReading) / 2;
    for (int i = 0; i < users; ++i) {
        file(std::to_string(1'000 + i), "5", i == 0 ? "/dev/dri/renderD128" : "/dev/null",
             fdinfo(i, 5));
    }
    EXPECT_TRUE(clients.read().engines.empty());  // the first one has not had its turn
    EXPECT_EQ(clients.read().engines.size(), 4u);
}

TEST_F(Graphics, AMachineWhoseDriverCountsNothingSaysNothing) {
    card("card0", "virtio-pci");
    file("100", "9", "/dev/dri/renderD128", fdinfo(1, 5));
    const auto read = clients.read();
    EXPECT_FALSE(read.busy);
    EXPECT_TRUE(read.engines.empty());
}

}  // namespace
}  // namespace velto
