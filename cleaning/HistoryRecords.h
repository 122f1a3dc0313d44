#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace velto {

struct HistoryItem {
    std::string name;
    double gb = 0;

    bool operator==(const HistoryItem&) const = default;
};

/// One cleanup of the past.
struct HistoryEntry {
    std::string id;  // of the trash operation that it was
    double ts = 0;   // seconds since 1970
    double gb = 0;
    std::vector<HistoryItem> items;
    std::string kind;

    bool operator==(const HistoryEntry&) const = default;
};

/// Keys equal the field names.
nlohmann::json toJson(const HistoryEntry& entry);

/// Strict: a missing or mistyped field throws nlohmann::json::exception.
HistoryEntry historyEntryFromJson(const nlohmann::json& object);

}  // namespace velto
