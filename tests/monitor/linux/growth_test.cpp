#include <fmt/format.h>

#include <filesystem>
#include <string>

#include "monitor/MonitorFixture.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "support/TempHome.h"
#include "support/linux/heap.h"

namespace velto {
namespace {

/// A recorded machine on which processes come and go.
struct ChangingMachine : testing::Test {
    static constexpr int processes = 8;  // at a time
    static constexpr int samplesPerMap = 5;

    TempHome proc;
    TempHome sys;
    LinuxSystemCounters counters{proc.path(), sys.path()};
    LinuxProcessTable table{{.proc = proc.path()}};
    FakeVolumeInfo volumes;
    FakeClock clock;
    ApplicationActivity activity;
    std::string pictured = "none";  // the bundle of the application that runs
    SystemMonitor monitor{
        MonitorContext{.counters = counters,
                       .processes = table,
                       .volumes = volumes,
                       .clock = clock,
                       .activity = activity,
                       .startupVolume = "/",
                       .icon = [](const std::string&, int) { return std::string(4096, 'i'); }},
        std::make_unique<FakeSerialQueue>(std::make_shared<FakeSerialQueue::Control>())};

    ChangingMachine() {
        proc.text("stat", "cpu  10 0 10 100 0 0 0 0 0 0\ncpu0 10 0 10 100 0 0 0 0 0 0\n");
        proc.text("loadavg", "0.50 0.50 0.50 1/100 1234\n");
        proc.text("meminfo", "MemTotal: 16000 kB\nMemFree: 4000 kB\nMemAvailable: 8000 kB\n");
        proc.text("net/dev", "a\nb\n  eth0: 1 1 0 0 0 0 0 0 1 1 0 0 0 0 0 0\n");
    }

    void start(int process, const std::string& executable) {
        const std::string folder = std::to_string(process);
        proc.text(folder + "/stat",
                  fmt::format("{} (worker) S 1 1 1 0 -1 0 1 0 0 0 5 5 0 0 20 0 1 0 {} 1 1 1\n",
                              process, process));
        proc.text(folder + "/status", "VmRSS:\t 400 kB\nRssAnon:\t 400 kB\n");
        proc.text(folder + "/cgroup", "0::/init.scope\n");
        proc.link(folder + "/exe", executable);
    }

    void end(int process) { std::filesystem::remove_all(proc.path(std::to_string(process))); }

    /// One after another ends, and another one starts. Numbers of as many digits throughout.
    void run(int first, int samples) {
        for (int i = 0; i < samples; ++i) {
            if (i % samplesPerMap == 0) {
                const int process = 100'000 + (first + i) / samplesPerMap;
                end(process - processes);
                start(process, "/Applications/" + pictured + ".app/Contents/MacOS/worker");
            }
            clock.time += SystemMonitor::period;
            monitor.sample();
        }
    }
};

TEST_F(ChangingMachine, HoursOfSamplesKeepNoMemory) {
    run(0, 1'000);
    EXPECT_EQ(monitor.processMap.size(), static_cast<std::size_t>(processes));
    EXPECT_EQ(table.openFiles(), static_cast<std::size_t>(processes));
    const std::size_t early = heapInUse();
    run(1'000, 9'000);
    // One byte kept of each sample, or two words of each process that has ended, would be more.
    EXPECT_LE(heapInUse(), early + 4'000);
    EXPECT_EQ(monitor.processMap.size(), static_cast<std::size_t>(processes));
    EXPECT_EQ(monitor.prevProcCPU.size(), static_cast<std::size_t>(processes));
    EXPECT_EQ(table.openFiles(), static_cast<std::size_t>(processes));
}

TEST_F(ChangingMachine, OnlyTheIconsOfApplicationsAreKeptOnceEach) {
    run(0, 100);
    const std::size_t before = heapInUse();
    constexpr int others = 50;
    for (int i = 1; i <= others; ++i) {
        pictured = fmt::format("app{:04}", i);
        run(100 * i, 100);
    }
    EXPECT_EQ(monitor.iconCache.size(), others + 1u);
    const std::size_t after = heapInUse();
    EXPECT_GT(after, before + others * 4'096);
    EXPECT_LT(after, before + others * 6'000);  // some allocators round up by a quarter
}

}  // namespace
}  // namespace velto
