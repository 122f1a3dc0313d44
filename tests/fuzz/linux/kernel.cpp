#include <cmath>
#include <exception>

#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedHome.h"
#include "fuzz/engine/sections.h"
#include "monitor/activity.h"
#include "monitor/sampling.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/values/json_fields.h"

namespace velto::fuzz {
namespace {

void proveShare(const sampling::Dictionary& dictionary) {
    require(isFinite(nlohmann::json(dictionary)), "all figures can be written");
    const auto share = dictionary.find("pct");
    if (share == dictionary.end()) return;
    require(share->get<double>() >= 0, "a share is not negative");
}

/// A made machine: each section is a file below "proc/" or "sys/".
void judge(std::string_view input) {
    ConfinedHome machine;
    machine.home.folder("proc");
    machine.home.folder("sys");
    for (const Section& section : sectionsIn(input)) {
        const bool isWanted = section.name.starts_with("proc/") || section.name.starts_with("sys/");
        if (!isWanted || !canBeMade(section.name) || machine.home.exists(section.name)) continue;
        try {
            machine.home.text(section.name, section.content);
        } catch (const std::exception&) {
            return;  // a file in the place of a folder
        }
    }
    LinuxSystemCounters counters(machine.home.path("proc"), machine.home.path("sys"));
    if (const auto ticks = counters.processorTicks()) {
        const auto share = sampling::processorShare({}, *ticks);
        require(!share || (*share >= 0 && *share <= 100), "a share of the processors");
    }
    require(counters.processorCount() >= 1, "there is a processor");
    require(!std::isnan(counters.loadAverage()), "a load");
    if (const auto memory = counters.memory()) {
        require(memory->physical > 0, "memory");
        require(memory->internal >= 0 && memory->wired >= 0 && memory->compressed >= 0 &&
                    memory->cached >= 0 && memory->swapUsed >= 0,
                "no part of the memory is negative");
        proveShare(sampling::memoryDictionary(*memory));
    }
    proveShare(sampling::thermalDictionary(counters.thermalState(), counters.isLowPowerModeOn()));
    sampling::batteryDictionary(counters.battery());
    if (const auto heat = counters.temperature()) {
        require(heat->celsius >= 1 && heat->celsius <= 150, "a temperature that can be");
    }
    if (const auto disks = counters.disks()) {
        const auto rates = sampling::diskRates({}, *disks, 2);
        require(rates && std::isfinite(rates->read), "disks that have just come");
        for (const DiskCounters& one : *disks)
            require(!one.name.empty(), "a disk has a name");
    }
    const auto load = sampling::graphicsLoad({}, counters.graphics(), 2);
    require(!load || (*load >= 0 && *load <= 100), "a share of the graphics processors");
    if (const auto interfaces = counters.interfaces()) {
        const auto sums = sampling::sumOf(*interfaces);
        proveShare(sampling::networkDictionary(sums, sums, 2));
    }
}

const Registration registered("kernel", judge);

}  // namespace
}  // namespace velto::fuzz
