// Our figures beside those of the system itself, on the machine that runs the test.

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <signal.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>

#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/kernel_file.h"
#include "support/TempHome.h"

namespace velto {
namespace {

std::string outputOf(const char* command) {
    struct Close {
        void operator()(FILE* stream) const { ::pclose(stream); }
    };
    const std::unique_ptr<FILE, Close> stream(::popen(command, "r"));
    std::string text;
    std::array<char, 4096> part;
    while (stream) {
        const std::size_t count = std::fread(part.data(), 1, part.size(), stream.get());
        if (count == 0) break;
        text.append(part.data(), count);
    }
    return text;
}

struct FreeFigures {
    double total = 0, used = 0, free = 0, shared = 0, cache = 0, available = 0;
};

FreeFigures freeFigures() {
    std::istringstream lines(outputOf("LC_ALL=C free -b 2>/dev/null"));
    std::string header, label;
    std::getline(lines, header);
    FreeFigures figures;
    lines >> label >> figures.total >> figures.used >> figures.free >> figures.shared >>
        figures.cache >> figures.available;
    return figures;
}

/// What the kernel keeps back from everybody: docs/monitor.md has how far `available` may differ.
double reserve() {
    std::istringstream words(kernelText("/proc/zoneinfo").value_or(""));
    double pages = 0;
    for (std::string word; words >> word;) {
        double count = 0;
        if (word == "high" && words >> count) pages += count;
    }
    return 3 * pages * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

TEST(LiveCounters, MemoryAgreesWithFree) {
    if (freeFigures().available <= 0) GTEST_SKIP() << "free(1) is not installed, or an old one";
    LinuxSystemCounters counters;
    // Others use memory between the two readings; in one of many tries hardly any. A figure that
    // is made up differently agrees in none.
    constexpr int tries = 50;
    bool agreed = false;
    std::string last;
    for (int attempt = 0; attempt < tries && !agreed; ++attempt) {
        const auto ours = counters.memory();
        const FreeFigures theirs = freeFigures();
        ASSERT_TRUE(ours);
        EXPECT_EQ(static_cast<double>(ours->physical), theirs.total);
        const auto used = static_cast<double>(ours->internal + ours->wired + ours->compressed);
        const auto total = static_cast<double>(ours->physical);
        const auto cached = static_cast<double>(ours->cached);
        const double free = total - used - cached;
        const double available = free + cached;
        const double one = 0.01 * total;
        last = fmt::format("used {}, free {}, cached {} beside {}, {}, {} and available {}", used,
                           free, cached, theirs.used, theirs.free, theirs.cache, theirs.available);
        agreed = std::abs(free - theirs.free) <= one &&
                 std::abs(cached - (theirs.cache - theirs.shared)) <= one &&
                 available >= theirs.available - one &&
                 available <= theirs.available + reserve() + 3 * one &&
                 used <= total - theirs.available + one;
    }
    EXPECT_TRUE(agreed) << last;
}

TEST(LiveCounters, WhatTheKernelHoldsIsAtLeastWhatItNamesAsItsOwn) {
    LinuxSystemCounters counters;
    std::istringstream lines(kernelText("/proc/meminfo").value_or(""));
    double named = 0;
    for (std::string line; std::getline(lines, line);) {
        for (const char* name : {"SUnreclaim:", "KernelStack:", "PageTables:", "Percpu:"}) {
            if (line.starts_with(name)) named += 1024 * std::stod(line.substr(line.find(':') + 1));
        }
    }
    const auto memory = counters.memory();
    ASSERT_TRUE(memory);
    // The kernel counts some of it in batches for each processor.
    EXPECT_GE(static_cast<double>(memory->wired),
              named - 0.005 * static_cast<double>(memory->physical));
}

/// Bytes of the machine's disks since its start as the kernel writes them for each disk.
TEST(LiveCounters, TrafficOfTheDisksIsThatOfEachDisksOwnFile) {
    LinuxSystemCounters counters;
    const auto disks = counters.disks();
    if (!disks || disks->empty()) GTEST_SKIP() << "this machine has no disk of its own";
    const auto figures = [](const std::string& name) {
        std::istringstream words(kernelText("/sys/block/" + name + "/stat").value_or(""));
        std::array<std::uint64_t, 7> all{};
        for (std::uint64_t& one : all)
            words >> one;
        return std::pair(all[2] * 512, all[6] * 512);
    };
    for (const DiskCounters& disk : *disks) {
        const auto before = figures(disk.name);
        const auto ours = counters.disks();
        const auto after = figures(disk.name);
        for (const DiskCounters& now : *ours) {
            if (now.name != disk.name) continue;
            EXPECT_GE(now.read, before.first);
            EXPECT_LE(now.read, after.first);
            EXPECT_GE(now.written, before.second);
            EXPECT_LE(now.written, after.second);
        }
    }
}

TEST(LiveCounters, TheProcessorsTicksAreThoseOfTheSameFile) {
    TempHome copy;
    LinuxSystemCounters counters(copy.path(), copy.path());
    struct Reading {
        double idle = 0, total = 0;
        ProcessorTicks ticks;
    };
    const auto read = [&] {
        const std::string text = kernelText("/proc/stat").value_or("");
        copy.text("stat", text);
        Reading reading{.ticks = counters.processorTicks().value()};
        std::istringstream words(text);
        std::string label;
        words >> label;
        for (int field = 0; field < 8; ++field) {
            double value = 0;
            words >> value;
            reading.total += value;
            if (field == 3 || field == 4) reading.idle += value;
        }
        return reading;
    };
    const Reading before = read();
    Reading after = read();
    while (after.total < before.total + 50)
        after = read();  // half a second of one processor
    const double theirs = 100 * (1 - (after.idle - before.idle) / (after.total - before.total));
    const double busy = static_cast<double>((after.ticks.user - before.ticks.user) +
                                            (after.ticks.system - before.ticks.system) +
                                            (after.ticks.nice - before.ticks.nice));
    const double total = busy + static_cast<double>(after.ticks.idle - before.ticks.idle);
    EXPECT_NEAR(100 * busy / total, theirs, 1);
    EXPECT_EQ(counters.processorCount(), sysconf(_SC_NPROCESSORS_ONLN));
}

TEST(LiveCounters, TrafficIsThatOfTheInterfacesToTheByte) {
    LinuxSystemCounters counters;
    const auto names = counters.interfaces();
    if (!names) GTEST_SKIP() << "no /proc/net/dev";
    for (const InterfaceCounters& one : *names) {
        const std::string folder = "/sys/class/net/" + one.name + "/statistics/";
        const auto figure = [&](const char* file) {
            return static_cast<std::uint64_t>(kernelNumber(folder + file).value_or(-1));
        };
        if (!kernelNumber(folder + "rx_bytes")) continue;  // sysfs of another network namespace
        // Counters never shrink: ours lies between a reading before and one after.
        const auto receivedBefore = figure("rx_bytes"), sentBefore = figure("tx_bytes");
        const auto ours = counters.interfaces();
        const auto receivedAfter = figure("rx_bytes"), sentAfter = figure("tx_bytes");
        for (const InterfaceCounters& now : *ours) {
            if (now.name != one.name) continue;
            EXPECT_GE(now.received, receivedBefore);
            EXPECT_LE(now.received, receivedAfter);
            EXPECT_GE(now.sent, sentBefore);
            EXPECT_LE(now.sent, sentAfter);
        }
    }
}

TEST(LiveCounters, WhatThisMachineDoesNotHaveIsAbsentAndNothingFails) {
    LinuxSystemCounters counters;
    counters.battery();
    counters.thermalState();
    counters.isLowPowerModeOn();
    if (const auto heat = counters.temperature()) {
        EXPECT_GE(heat->celsius, 1);
        EXPECT_LE(heat->celsius, 150);
    }
    if (const auto busy = counters.graphics().busy) {
        EXPECT_LE(*busy, 100);
    }
    EXPECT_GE(counters.loadAverage(), 0);
}

/// A child that does nothing, or works as hard as it can.
class CountedChild {
public:
    explicit CountedChild(bool busy) : process_(::fork()) {
        if (process_ != 0) return;
        volatile unsigned work = 0;
        while (true) {
            if (busy) {
                work = work + 1;
            } else {
                ::pause();
            }
        }
    }
    ~CountedChild() { end(); }
    CountedChild(const CountedChild&) = delete;
    CountedChild& operator=(const CountedChild&) = delete;

    void end() {
        if (process_ <= 0) return;
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
        process_ = 0;
    }
    pid_t process() const { return process_; }

private:
    pid_t process_;
};

TEST(LiveProcesses, AChildIsSeenWithItsParentAndGoneWhenItEnds) {
    CountedChild child(false);
    const pid_t process = child.process();
    LinuxProcessTable table({});
    const auto infos = table.list();
    ASSERT_TRUE(infos.contains(process));
    EXPECT_EQ(infos.at(process).ppid, ::getpid());
    EXPECT_TRUE(table.usage(process));
    EXPECT_EQ(table.executablePath(process), table.executablePath(::getpid()));
    child.end();
    EXPECT_FALSE(table.usage(process));
    EXPECT_FALSE(table.list().contains(process));
}

TEST(LiveProcesses, WhatAProcessHasWrittenToADiskIsCounted) {
    TempHome home;
    struct statfs volume {};
    ASSERT_EQ(::statfs(home.path().c_str(), &volume), 0);
    LinuxProcessTable table({});
    table.list();
    const auto before = table.usage(::getpid())->traffic;
    if (volume.f_type == TMPFS_MAGIC || !before) GTEST_SKIP() << "no disk, or not accounted";
    constexpr std::size_t bytes = 8'000'000;
    home.text("written", std::string(bytes, 'w'));
    const int file = ::open(home.path("written").c_str(), O_RDONLY | O_CLOEXEC);
    ::fsync(file);
    ::close(file);
    // Only what has used the processor is read again.
    std::optional<ProcessTraffic> after = before;
    while (after == before)
        after = table.usage(::getpid())->traffic;
    EXPECT_GE(after->written - before->written, bytes);
    EXPECT_LE(after->written - before->written, 2 * bytes);
}

TEST(LiveProcesses, ABusyChildsTimeGrowsAsTheSystemCountsIt) {
    CountedChild child(true);
    const pid_t process = child.process();
    LinuxProcessTable table({});
    table.list();
    std::uint64_t time = 0;
    while (time < 100'000'000)
        time = table.usage(process).value().time;  // a tenth of a second
    clockid_t clock = 0;
    timespec spent{};
    ASSERT_EQ(::clock_getcpuclockid(process, &clock), 0);
    ASSERT_EQ(::clock_gettime(clock, &spent), 0);
    // Ticks of ten milliseconds for user and for system time, each rounded down.
    EXPECT_LE(static_cast<double>(time) * 1e-9,
              static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) * 1e-9 + 0.02);
}

}  // namespace
}  // namespace velto
