#include "cleaning/HistoryRecords.h"

#include <cmath>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto {

using nlohmann::json;

namespace {

void appendFinite(std::string& text, double number) {
    if (!std::isfinite(number)) throw json::other_error::create(600, "number not finite", nullptr);
    appendJson(text, number);
}

HistoryItem historyItemFrom(const json& object) {
    return {.name = pathBytes(field<std::string>(object, "name")),
            .gb = field<double>(object, "gb")};
}

}  // namespace

HistoryEntry historyEntryFromJson(const json& object) {
    return {.id = field<std::string>(object, "id"),
            .ts = field<double>(object, "ts"),
            .gb = field<double>(object, "gb"),
            .items = listFrom(object, "items", historyItemFrom),
            .kind = field<std::string>(object, "kind")};
}

std::string encodeHistory(const std::vector<HistoryEntry>& entries) {
    // Text by text: the entries as one JSON value would take many times their own memory.
    std::string text = "[";
    for (const HistoryEntry& entry : entries) {
        if (text.size() > 1) text += ',';
        text += R"({"gb":)";
        appendFinite(text, entry.gb);
        text += R"(,"id":)";
        appendJson(text, entry.id);
        text += R"(,"items":[)";
        const char* separator = "";
        for (const HistoryItem& item : entry.items) {
            text += separator;
            text += R"({"gb":)";
            appendFinite(text, item.gb);
            text += R"(,"name":)";
            appendJson(text, pathText(item.name));
            text += '}';
            separator = ",";
        }
        text += R"(],"kind":)";
        appendJson(text, entry.kind);
        text += R"(,"ts":)";
        appendFinite(text, entry.ts);
        text += '}';
    }
    text += ']';
    return text;
}

std::vector<HistoryEntry> decodeHistory(std::string_view text) {
    const std::vector<std::string> anEntry{""};
    const std::vector<std::string> anItem{"", "items", ""};
    std::vector<HistoryEntry> entries;
    std::vector<HistoryItem> ofEntry;
    const json rest = parseJson(text, [&](const auto& members, const json& object) {
        if (members == anItem) ofEntry.push_back(historyItemFrom(object));
        if (members != anEntry) return;
        HistoryEntry entry = historyEntryFromJson(object);  // whose items have been taken
        ofEntry.shrink_to_fit();
        entry.items = std::exchange(ofEntry, {});
        entries.push_back(std::move(entry));
    });
    if (rest != json::array()) throw json::type_error::create(302, "not a list of entries", &rest);
    return entries;
}

}  // namespace velto
