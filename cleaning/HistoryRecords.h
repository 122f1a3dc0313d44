#pragma once

#include <string>
#include <string_view>
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

/// Strict: a missing or mistyped field throws nlohmann::json::exception.
HistoryEntry historyEntryFromJson(const nlohmann::json& object);

/// The JSON list of the entries, compact, with sorted keys that equal the field names, and back.
/// Strict as well; writing throws for a number
/// that is not finite, too. Neither takes much memory beside the text and the entries.
std::string encodeHistory(const std::vector<HistoryEntry>& entries);
std::vector<HistoryEntry> decodeHistory(std::string_view text);

}  // namespace velto
