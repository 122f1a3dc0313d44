#include "maintenance/next_run.h"

#include <algorithm>
#include <ctime>

#include "maintenance/MaintenanceRecord.h"
#include "maintenance/MaintenanceScheduler.h"

namespace velto {
namespace {

constexpr int saturday = 6;  // of tm_wday

/// When an installed schedule should run next, also when that has passed.
std::optional<double> dueTime(const Platform& platform, std::string_view frequency,
                              std::optional<double> lastRun) {
    const auto installed = platform.files->attributes(platform.layout.agentFile);
    if (!installed) return std::nullopt;
    // A time that is still to come was noted before the clock was set back.
    const double from =
        std::min(std::max(installed->modified, lastRun.value_or(0)), platform.clock->now());
    const bool isTimer = platform.layout.kind == HomeLayout::Kind::freedesktop;
    return isTimer ? nextCalendarRun(from, frequency) : from + maintenanceInterval(frequency);
}

}  // namespace

double nextCalendarRun(double now, std::string_view frequency) {
    const auto seconds = static_cast<std::time_t>(now);
    std::tm date{};
    localtime_r(&seconds, &date);
    date.tm_hour = date.tm_min = date.tm_sec = 0;
    date.tm_isdst = -1;  // whatever it will be then
    if (frequency == "daily") {
        date.tm_mday += 1;
    } else if (frequency == "monthly") {
        date.tm_mday = 1;
        date.tm_mon += 1;
    } else {
        const int days = (saturday - date.tm_wday + 7) % 7;
        date.tm_mday += days == 0 ? 7 : days;
    }
    return static_cast<double>(std::mktime(&date));
}

std::optional<double> nextMaintenance(const Platform& platform, std::string_view frequency,
                                      std::optional<double> lastRun) {
    const auto due = dueTime(platform, frequency, lastRun);
    return due ? std::optional(std::max(platform.clock->now(), *due)) : std::nullopt;
}

bool isMaintenanceOverdue(const Platform& platform, std::string_view frequency) {
    const auto last = lastMaintenance(*platform.files, platform.layout);
    const auto due = dueTime(platform, frequency, last ? std::optional(last->ts) : std::nullopt);
    return due && *due <= platform.clock->now();
}

}  // namespace velto
