#include "maintenance/MaintenanceStatus.h"

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

MaintenanceStatus maintenanceStatus(const Platform& platform, std::string_view frequency) {
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
    return status;
}

void measureRules(MaintenanceStatus& status, const Platform& platform,
                  const MaintenanceRules::Limits& limits) {
    CleaningRules cleaning(platform, [&] { return limits.hasAccess; });
    MaintenanceRules rules(
        platform, [](const auto&, const auto&) { return 0.0; }, cleaning, limits);
    for (auto& [id, rule] : status.rules) {
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
        rules[id] = {{"places", rule.places}};
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
    return {{"installed", status.installed},
            {"last", std::move(last)},
            {"next", status.next ? json(*status.next) : json()},
            {"rules", std::move(rules)}};
}

}  // namespace velto
