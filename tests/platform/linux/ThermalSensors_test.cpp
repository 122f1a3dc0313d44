#include "platform/linux/ThermalSensors.h"

#include <gtest/gtest.h>

#include "support/TempHome.h"

namespace velto {
namespace {

using Part = Temperature::Part;

/// A made sysfs.
struct Thermal : testing::Test {
    TempHome machine;

    void zone(const std::string& name, int temperature,
              const std::vector<std::pair<std::string, int>>& trips,
              const std::string& type = "acpitz") {
        const std::string folder = "class/thermal/" + name + "/";
        machine.text(folder + "temp", std::to_string(temperature) + "\n");
        machine.text(folder + "type", type + "\n");
        for (std::size_t i = 0; i < trips.size(); ++i) {
            const std::string start = folder + "trip_point_" + std::to_string(i);
            machine.text(start + "_type", trips[i].first + "\n");
            machine.text(start + "_temp", std::to_string(trips[i].second) + "\n");
        }
    }
    void hardware(const std::string& folder, const std::string& name,
                  const std::vector<std::pair<std::string, int>>& files) {
        machine.text("class/hwmon/" + folder + "/name", name + "\n");
        for (const auto& [file, value] : files) {
            machine.text("class/hwmon/" + folder + "/" + file, std::to_string(value) + "\n");
        }
    }
    ThermalState state() { return ThermalSensors(machine.path()).state(); }
    /// -1 where nothing is told.
    double degrees() {
        const auto told = ThermalSensors(machine.path()).temperature();
        return told ? told->celsius : -1;
    }
    std::optional<Part> part() {
        const auto told = ThermalSensors(machine.path()).temperature();
        return told ? std::optional(told->part) : std::nullopt;
    }
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

TEST_F(Thermal, NothingIsCriticalBeforeItIsSlowedDown) {
    const auto at = [&](int temperature) {
        zone("thermal_zone0", temperature, {{"critical", 105'000}, {"passive", 103'000}});
        return state();
    };
    EXPECT_EQ(at(101'000), ThermalState::fair);
    EXPECT_EQ(at(103'000), ThermalState::critical);
}

TEST_F(Thermal, TheHottestZoneCountsAndOneWithoutLimitsSaysNothing) {
    zone("thermal_zone0", 40'000, {{"passive", 90'000}});
    zone("thermal_zone1", 99'000, {});
    zone("thermal_zone2", 120'000, {{"passive", -274'000}, {"active", 50'000}});
    zone("cooling_device0", 99'000, {{"passive", 45'000}});
    EXPECT_EQ(state(), ThermalState::nominal);
    zone("thermal_zone3", 92'000, {{"hot", 90'000}});
    EXPECT_EQ(state(), ThermalState::serious);
    machine.text("class/thermal/thermal_zone3/mode", "disabled\n");
    EXPECT_EQ(state(), ThermalState::nominal);
}

/// What the firmware of many desktop boards leaves in acpitz, as `sensors` shows it: 16.8 °C with
/// a critical limit of 20.8 °C, whatever the machine does.
TEST_F(Thermal, ATripPointThatNoMachineCouldRunWithIsNone) {
    zone("thermal_zone0", 16'800, {{"critical", 20'800}});
    zone("thermal_zone1", 27'800, {{"critical", 27'000}, {"passive", 20'000}});
    EXPECT_EQ(state(), ThermalState::nominal);
    zone("thermal_zone2", 58'000, {{"critical", 60'000}});  // a small board's, and true
    EXPECT_EQ(state(), ThermalState::critical);
}

/// Trip points of a laptop, from github.com/intel/thermal_daemon/issues/231.
TEST_F(Thermal, LimitsThatAreNotSetAreNone) {
    zone("thermal_zone8", 61'500, {{"critical", 115'000}}, "pch_skylake");
    zone("thermal_zone11", 44'000, {{"passive", -32'768'000}, {"passive", -32'768'000}},
         "iwlwifi_1");
    EXPECT_EQ(state(), ThermalState::nominal);
    EXPECT_EQ(degrees(), 61.5);
    EXPECT_EQ(part(), Part::machine);
}

