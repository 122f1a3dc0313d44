#include "maintenance/TakenItems.h"

#include <set>

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

constexpr ReadLimit takenLimit = ownFile(256 << 20);  // a million items of some 90 bytes

std::string takenFile(const HomeLayout& layout) {
    return layout.dataFolder + "/maintenance_taken.json";
}

}  // namespace

TakenItems::TakenItems(FileManager& files, const HomeLayout& layout)
    : files_(files), layout_(layout) {
    try {
        read();
    } catch (const FileError&) {
        rules_.clear();
    } catch (const nlohmann::json::exception&) {
        rules_.clear();
    }
}

void TakenItems::read() {
    const auto object = parseJson(files_.read(takenFile(layout_), takenLimit));
    for (const auto& entry : object.at("items")) {
        rules_[{field<std::string>(entry, "operation"), field<std::string>(entry, "id")}] =
            field<std::string>(entry, "rule");
    }
}

std::string TakenItems::ruleOf(const TrashItem& item) const {
    const auto rule = rules_.find(keyOf(item));
    return rule == rules_.end() ? "" : rule->second;
}

void TakenItems::note(const Operation& operation, const std::map<std::string, std::string>& rules) {
    for (const TrashItem& item : operation.items) {
        const auto rule = rules.find(item.originalPath);
        if (rule == rules.end()) continue;
        rules_[keyOf(item)] = rule->second;
        hasChanged_ = true;
    }
}

void TakenItems::keepOnly(const std::vector<TrashItem>& items) {
    std::set<Key> present;
    for (const TrashItem& item : items)
        present.insert(keyOf(item));
    const auto forgotten =
        std::erase_if(rules_, [&](const auto& entry) { return !present.contains(entry.first); });
    if (forgotten > 0) hasChanged_ = true;
}

void TakenItems::save() {
    if (!hasChanged_) return;
    auto items = nlohmann::ordered_json::array();
    for (const auto& [key, rule] : rules_)
        items.push_back({{"id", key.second}, {"operation", key.first}, {"rule", rule}});
    try {
        files_.createFolders(layout_.dataFolder);
        files_.writeAtomically(takenFile(layout_),
                               writeJson(nlohmann::ordered_json{{"items", std::move(items)}}));
        hasChanged_ = false;
    } catch (const FileError&) {
        // See the declaration.
    }
}

}  // namespace velto
