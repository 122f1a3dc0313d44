#include "cleaning/HistoryRecords.h"

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/path_text.h"

namespace velto {

using nlohmann::json;

json toJson(const HistoryEntry& entry) {
    json items = json::array();
    for (const HistoryItem& item : entry.items) {
        items.push_back({{"name", pathText(item.name)}, {"gb", item.gb}});
    }
    return {{"id", entry.id},
            {"ts", entry.ts},
            {"gb", entry.gb},
            {"items", std::move(items)},
            {"kind", entry.kind}};
}

HistoryEntry historyEntryFromJson(const json& object) {
    const auto item = [](const json& value) {
        return HistoryItem{.name = pathBytes(field<std::string>(value, "name")),
                           .gb = field<double>(value, "gb")};
    };
    return {.id = field<std::string>(object, "id"),
            .ts = field<double>(object, "ts"),
            .gb = field<double>(object, "gb"),
            .items = listFrom(object, "items", item),
            .kind = field<std::string>(object, "kind")};
}

}  // namespace velto