/// A desktop without thermal zones of its own; the figures of
/// github.com/Sepero/temp-throttle/issues/45, where Tctl has no limit and the disk's own two do.
TEST_F(Thermal, WithoutZonesTheHardwareSays) {
    hardware("hwmon1", "nvme",
             {{"temp1_input", 23'850},
              {"temp1_max", 81'850},
              {"temp1_crit", 84'850},
              {"temp2_input", 99'000},
              {"temp2_max", 65'261'850}});
    hardware("hwmon2", "k10temp", {{"temp1_input", 30'500}, {"temp3_input", 24'000}});
    hardware("hwmon3", "nct6779", {{"temp1_input", 127'000}, {"temp1_max", 80'000}});
    EXPECT_EQ(state(), ThermalState::nominal);
    EXPECT_EQ(degrees(), 30.5);
    EXPECT_EQ(part(), Part::processor);

    hardware("hwmon1", "nvme", {{"temp1_input", 80'850}});
    EXPECT_EQ(state(), ThermalState::fair);
    EXPECT_EQ(degrees(), 80.85);  // what is hot is told
    EXPECT_EQ(part(), Part::disk);
    hardware("hwmon1", "nvme", {{"temp1_input", 81'850}});
    EXPECT_EQ(state(), ThermalState::critical);
}

/// A desktop processor (coretemp): `max` is 80 °C, where its fan should run; it slows itself down
/// at `crit`, and is not turned off there.
TEST_F(Thermal, AProcessorIsHotWhereItSlowsItselfDown) {
    const auto at = [&](int temperature) {
        hardware("hwmon0", "coretemp",
                 {{"temp1_input", temperature}, {"temp1_max", 80'000}, {"temp1_crit", 100'000}});
        return state();
    };
    EXPECT_EQ(at(85'000), ThermalState::nominal);
    EXPECT_EQ(at(90'000), ThermalState::fair);
    EXPECT_EQ(at(100'000), ThermalState::serious);
    EXPECT_EQ(at(104'000), ThermalState::serious);
}

TEST_F(Thermal, ZonesWithLimitsComeBeforeTheHardware) {
    zone("thermal_zone0", 50'000, {{"critical", 105'000}});
    zone("thermal_zone1", 62'000, {}, "x86_pkg_temp");
    hardware("hwmon1", "nvme",
             {{"temp1_input", 84'000}, {"temp1_max", 81'850}, {"temp1_crit", 84'850}});
    EXPECT_EQ(state(), ThermalState::nominal);
    EXPECT_EQ(degrees(), 62);
    EXPECT_EQ(part(), Part::processor);
}

/// Limits of an RX 6700 XT: 100 °C at the edge, 105 °C in an emergency.
TEST_F(Thermal, ASleepingGraphicsProcessorIsNotWokenUp) {
    hardware("hwmon4", "amdgpu",
             {{"temp1_input", 101'000}, {"temp1_crit", 100'000}, {"temp1_emergency", 105'000}});
    EXPECT_EQ(state(), ThermalState::critical);
    EXPECT_EQ(part(), Part::graphics);
    machine.text("class/hwmon/hwmon4/device/power/runtime_status", "suspended\n");
    EXPECT_EQ(state(), ThermalState::nominal);
    EXPECT_EQ(degrees(), -1);
}

TEST_F(Thermal, ASensorThatSaysWhatCannotBeIsBroken) {
    zone("thermal_zone0", -273'150, {{"critical", 100'000}});
    zone("thermal_zone1", 0, {{"critical", 100'000}});
    zone("thermal_zone2", 255'000, {{"critical", 100'000}});
    EXPECT_EQ(state(), ThermalState::nominal);
    EXPECT_EQ(degrees(), -1);
    // Zones that cannot be read say nothing.
    hardware("hwmon0", "coretemp", {{"temp1_input", 100'000}, {"temp1_crit", 100'000}});
    EXPECT_EQ(state(), ThermalState::serious);
}

TEST_F(Thermal, ADiskIsAskedNowAndThenAndTheRestAtEveryReading) {
    hardware("hwmon0", "nvme",
             {{"temp1_input", 40'000}, {"temp1_max", 80'000}, {"temp1_crit", 90'000}});
    ThermalSensors sensors(machine.path());
    EXPECT_EQ(sensors.temperature()->celsius, 40);
    hardware("hwmon0", "nvme", {{"temp1_input", 41'000}});
    for (int reading = 1; reading < ThermalSensors::readingsBetweenQuestions; ++reading)
        EXPECT_EQ(sensors.temperature()->celsius, 40);
    EXPECT_EQ(sensors.temperature()->celsius, 41);
}

TEST_F(Thermal, ASensorThatComesLaterIsFound) {
    ThermalSensors sensors(machine.path());
    EXPECT_FALSE(sensors.temperature());
    hardware("hwmon0", "coretemp", {{"temp1_input", 50'000}});
    for (int reading = 1; reading < ThermalSensors::readingsBetweenSearches; ++reading)
        sensors.state();
    EXPECT_TRUE(sensors.temperature());
}

}  // namespace
}  // namespace velto
