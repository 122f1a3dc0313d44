#include "analysis/disk_state_json.h"

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

using nlohmann::json;

json toJson(const Cat& cat);
json toJson(const BigFile& file);
json toJson(const DupGroup& group);

template <typename Record>
json listToJson(const std::vector<Record>& records) {
    json list = json::array();
    for (const Record& record : records)
        list.push_back(toJson(record));
    return list;
}

json toJson(const Cat& cat) {
    return {{"id", cat.id},   {"name", cat.name}, {"gb", cat.gb},   {"icon", cat.icon},
            {"col", cat.col}, {"eq", cat.eq},     {"sub", cat.sub}, {"files", cat.files}};
}

json toJson(const BigFile& file) {
    return {{"name", file.name},
            {"gb", file.gb},
            {"kind", file.kind},
            {"last", file.last},
            {"lastN", file.lastN},
            {"path", pathText(file.path)},
            {"isProtected", file.isProtected}};
}

json toJson(const DupGroup& group) {
    return {{"id", group.id},
            {"name", group.name},
            {"pairs", group.pairs},
            {"paths", pathTexts(group.paths)},
            {"recommended", group.recommended}};
}

json toJson(const Settings& settings) {
    json object = {{"retention", settings.retention},
                   {"autoMaintenance", settings.autoMaintenance},
                   {"frequency", settings.frequency},
                   {"language", settings.language}};
    if (settings.rules) object["rules"] = *settings.rules;
    return object;
}

Cat catFrom(const json& object) {
    return {.id = field<std::string>(object, "id"),
            .name = field<std::string>(object, "name"),
            .gb = field<double>(object, "gb"),
            .icon = field<std::string>(object, "icon"),
            .col = field<std::string>(object, "col"),
            .eq = field<std::string>(object, "eq"),
            .sub = field<std::vector<std::vector<std::string>>>(object, "sub"),
            .files = field<std::int64_t>(object, "files")};
}

BigFile bigFileFrom(const json& object) {
    return {.name = field<std::string>(object, "name"),
            .gb = field<double>(object, "gb"),
            .kind = field<std::string>(object, "kind"),
            .last = field<std::string>(object, "last"),
            .lastN = field<double>(object, "lastN"),
            .path = pathBytes(field<std::string>(object, "path")),
            .isProtected = field<bool>(object, "isProtected")};
}

DupGroup dupGroupFrom(const json& object) {
    return {.id = field<std::string>(object, "id"),
            .name = field<std::string>(object, "name"),
            .pairs = field<std::vector<std::vector<DupGroup::Pair>>>(object, "pairs"),
            .paths = pathsOfTexts(field<std::vector<std::string>>(object, "paths")),
            .recommended = field<std::int64_t>(object, "recommended")};
}

Settings settingsFrom(const json& object) {
    Settings settings{.retention = field<std::int64_t>(object, "retention"),
                      .autoMaintenance = field<bool>(object, "autoMaintenance"),
                      .frequency = field<std::string>(object, "frequency"),
                      .language = field<std::string>(object, "language"),
                      .rules = std::nullopt};
    if (object.contains("rules") && !object["rules"].is_null()) {
        settings.rules.emplace();
        for (const auto& [id, on] : object["rules"].get_ref<const json::object_t&>()) {
            if (!on.is_boolean()) throw json::type_error::create(302, "rule " + id, &on);
            settings.rules->emplace(id, on.get<bool>());
        }
    }
    return settings;
}

}  // namespace

std::optional<std::string> encode(const DiskState& state) {
    std::string text = "{";
    const auto member = [&text](const char* key, const json& value) {
        if (!isFinite(value)) throw json::other_error::create(600, "number not finite", nullptr);
        if (text.size() > 1) text += ',';
        appendJson(text, key);
        text += ':';
        text += writeJson(value);
    };
    try {
        member("cats", listToJson(state.cats));
        member("dupGroups", listToJson(state.dupGroups));
        member("files", listToJson(state.files));
        member("free", state.free);
        text += R"(,"history":)";
        text += encodeHistory(state.history);
        if (state.protected_) member("protected", *state.protected_);
        member("ser", state.ser);
        member("settings", toJson(state.settings));
        member("total", state.total);
    } catch (const json::exception&) {  // such a number, or a text that is not UTF-8
        return std::nullopt;
    }
    text += '}';
    return text;
}

DiskState diskStateFromJson(const json& object) {
    DiskState state{.total = field<double>(object, "total"),
                    .free = field<double>(object, "free"),
                    .ser = field<std::int64_t>(object, "ser"),
                    .cats = listFrom(object, "cats", catFrom),
                    .files = listFrom(object, "files", bigFileFrom),
                    .dupGroups = listFrom(object, "dupGroups", dupGroupFrom),
                    .history = listFrom(object, "history", historyEntryFromJson),
                    .settings = settingsFrom(object.at("settings")),
                    .protected_ = std::nullopt};
    if (object.contains("protected") && !object["protected"].is_null()) {
        state.protected_ = object["protected"].get<std::vector<std::string>>();
    }
    return state;
}

}  // namespace velto
