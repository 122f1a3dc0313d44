#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/engine/Target.h"
#include "maintenance/systemd_units.h"

namespace velto::fuzz {
namespace {

constexpr std::string_view start = "\nExecStart=\"";
constexpr std::string_view end = "\" --maintenance\n";

/// A path that a unit can start is in it as it is, and brings no line of its own.
void judge(std::string_view input) {
    if (canBeStartedByUnit(input)) {
        const std::string unit = maintenanceServiceText(input);
        const std::string usual = maintenanceServiceText("/usr/bin/velto");
        require(std::ranges::count(unit, '\n') == std::ranges::count(usual, '\n'), "no new line");
        const std::size_t from = unit.find(start) + start.size();
        const std::string_view quoted = std::string_view(unit).substr(from, unit.rfind(end) - from);
        std::string path;
        for (std::size_t at = 0; at < quoted.size(); ++at) {
            if (quoted[at] == '%') {
                require(at + 1 < quoted.size() && quoted[at + 1] == '%', "no specifier");
                ++at;
            }
            path += quoted[at];
        }
        require(path == input, "the path is whole");
    }
    const std::string timer = maintenanceTimerText(input);
    require(timer == maintenanceTimerText("daily") || timer == maintenanceTimerText("monthly") ||
                timer == maintenanceTimerText("weekends"),
            "an unknown frequency is one of the known");
}

const Registration registered("unit", judge);

}  // namespace
}  // namespace velto::fuzz
