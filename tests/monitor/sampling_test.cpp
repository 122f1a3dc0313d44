#include "monitor/sampling.h"

#include <gtest/gtest.h>

namespace velto {
namespace {

using namespace sampling;

TEST(ProcessorShare, IsTheBusyPartOfAllTicks) {
    EXPECT_DOUBLE_EQ(*processorShare({100, 50, 800, 50}, {120, 60, 860, 60}), 40);
    EXPECT_DOUBLE_EQ(*processorShare({0, 0, 0, 0}, {0, 0, 10, 0}), 0);
    EXPECT_DOUBLE_EQ(*processorShare({0, 0, 7, 0}, {5, 5, 7, 5}), 100);
}

TEST(ProcessorShare, ACounterThatWrappedAroundShowsNoPeak) {
    const ProcessorTicks before{0xFFFFFFF6, 0xFFFFFFFB, 0xFFFFFFCE, 0xFFFFFFFF};
    const ProcessorTicks now{10, 5, 50, 19};  // 20 + 10 + 100 + 20 ticks further
    EXPECT_NEAR(*processorShare(before, now), 100.0 * 50 / 150, 1e-9);
}

TEST(ProcessorShare, NoTickNoShare) { EXPECT_FALSE(processorShare({1, 2, 3, 4}, {1, 2, 3, 4})); }

MemoryCounters halfUsed() {
    return {.physical = 16'000'000'000,
            .internal = 6'000'000'000,
            .purgeable = 1'000'000'000,
            .wired = 2'000'000'000,
            .compressed = 1'000'000'000,
            .cached = 3'000'000'000,
            .swapUsed = 500'000'000,
            .swapTotal = 2'000'000'000};
}

TEST(Memory, IsGivenInDecimalGigabytesUnderKeysInOrder) {
    EXPECT_EQ(memoryDictionary(halfUsed()).dump(),
              R"({"total":16.0,"used":8.0,"pct":50.0,"app":5.0,"wired":2.0,"compressed":1.0,)"
              R"("cached":3.0,"pressure":"normal","swapUsed":0.5,"swapTotal":2.0})");
}

TEST(Memory, MoreDroppableThanThereIsCountsAsNone) {
    MemoryCounters memory = halfUsed();
    memory.purgeable = 7'000'000'000;
    const Dictionary result = memoryDictionary(memory);
    EXPECT_EQ(result["app"], 0.0);
    EXPECT_EQ(result["used"], 3.0);
}

TEST(Memory, NeverMoreIsUsedThanThereIs) {
    MemoryCounters memory = halfUsed();
    memory.wired = 20'000'000'000;
    EXPECT_EQ(memoryDictionary(memory)["used"], 16.0);
}

TEST(MemoryPressure, TheKernelsWordCounts) {
    MemoryCounters memory = halfUsed();
    memory.swapUsed = memory.swapTotal;
    memory.pressure = MemoryPressure::normal;
    EXPECT_EQ(pressureName(memory, 99), "normal");
    memory.pressure = MemoryPressure::warning;
    EXPECT_EQ(pressureName(memory, 1), "warning");
    memory.pressure = MemoryPressure::critical;
    EXPECT_EQ(pressureName(memory, 1), "critical");
}

TEST(MemoryPressure, WithoutTheKernelsWordSwapTellsFirst) {
    MemoryCounters memory = halfUsed();
    memory.swapTotal = 1000;
    memory.swapUsed = 800;
    EXPECT_EQ(pressureName(memory, 10), "critical");
    memory.swapUsed = 750;  // not above the limit
    EXPECT_EQ(pressureName(memory, 10), "warning");
    memory.swapUsed = 500;
    EXPECT_EQ(pressureName(memory, 10), "warning");
    memory.swapUsed = 400;
    EXPECT_EQ(pressureName(memory, 10), "normal");
}

TEST(MemoryPressure, WithoutSwapAlmostFullMemoryIsAWarning) {
    MemoryCounters memory = halfUsed();
    memory.swapTotal = memory.swapUsed = 0;
    EXPECT_EQ(pressureName(memory, 93), "warning");
    EXPECT_EQ(pressureName(memory, 92), "normal");
}

TEST(Disk, TheShareIsWhatIsNotFree) {
    EXPECT_EQ(diskDictionary(500, 125).dump(), R"({"total":500.0,"free":125.0,"pct":75.0})");
    EXPECT_EQ(diskDictionary(500, -5)["pct"], 100.0);
}

TEST(Thermal, EveryStateHasItsName) {
    const auto name = [](ThermalState state) { return thermalDictionary(state, false)["state"]; };
    EXPECT_EQ(name(ThermalState::nominal), "nominal");
    EXPECT_EQ(name(ThermalState::fair), "fair");
    EXPECT_EQ(name(ThermalState::serious), "serious");
    EXPECT_EQ(name(ThermalState::critical), "critical");
    EXPECT_EQ(thermalDictionary(ThermalState::nominal, true)["lowPower"], true);
}

TEST(Battery, AMachineWithoutOneSaysSoAndNothingElse) {
    EXPECT_EQ(batteryDictionary(std::nullopt).dump(), R"({"avail":false})");
}

TEST(Battery, ShowsChargeStateTimeAndAge) {
    const BatteryCounters battery{.current = 4012,
                                  .maximum = 4950,
                                  .powerSource = "Battery Power",
                                  .minutesToFull = 20,
                                  .minutesToEmpty = 312,
                                  .cycles = 77};
    EXPECT_EQ(batteryDictionary(battery).dump(),
              R"({"avail":true,"pct":81,"state":"discharging","minutes":312,"cycles":77})");
}

TEST(Battery, TheStateIsTheFirstThatHolds) {
    BatteryCounters battery{.current = 1, .maximum = 1, .powerSource = "Battery Power"};
    EXPECT_EQ(batteryDictionary(battery)["state"], "discharging");
    battery.powerSource = "AC Power";
    EXPECT_EQ(batteryDictionary(battery)["state"], "ac");
    battery.isCharging = true;
    EXPECT_EQ(batteryDictionary(battery)["state"], "charging");
    battery.isCharged = true;
    EXPECT_EQ(batteryDictionary(battery)["state"], "charged");
}

TEST(Battery, WhileItChargesTheTimeIsThatToFull) {
    const BatteryCounters battery{
        .maximum = 100, .isCharging = true, .minutesToFull = 20, .minutesToEmpty = 312};
    EXPECT_EQ(batteryDictionary(battery)["minutes"], 20);
}

TEST(Battery, AnEstimateThatIsNotThereYetIsZeroAndAnUnknownMaximumGivesNoShare) {
    const Dictionary result = batteryDictionary(BatteryCounters{.current = 50});
    EXPECT_EQ(result["minutes"], 0);
    EXPECT_FALSE(result.contains("pct"));
    EXPECT_FALSE(result.contains("cycles"));
}

TEST(Network, RatesAreBytesPerSecondAndTheBusiestInterfaceIsNamed) {
    const auto before = sumOf({{"en0", 1000, 100}, {"en1", 5000, 0}});
    const auto now = sumOf({{"en0", 3000, 300}, {"en1", 5000, 0}});
    EXPECT_EQ(networkDictionary(before, now, 2).dump(),
              R"({"avail":true,"iface":"en1","down":1000.0,"up":100.0})");
}

TEST(Network, ACounterThatWrappedAroundGivesASmallRateAndNoNegativeOne) {
    const auto before = sumOf({{"en0", 4'294'967'000, 4'294'967'295}});
    const auto now = sumOf({{"en0", 104, 1}});
    const Dictionary net = networkDictionary(before, now, 2);
    EXPECT_EQ(net["down"], 200.0);
    EXPECT_EQ(net["up"], 1.0);
}

TEST(Network, OneOfSeveralCountersThatWrappedAroundGivesASmallRate) {
    const auto before = sumOf({{"en0", 4'294'967'000, 0}, {"en1", 50'000, 0}});
    const auto now = sumOf({{"en0", 104, 0}, {"en1", 50'600, 0}});
    EXPECT_EQ(networkDictionary(before, now, 1)["down"], 1000.0);
}

TEST(Network, AnInterfaceThatIsUnpluggedShowsNoPeak) {
    const auto before = sumOf({{"en0", 9'000'000, 0}, {"en1", 100, 0}});
    const auto now = sumOf({{"en1", 200, 0}});
    const Dictionary net = networkDictionary(before, now, 1);
    EXPECT_EQ(net["down"], 0.0);
    EXPECT_EQ(net["iface"], "en1");
}

TEST(Network, AWideCounterThatLosesMoreThanAWrapShowsNoPeak) {
    EXPECT_EQ(bytesBetween(std::uint64_t{1} << 40, 5), 0u);
}

TEST(Network, AWideCounterThatGoesBackHasBegunAnewAndOneThatGrowsHasNot) {
    const auto sums = [](std::uint64_t received, std::uint64_t sent) {
        return sumOf({{"wlan0", received, sent, true}, {"eth0", 3'000'000'000, 7, true}});
    };
    EXPECT_FALSE(hasBegunAnew(sums(4'294'967'000, 50), sums(4'294'999'000, 50)));
    // A driver that was loaded again. As a counter of 32 bits it would have moved 2 GB.
    EXPECT_TRUE(hasBegunAnew(sums(2'200'000'000, 50), sums(1'000, 50)));
    EXPECT_TRUE(hasBegunAnew(sums(2'200'000'000, 50), sums(2'200'000'000, 0)));
    EXPECT_FALSE(hasBegunAnew(sumOf({{"eth1", 500, 5, true}}), sums(1, 1)));
    EXPECT_FALSE(hasBegunAnew(sumOf({{"en0", 4'294'967'000, 9}}), sumOf({{"en0", 104, 1}})));
}

TEST(Network, AMachineWithoutAnInterfaceSaysSo) {
    EXPECT_EQ(networkDictionary(sumOf({}), sumOf({}), 1).dump(), R"({"avail":false})");
}

}  // namespace
}  // namespace velto
