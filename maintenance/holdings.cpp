#include "maintenance/holdings.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <set>

#include "maintenance/MaintenanceRun.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/values/units.h"

namespace velto {
namespace {

/// The local day of a time, in a form that orders days.
int dayOf(double time) {
    const auto seconds = static_cast<std::time_t>(time);
    std::tm date{};
    localtime_r(&seconds, &date);
    return date.tm_year * 366 + date.tm_yday;
}

}  // namespace

std::int64_t KeptFor::days(std::string_view rule) const {
    if (rule != cachesRule || !cacheDays) return retention;
    return std::min(retention, *cacheDays);
}

KeptFor keptFor(const VeltoSettings& settings) {
    const std::int64_t days = settings.cacheDays().value_or(0);
    return {.retention = settings.retention(),
            .cacheDays = days > 0 ? std::optional(days) : std::nullopt};
}

std::vector<HeldItem> heldItems(const std::vector<TrashItem>& items,
                                const std::vector<Operation>& operations,
                                const std::map<std::string, std::int64_t>& bytes,
                                const TakenItems& taken) {
    std::set<std::string_view> ours;
    for (const Operation& operation : operations) {
        if (operation.kind == maintenanceKind) ours.insert(operation.id);
    }
    std::vector<HeldItem> held;
    for (const TrashItem& item : items) {
        if (!ours.contains(item.opID)) continue;
        const auto known = bytes.find(item.id);
        held.push_back({.id = item.id,
                        .taken = item.taken,
                        .bytes = known != bytes.end() ? known->second
                                                      : std::llround(item.gb * bytesPerGigabyte),
                        .rule = taken.ruleOf(item)});
    }
    return held;
}

Holdings holdings(const std::vector<HeldItem>& held, const KeptFor& kept) {
    Holdings all;
    std::map<int, Holdings::Return> byDay;
    for (const HeldItem& item : held) {
        const std::int64_t days = kept.days(item.rule);
        if (days < kept.retention) all.days[item.id] = days;
        const double from = item.taken + static_cast<double>(days) * secondsPerDay;
        auto& day = byDay.try_emplace(dayOf(from), Holdings::Return{.from = from}).first->second;
        day.from = std::min(day.from, from);
        ++day.items;
        day.bytes += item.bytes;
        ++all.items;
        all.bytes += item.bytes;
    }
    for (const auto& [day, back] : byDay)
        all.returns.push_back(back);
    return all;
}

std::int64_t foretoldBytes(std::int64_t cacheBytes, std::int64_t days, std::string_view frequency) {
    const double seconds = static_cast<double>(days) * secondsPerDay;
    // What is exactly that old is kept by the pass that takes the next ones.
    const double sets = std::floor(seconds / maintenanceInterval(frequency)) + 1;
    constexpr double most = static_cast<double>(std::numeric_limits<std::int64_t>::max()) / 2;
    return static_cast<std::int64_t>(std::min(sets * static_cast<double>(cacheBytes), most));
}

}  // namespace velto
