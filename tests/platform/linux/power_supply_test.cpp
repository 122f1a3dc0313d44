#include "platform/linux/power_supply.h"

#include <gtest/gtest.h>

#include "support/TempHome.h"

namespace velto {
namespace {

struct PowerSupply : testing::Test {
    TempHome machine;

    void supply(const std::string& name,
                const std::vector<std::pair<std::string, std::string>>& all) {
        for (const auto& [file, text] : all) {
            machine.text("class/power_supply/" + name + "/" + file, text + "\n");
        }
    }
    std::optional<BatteryCounters> battery() { return batteryIn(machine.path()); }
};

TEST_F(PowerSupply, ABatteryThatRunsEmptyShowsItsChargeAndTime) {
    supply("AC", {{"type", "Mains"}, {"online", "0"}});
    supply("BAT0", {{"type", "Battery"},
                    {"present", "1"},
                    {"status", "Discharging"},
                    {"capacity", "81"},
                    {"energy_now", "40500000"},
                    {"energy_full", "50000000"},
                    {"power_now", "8100000"},
                    {"cycle_count", "77"}});
    const auto found = battery();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->current, 81);
    EXPECT_EQ(found->maximum, 100);
    EXPECT_FALSE(found->isCharged);
    EXPECT_FALSE(found->isCharging);
    EXPECT_EQ(found->powerSource, "Battery Power");
    EXPECT_EQ(found->minutesToEmpty, 300);
    EXPECT_EQ(found->cycles, 77);
}

TEST_F(PowerSupply, ABatteryThatCountsInAmperesAndNegativeCurrent) {
    supply("BAT1", {{"type", "Battery"},
                    {"status", "Charging"},
                    {"charge_now", "3000000"},
                    {"charge_full", "4000000"},
                    {"current_now", "-500000"},
                    {"cycle_count", "0"}});
    supply("ADP1", {{"type", "Mains"}, {"online", "1"}});
    const auto found = battery();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->current, 3000000);
    EXPECT_EQ(found->maximum, 4000000);
    EXPECT_TRUE(found->isCharging);
    EXPECT_EQ(found->minutesToFull, 120);
    EXPECT_EQ(found->powerSource, "AC Power");
    EXPECT_FALSE(found->cycles);
}

TEST_F(PowerSupply, TheFirmwaresOwnEstimateCounts) {
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Discharging"},
                    {"capacity", "50"},
                    {"time_to_empty_now", "5400"}});
    EXPECT_EQ(battery()->minutesToEmpty, 90);
}

TEST_F(PowerSupply, WithoutAFlowThereIsNoEstimate) {
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Discharging"},
                    {"energy_now", "1"},
                    {"energy_full", "2"},
                    {"power_now", "0"}});
    EXPECT_EQ(battery()->minutesToEmpty, -1);
}

TEST_F(PowerSupply, AFullOneAndOneThatOnlyWaitsAreOnTheAdapter) {
    supply("AC", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"}, {"status", "Full"}, {"capacity", "100"}});
    EXPECT_TRUE(battery()->isCharged);
    supply("BAT0", {{"status", "Not charging"},
                    {"capacity", "80"},
                    {"energy_now", "8"},
                    {"energy_full", "10"},
                    {"power_now", "1"}});
    EXPECT_FALSE(battery()->isCharged);
    EXPECT_EQ(battery()->powerSource, "AC Power");
    EXPECT_EQ(battery()->minutesToEmpty, -1);
}

TEST_F(PowerSupply, TheBatteryOfAMouseIsNotTheMachines) {
    supply("hid-mouse", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "40"}});
    EXPECT_FALSE(battery());
    supply("BAT9", {{"type", "Battery"}, {"present", "0"}});
    EXPECT_FALSE(battery());
    supply("cw2015", {{"type", "Battery"}, {"capacity", "55"}});
    EXPECT_EQ(battery()->current, 55);
}

TEST_F(PowerSupply, ThePowerProfileOfFirmwareOrProcessor) {
    EXPECT_FALSE(isPowerSaved(machine.path()));
    const char* preference = "devices/system/cpu/cpu0/cpufreq/energy_performance_preference";
    machine.text(preference, "power\n");
    EXPECT_TRUE(isPowerSaved(machine.path()));
    machine.text(preference, "balance_power\n");
    EXPECT_FALSE(isPowerSaved(machine.path()));
    machine.text("firmware/acpi/platform_profile", "low-power\n");
    EXPECT_TRUE(isPowerSaved(machine.path()));
    machine.text("firmware/acpi/platform_profile", "performance\n");
    EXPECT_FALSE(isPowerSaved(machine.path()));
}

struct Thermal : PowerSupply {
    void zone(const std::string& name, int temperature,
              const std::vector<std::pair<std::string, int>>& trips) {
        const std::string folder = "class/thermal/" + name + "/";
        machine.text(folder + "temp", std::to_string(temperature) + "\n");
        for (std::size_t i = 0; i < trips.size(); ++i) {
            const std::string start = folder + "trip_point_" + std::to_string(i);
            machine.text(start + "_type", trips[i].first + "\n");
            machine.text(start + "_temp", std::to_string(trips[i].second) + "\n");
        }
    }
    ThermalState state() { return thermalStateIn(machine.path()); }
};

TEST_F(Thermal, TheStateFollowsTheLimitsOfTheZone) {
    const auto at = [&](int temperature) {
        zone("thermal_zone0", temperature, {{"critical", 105'000}, {"passive", 90'000}});
        return state();
    };
    EXPECT_EQ(at(60'000), ThermalState::nominal);
    EXPECT_EQ(at(79'999), ThermalState::nominal);
    EXPECT_EQ(at(80'000), ThermalState::fair);
    EXPECT_EQ(at(90'000), ThermalState::serious);
    EXPECT_EQ(at(100'000), ThermalState::critical);
}

TEST_F(Thermal, AZoneThatOnlyTurnsTheMachineOffWarnsBeforeThat) {
    const auto at = [&](int temperature) {
        zone("thermal_zone0", temperature, {{"critical", 100'000}});
        return state();
    };
    EXPECT_EQ(at(70'000), ThermalState::nominal);
    EXPECT_EQ(at(80'000), ThermalState::fair);
    EXPECT_EQ(at(86'000), ThermalState::serious);
    EXPECT_EQ(at(95'000), ThermalState::critical);
}

TEST_F(Thermal, TheHottestZoneCountsAndOneWithoutLimitsSaysNothing) {
    zone("thermal_zone0", 40'000, {{"passive", 90'000}});
    zone("thermal_zone1", 99'000, {});
    zone("thermal_zone2", 120'000, {{"passive", -274'000}, {"active", 50'000}});
    zone("cooling_device0", 99'000, {{"passive", 10'000}});
    EXPECT_EQ(state(), ThermalState::nominal);
    zone("thermal_zone3", 92'000, {{"hot", 90'000}});
    EXPECT_EQ(state(), ThermalState::serious);
    machine.text("class/thermal/thermal_zone3/mode", "disabled\n");
    EXPECT_EQ(state(), ThermalState::nominal);
}

}  // namespace
}  // namespace velto
