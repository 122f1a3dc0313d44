#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "maintenance/MaintenanceRecord.h"
#include "maintenance/MaintenanceRules.h"
#include "maintenance/holdings.h"

namespace velto {

/// What the settings show of the unattended maintenance.
struct MaintenanceStatus {
    struct RuleStatus {
        std::vector<std::string> places;    // the folders that the rule looks at
        std::optional<std::int64_t> items;  // what it would move now; nothing when not measured
        std::optional<double> gb;           // decimal gigabytes, not rounded; the same
        bool needsAccess = false;  // without Full Disk Access, which is missing, it does nothing
    };
    /// What the trash would come to hold of caches at a setting.
    struct Foretold {
        std::int64_t days = 0;  // 0: as long as everything else
        std::int64_t bytes = 0;
    };

    bool installed = false;
    std::optional<MaintenanceRecord> last;
    std::optional<double> next;  // seconds since 1970
    std::map<std::string, RuleStatus> rules;
    Holdings held;
    std::optional<std::int64_t> cacheDays;  // as the settings have them
    std::int64_t fullDiskGB = 0;            // the same
    std::vector<Foretold> foretold;         // for each choice; empty until caches are measured
};
using RuleStatuses = std::map<std::string, MaintenanceStatus::RuleStatus>;

/// The choices for how long caches are kept, in days; 0: as long as everything else.
inline constexpr std::array<std::int64_t, 4> cacheDayChoices{0, 7, 3, 1};

/// Without measuring, and without what the trash and the settings know. Quick; safe from every
/// thread.
MaintenanceStatus maintenanceStatus(const Platform& platform, std::string_view frequency,
                                    bool hasAccess);

/// For each choice, when caches of `cacheBytes` are made again between any two passes.
std::vector<MaintenanceStatus::Foretold> foretold(std::int64_t cacheBytes, std::int64_t retention,
                                                  std::string_view frequency);

/// Finds out what each rule would move now by itself, whether it is on or off. Blocks while folders
/// are measured and files compared.
void measureRules(RuleStatuses& rules, const Platform& platform,
                  const MaintenanceRules::Limits& limits);

/// {"installed","last","next","rules","held","cacheDays","fullDiskGB","foretold"}: `last` (an
/// object of the record's fields), `next` and `cacheDays` are null when unknown; each rule has
/// "places" and "needsAccess" and, when it was measured, "items" and "gb"; "held" has "items",
/// "bytes" and "returns", a list of "from", "items" and "bytes", and "days" by item id; "foretold"
/// is a list of "days" and "bytes".
nlohmann::json toJson(const MaintenanceStatus& status);

}  // namespace velto
