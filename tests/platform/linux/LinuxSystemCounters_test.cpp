#include "platform/linux/LinuxSystemCounters.h"

#include <gtest/gtest.h>

#include "platform/linux/memory_counters.h"
#include "support/TempHome.h"

namespace velto {
namespace {

/// Recorded files of a machine, as below /proc and /sys.
struct LinuxCounters : testing::Test {
    TempHome machine;
    LinuxSystemCounters counters{machine.path("proc"), machine.path("sys")};

    void proc(const std::string& name, std::string_view text) {
        machine.text("proc/" + name, text);
    }
    void sys(const std::string& name, std::string_view text) { machine.text("sys/" + name, text); }
};

TEST_F(LinuxCounters, TheProcessorsTicksAreThoseOfTheFirstLine) {
    proc("stat",
         "cpu  1000 200 300 4000 50 6 7 8 90 10\n"
         "cpu0 500 100 150 2000 25 3 3 4 45 5\n"
         "cpu1 500 100 150 2000 25 3 4 4 45 5\n"
         "intr 1 2 3\nctxt 99\n");
    const auto ticks = counters.processorTicks();
    ASSERT_TRUE(ticks);
    EXPECT_EQ(ticks->user, 1000u);  // guests are in it
    EXPECT_EQ(ticks->nice, 200u);
    EXPECT_EQ(ticks->system, 300u + 6 + 7 + 8);
    EXPECT_EQ(ticks->idle, 4000u + 50);
    EXPECT_EQ(counters.processorCount(), 2);
}

TEST_F(LinuxCounters, CountersBeyond32BitsWrapAround) {
    proc("stat", "cpu  4294967297 0 0 8589934592 0 0 0 0 0 0\n");
    EXPECT_EQ(counters.processorTicks()->user, 1u);
    EXPECT_EQ(counters.processorTicks()->idle, 0u);
}

TEST_F(LinuxCounters, IdleTimeThatTheKernelTakesBackIsNoWrapAround) {
    proc("stat", "cpu  100 0 0 1000 50 0 0 0 0 0\n");
    EXPECT_EQ(counters.processorTicks()->idle, 1050u);
    proc("stat", "cpu  110 0 0 1000 48 0 0 0 0 0\n");
    EXPECT_EQ(counters.processorTicks()->idle, 1050u);
    proc("stat", "cpu  110 0 0 1010 55 0 0 0 0 0\n");
    EXPECT_EQ(counters.processorTicks()->idle, 1065u);
}

TEST_F(LinuxCounters, IdleTimeThatBeginsAnewIsTakenAsItIs) {
    proc("stat", "cpu  100 0 0 900000 50 0 0 0 0 0\n");
    counters.processorTicks();
    proc("stat", "cpu  110 0 0 5000 3 0 0 0 0 0\n");
    EXPECT_EQ(counters.processorTicks()->idle, 5'050u);
    proc("stat", "cpu  110 0 0 5100 4 0 0 0 0 0\n");
    EXPECT_EQ(counters.processorTicks()->idle, 5'150u);
}

TEST_F(LinuxCounters, TheLoadIsThatOfOneMinute) {
    proc("loadavg", "1.25 0.80 0.44 2/345 6789\n");
    EXPECT_DOUBLE_EQ(counters.loadAverage(), 1.25);
}

constexpr std::string_view meminfo =
    "MemTotal:       16000000 kB\nMemFree:         4000000 kB\nMemAvailable:    9000000 kB\n"
    "Buffers:          500000 kB\nCached:          5500000 kB\nAnonPages:       4500000 kB\n"
    "Shmem:            500000 kB\nSwapTotal:       8000000 kB\nSwapFree:        6000000 kB\n"
    "Zswap:            300000 kB\nSUnreclaim:       400000 kB\n";

constexpr std::int64_t kilobytes(std::int64_t count) { return count * 1024; }

TEST_F(LinuxCounters, UsedMemoryIsWhatIsNeitherFreeNorACacheAndItsPartsAddUpToIt) {
    proc("meminfo", meminfo);
    sys("block/zram0/mm_stat", "4096 1024 102400000 0 0 0 0 0 0\n");
    sys("block/sda/size", "1\n");
    const auto memory = counters.memory();
    ASSERT_TRUE(memory);
    EXPECT_EQ(memory->physical, kilobytes(16'000'000));
    EXPECT_EQ(memory->internal, kilobytes(5'000'000));
    EXPECT_EQ(memory->purgeable, 0);
    EXPECT_EQ(memory->compressed, kilobytes(300'000 + 100'000));
    EXPECT_EQ(memory->wired, kilobytes(6'500'000 - 5'000'000 - 400'000));
    EXPECT_EQ(memory->cached, kilobytes(500'000 + 5'500'000 - 500'000));
    EXPECT_EQ(memory->swapUsed, kilobytes(2'000'000));
    EXPECT_EQ(memory->swapTotal, kilobytes(8'000'000));
    EXPECT_FALSE(memory->pressure);  // this kernel does not tell
}

/// /proc/meminfo of a virtual machine with 24 GB and Linux 6.18, at rest. Its watermarks keep
/// hundreds of megabytes free, which nothing holds.
TEST(LinuxMemory, WhatTheSystemHoldsIsTheKernelsOwnAndNotItsReserve) {
    const auto memory = memoryFrom(
        "MemTotal:       24684084 kB\nMemFree:        10927964 kB\nMemAvailable:   23999712 kB\n"
        "Buffers:          380920 kB\nCached:         12374156 kB\nSwapCached:            0 kB\n"
        "SwapTotal:             0 kB\nSwapFree:              0 kB\nZswap:                 0 kB\n"
        "AnonPages:         73212 kB\nMapped:           127260 kB\nShmem:             23412 kB\n"
        "KReclaimable:     741364 kB\nSlab:             817744 kB\nSReclaimable:     741364 kB\n"
        "SUnreclaim:        76380 kB\nKernelStack:        1600 kB\nPageTables:         2900 kB\n"
        "SecPageTables:         0 kB\nVmallocUsed:       14364 kB\nPercpu:              976 kB\n",
        0);
    ASSERT_TRUE(memory);
    const std::int64_t named = kilobytes(76'380 + 1'600 + 2'900 + 14'364 + 976);
    EXPECT_GE(memory->wired, named);
    // What drivers hold has no name of its own.
    EXPECT_LE(memory->wired, named + kilobytes(100'000));
    EXPECT_EQ(memory->internal, kilobytes(73'212 + 23'412));
    // "total - available", which is 684,372 kB here, has the reserve in it.
    EXPECT_EQ(memory->internal + memory->wired, kilobytes(283'092));
    EXPECT_EQ(memory->cached, kilobytes(380'920 + 12'374'156 - 23'412 + 741'364));
}

TEST(LinuxMemory, FiguresThatContradictEachOtherNeverAddUpToMoreThanThereIs) {
    const auto memory = memoryFrom(
        "MemTotal: 1000 kB\nMemFree: 800 kB\nBuffers: 900 kB\nShmem: 700 kB\nCached: 600 kB\n"
        "AnonPages: 5000 kB\nZswap: 300 kB\nSwapTotal: 10 kB\nSwapFree: 20 kB\n",
        0);
    ASSERT_TRUE(memory);
    EXPECT_EQ(memory->cached, kilobytes(200));
    EXPECT_EQ(memory->compressed + memory->internal + memory->wired, 0);
    EXPECT_EQ(memory->swapUsed, 0);
    const auto small = memoryFrom("MemTotal: 1000 kB\nMemFree: 800 kB\nZswap: 300 kB\n", 0);
    EXPECT_EQ(small->compressed, kilobytes(200));
    EXPECT_EQ(small->wired, 0);
}

/// Kernels before 3.14 do not say what is available, and are read as the others are.
TEST(LinuxMemory, AnOldKernelThatDoesNotSayWhatIsAvailable) {
    const auto memory = memoryFrom(
        "MemTotal: 1000 kB\nMemFree: 300 kB\nBuffers: 50 kB\nCached: 250 kB\nShmem: 100 kB\n"
        "SReclaimable: 100 kB\n",
        0);
    ASSERT_TRUE(memory);
    EXPECT_EQ(memory->compressed + memory->internal + memory->wired, kilobytes(400));
    EXPECT_EQ(memory->cached, kilobytes(300));
}

TEST(LinuxMemory, NoTotalNoMemory) {
    EXPECT_FALSE(memoryFrom("", 0));
    EXPECT_FALSE(memoryFrom("MemFree: 5 kB\n", 0));
}

TEST_F(LinuxCounters, StallsAreThePressure) {
    proc("meminfo", meminfo);
    const auto level = [&](const char* some, const char* full) {
        proc("pressure/memory", "some avg10=" + std::string(some) +
                                    " avg60=0.00 avg300=0.00 total=1\n" + "full avg10=" + full +
                                    " avg60=0.00 avg300=0.00 total=1\n");
        return counters.memory()->pressure;
    };
    EXPECT_EQ(level("0.00", "0.00"), MemoryPressure::normal);
    EXPECT_EQ(level("9.99", "3.00"), MemoryPressure::normal);
    EXPECT_EQ(level("10.00", "9.99"), MemoryPressure::warning);
    EXPECT_EQ(level("45.10", "10.00"), MemoryPressure::critical);
    proc("pressure/memory", "");
    EXPECT_FALSE(counters.memory()->pressure);
    proc("pressure/memory", "some nothing\n");
    EXPECT_FALSE(counters.memory()->pressure);
}

TEST_F(LinuxCounters, AMachineThatTellsNothingIsNotAFailure) {
    EXPECT_FALSE(counters.processorTicks());
    EXPECT_FALSE(counters.memory());
    EXPECT_FALSE(counters.interfaces());
    EXPECT_FALSE(counters.battery());
    EXPECT_FALSE(counters.temperature());
    EXPECT_FALSE(counters.disks());
    EXPECT_FALSE(counters.graphics().busy);
    EXPECT_TRUE(counters.graphics().engines.empty());
    EXPECT_EQ(counters.thermalState(), ThermalState::nominal);
    EXPECT_FALSE(counters.isLowPowerModeOn());
    EXPECT_EQ(counters.loadAverage(), 0);
    EXPECT_EQ(counters.processorCount(), 1);
}

}  // namespace
}  // namespace velto
