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

/// A ThinkPad (T450s and its like) away from the wall once the first battery is used up; the
/// figures of github.com/jaor/xmobar/issues/315, where the second one's are as its model's.
TEST_F(PowerSupply, OfTwoBatteriesTheLevelIsThatOfBothTogetherAndOneThatRunsEmptyCounts) {
    supply("AC", {{"type", "Mains"}, {"online", "0"}});
    supply("BAT0", {{"type", "Battery"},
                    {"present", "1"},
                    {"status", "Unknown"},
                    {"capacity", "5"},
                    {"energy_now", "1410000"},
                    {"energy_full", "25860000"},
                    {"power_now", "0"},
                    {"cycle_count", "5"}});
    supply("BAT1", {{"type", "Battery"},
                    {"present", "1"},
                    {"status", "Discharging"},
                    {"capacity", "90"},
                    {"energy_now", "60840000"},
                    {"energy_full", "67600000"},
                    {"power_now", "8300000"},
                    {"cycle_count", "41"}});
    const auto found = battery();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->current, 1410000 + 60840000);
    EXPECT_EQ(found->maximum, 25860000 + 67600000);
    EXPECT_FALSE(found->isCharged);
    EXPECT_FALSE(found->isCharging);
    EXPECT_EQ(found->powerSource, "Battery Power");
    EXPECT_EQ(found->minutesToEmpty, 450);  // what both hold, at the pace of the one
    EXPECT_EQ(found->cycles, 41);
}

/// The same machine at the wall: it charges one battery at a time. An empty one says "Unknown"
/// meanwhile (github.com/enkore/i3pystatus/issues/156).
TEST_F(PowerSupply, OfTwoBatteriesOneThatChargesMeansCharging) {
    supply("AC", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Charging"},
                    {"energy_now", "10000000"},
                    {"energy_full", "25000000"},
                    {"power_now", "15000000"}});
    supply("BAT1", {{"type", "Battery"},
                    {"status", "Unknown"},
                    {"energy_now", "0"},
                    {"energy_full", "30380000"},
                    {"power_now", "0"}});
    const auto found = battery();
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->isCharging);
    EXPECT_EQ(found->minutesToFull, 182);  // 45.38 Wh at 15 W
    EXPECT_EQ(found->powerSource, "AC Power");
}

TEST_F(PowerSupply, TwoBatteriesAreChargedOnlyWhenBothAre) {
    supply("AC", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Full"},
                    {"charge_now", "3000000"},
                    {"charge_full", "3000000"}});
    supply("BAT1", {{"type", "Battery"},
                    {"status", "Not charging"},
                    {"charge_now", "4000000"},
                    {"charge_full", "5000000"}});
    EXPECT_FALSE(battery()->isCharged);
    EXPECT_EQ(battery()->current, 7000000);
    EXPECT_EQ(battery()->maximum, 8000000);
    EXPECT_EQ(battery()->powerSource, "AC Power");
    supply("BAT1", {{"status", "Full"}});
    EXPECT_TRUE(battery()->isCharged);
}

TEST_F(PowerSupply, TwoBatteriesThatCountInDifferentUnitsAreWeighedByTheirVoltage) {
    supply("BAT0", {{"type", "Battery"},
                    {"status", "Discharging"},
                    {"energy_now", "30000000"},
                    {"energy_full", "30000000"},
                    {"power_now", "10000000"}});
    supply("BAT1", {{"type", "Battery"},
                    {"status", "Discharging"},
                    {"charge_now", "1000000"},
                    {"charge_full", "3000000"},
                    {"current_now", "-500000"},
                    {"voltage_min_design", "10000000"}});
    const auto found = battery();
    EXPECT_EQ(found->current, 40000000);
    EXPECT_EQ(found->maximum, 60000000);
    EXPECT_EQ(found->minutesToEmpty, 160);  // 40 Wh at 15 W
}

TEST_F(PowerSupply, TwoBatteriesThatTellOnlyPercentWeighTheSame) {
    supply("BAT0", {{"type", "Battery"}, {"status", "Discharging"}, {"capacity", "80"}});
    supply("BAT1", {{"type", "Battery"},
                    {"status", "Discharging"},
                    {"capacity", "30"},
                    {"energy_now", "3000000"},
                    {"energy_full", "10000000"}});
    EXPECT_EQ(battery()->current, 110);
    EXPECT_EQ(battery()->maximum, 200);
    EXPECT_EQ(battery()->minutesToEmpty, -1);
}

/// A charge threshold at the wall, and a charger that is too weak or has just been unplugged.
TEST_F(PowerSupply, OneThatIsNotChargingIsOnTheAdapterOnlyWhenThereIsOne) {
    supply("BAT0", {{"type", "Battery"}, {"status", "Not charging"}, {"capacity", "80"}});
    EXPECT_EQ(battery()->powerSource, "AC Power");  // no adapter could say anything else
    supply("AC", {{"type", "Mains"}, {"online", "0"}});
    EXPECT_EQ(battery()->powerSource, "Battery Power");
    supply("AC", {{"online", "1"}});
    EXPECT_EQ(battery()->powerSource, "AC Power");
}

/// The ports of a laptop that charges by USB-C, as ucsi_acpi names them. A supply whose voltage is
/// negotiated says 2 (Documentation/ABI/testing/sysfs-class-power of the kernel).
TEST_F(PowerSupply, AUsbChargerIsAnAdapterAndAPortThatFeedsSomethingIsNot) {
    supply("BAT0", {{"type", "Battery"}, {"status", "Not charging"}, {"capacity", "80"}});
    supply("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"scope", "Device"}, {"online", "1"}});
    supply("ucsi-source-psy-USBC000:002", {{"type", "USB"}, {"scope", "System"}, {"online", "0"}});
    EXPECT_EQ(battery()->powerSource, "Battery Power");
    supply("ucsi-source-psy-USBC000:002", {{"online", "2"}});
    EXPECT_EQ(battery()->powerSource, "AC Power");
    supply("ucsi-source-psy-USBC000:002", {{"type", "USB_PD"}, {"online", "1"}});
    EXPECT_EQ(battery()->powerSource, "AC Power");
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
    EXPECT_EQ(battery()->maximum, 100);  // the mouse's is not in it
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

/// The choices of laptops of several makers: github.com/linrunner/TLP/issues/563,
/// github.com/PXDiv/Div-Acer-Manager-Max/issues/24, and the driver hp-wmi of the kernel.
TEST_F(PowerSupply, AQuietProfileSavesPowerWhereThereIsNoneThatIsMadeForIt) {
    const auto saved = [&](const char* choices, const char* profile) {
        machine.text("firmware/acpi/platform_profile_choices", std::string(choices) + "\n");
        machine.text("firmware/acpi/platform_profile", std::string(profile) + "\n");
        return isPowerSaved(machine.path());
    };
    const char* const withQuiet = "low-power quiet balanced balanced-performance performance";
    EXPECT_TRUE(saved(withQuiet, "low-power"));
    EXPECT_FALSE(saved(withQuiet, "quiet"));
    EXPECT_FALSE(saved("cool low-power balanced", "cool"));
    const char* const withoutLowPower = "cool quiet balanced performance";
    EXPECT_TRUE(saved(withoutLowPower, "cool"));
    EXPECT_TRUE(saved(withoutLowPower, "quiet"));
    EXPECT_FALSE(saved(withoutLowPower, "balanced"));
    EXPECT_FALSE(saved("low-power balanced performance", "performance"));
}

}  // namespace
}  // namespace velto
