#include "maintenance/MaintenanceStatus.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "maintenance/next_run.h"
#include "platform/values/path_text.h"

namespace velto {
namespace {

using nlohmann::json;

/// The roles that this home has.
std::vector<std::string> known(const std::vector<std::string>& places) {
    std::vector<std::string> known;
    for (const std::string& place : places) {
        if (!place.empty()) known.push_back(pathText(place));
    }
    return known;
}

}  // namespace

MaintenanceStatus maintenanceStatus(const Platform& platform, std::string_view frequency,
                                    bool hasAccess) {
    const HomeLayout& layout = platform.layout;
    MaintenanceStatus status;
    status.installed = platform.files->exists(layout.agentFile);
    status.last = lastMaintenance(*platform.files, layout);
    status.next = nextMaintenance(platform, frequency,
                                  status.last ? std::optional(status.last->ts) : std::nullopt);
    status.rules["systemTrash"].places = known({layout.systemTrash});
    status.rules["oldDownloads"].places = known({layout.downloads});
    status.rules["caches"].places = known({layout.caches, layout.xcodeDerivedData});
    status.rules["duplicates"].places = known({layout.downloads, layout.desktop, layout.documents});
    if (!hasAccess) {
        // The trash of a Mac is guarded too; caches lie where nobody guards them.
        for (auto& [id, rule] : status.rules)
            rule.needsAccess = id != cachesRule;
    }
    return status;
}

std::vector<MaintenanceStatus::Foretold> foretold(std::int64_t cacheBytes, std::int64_t retention,
                                                  std::string_view frequency) {
    std::vector<MaintenanceStatus::Foretold> all;
    for (const std::int64_t days : cacheDayChoices) {
        const std::int64_t kept = days == 0 ? retention : std::min(days, retention);
        all.push_back({.days = days, .bytes = foretoldBytes(cacheBytes, kept, frequency)});
    }
    return all;
}

void measureRules(RuleStatuses& statuses, const Platform& platform,
                  const MaintenanceRules::Limits& limits) {
    CleaningRules cleaning(platform, [&] { return limits.hasAccess; });
    MaintenanceRules rules(
        platform, [](const auto&, const auto&) { return 0.0; }, cleaning, limits);
    for (auto& [id, rule] : statuses) {
        const auto candidates = rules.candidates({{id, true}});
        rule.items = static_cast<std::int64_t>(candidates.size());
        double gb = 0;
        for (const auto& candidate : candidates)
            gb += candidate.gb;
        rule.gb = gb;
    }
}

json toJson(const MaintenanceStatus& status) {
    json rules = json::object();
    for (const auto& [id, rule] : status.rules) {
        rules[id] = {{"places", rule.places}, {"needsAccess", rule.needsAccess}};
        if (rule.items) rules[id]["items"] = *rule.items;
        if (rule.gb) rules[id]["gb"] = *rule.gb;
    }
    json last;
    if (status.last) {
        last = {{"ts", status.last->ts},
                {"freed", status.last->freed},
                {"moved", status.last->moved},
                {"movedGB", status.last->movedGB}};
    }
    json returns = json::array();
    for (const Holdings::Return& back : status.held.returns)
        returns.push_back({{"from", back.from}, {"items", back.items}, {"bytes", back.bytes}});
    json foretold = json::array();
    for (const auto& choice : status.foretold)
        foretold.push_back({{"days", choice.days}, {"bytes", choice.bytes}});
    return {{"installed", status.installed},
            {"last", std::move(last)},
            {"next", status.next ? json(*status.next) : json()},
            {"rules", std::move(rules)},
            {"held",
             {{"items", status.held.items},
              {"bytes", status.held.bytes},
              {"returns", std::move(returns)},
              {"days", status.held.days}}},
            {"cacheDays", status.cacheDays ? json(*status.cacheDays) : json()},
            {"fullDiskGB", status.fullDiskGB},
            {"foretold", std::move(foretold)}};
}

}  // namespace velto
