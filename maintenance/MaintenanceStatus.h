#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "maintenance/MaintenanceRecord.h"
#include "maintenance/MaintenanceRules.h"

namespace velto {

/// What the settings show of the unattended maintenance.
struct MaintenanceStatus {
    struct RuleStatus {
        std::vector<std::string> places;    // the folders that the rule looks at
        std::optional<std::int64_t> items;  // what it would move now; nothing when not measured
        std::optional<double> gb;           // decimal gigabytes, not rounded; the same
    };

    bool installed = false;
    std::optional<MaintenanceRecord> last;
    std::optional<double> next;  // seconds since 1970
    std::map<std::string, RuleStatus> rules;
};

/// Without measuring. Quick; safe from every thread.
MaintenanceStatus maintenanceStatus(const Platform& platform, std::string_view frequency);

/// Finds out what each rule would move now by itself, whether it is on or off. Blocks while folders
/// are measured and files compared.
void measureRules(MaintenanceStatus& status, const Platform& platform,
                  const MaintenanceRules::Limits& limits);

/// {"installed","last","next","rules"}: `last` (an object of the record's fields) and `next` are
/// null when unknown; each rule has "places" and, when it was measured, "items" and "gb".
nlohmann::json toJson(const MaintenanceStatus& status);

}  // namespace velto
