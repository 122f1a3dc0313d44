#include "cleaning/further/FurtherRule.h"

#include <algorithm>
#include <array>
#include <exception>
#include <stdexcept>

#include <fmt/format.h>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using nlohmann::json;

constexpr auto fields = std::to_array<std::string_view>(
    {"id", "group", "systems", "name", "where", "names", "markers", "holds", "again", "command",
     "measure", "way", "certainty", "idleDays", "notRunning", "source"});

struct MeasureWord {
    std::string_view word;
    FurtherRule::Measure measure;
};
constexpr auto measures = std::to_array<MeasureWord>({
    {"files", FurtherRule::Measure::files},
    {"docker", FurtherRule::Measure::docker},
    {"podman", FurtherRule::Measure::podman},
    {"snap", FurtherRule::Measure::snap},
    {"journal", FurtherRule::Measure::journal},
    {"flatpak", FurtherRule::Measure::flatpak},
});

[[noreturn]] void refuse(std::string_view field, std::string_view why) {
    throw std::runtime_error(fmt::format("{}: {}", field, why));
}

std::vector<std::string> textsOf(const json& object, const char* key) {
    std::vector<std::string> texts;
    if (!object.contains(key)) return texts;
    for (const json& text : object.at(key))
        texts.push_back(text.get<std::string>());
    if (std::ranges::find(texts, "") != texts.end()) refuse(key, "an empty text");
    return texts;
}

/// One of two words.
bool isFirst(const json& object, const char* key, std::string_view first, std::string_view second) {
    const auto word = object.at(key).get<std::string>();
    if (word != first && word != second) refuse(key, "an unknown word");
    return word == first;
}

FurtherRule::Measure measureOf(const json& object) {
    if (!object.contains("measure")) return FurtherRule::Measure::none;
    const auto word = object.at("measure").get<std::string>();
    const auto row = std::ranges::find(measures, word, &MeasureWord::word);
    if (row == measures.end()) refuse("measure", "an unknown word");
    return row->measure;
}

void requireTexts(const json& object, const char* key) {
    for (const char* language : {"es", "en"}) {
        if (object.at(key).at(language).get<std::string>().empty()) refuse(key, "an empty text");
    }
}

void requireComponents(const std::vector<std::string>& names, const char* field) {
    if (!std::ranges::all_of(names, [](const std::string& name) { return isComponent(name); }))
        refuse(field, "no name of one entry");
}

constexpr auto placeBegins = std::to_array<std::string_view>(
    {"~", "{caches}", "{config}", "{data}", "{state}", "{sandboxes}", "{library}", ""});

/// A place is never the home or a folder of its layout, nor leads anywhere but down from there.
void requirePlace(std::string_view place) {
    const std::size_t slash = place.find('/');
    const bool isKnown =
        std::ranges::find(placeBegins, place.substr(0, slash)) != placeBegins.end();
    if (slash == std::string_view::npos || !isKnown) refuse("where", "an unknown beginning");
    for (std::string_view rest = place.substr(slash); !rest.empty();) {
        rest.remove_prefix(1);
        const std::string_view component = rest.substr(0, rest.find('/'));
        if (!isComponent(component)) refuse("where", "no place below its beginning");
        rest.remove_prefix(component.size());
    }
}

/// What no schema can say, or what nothing may depend on a schema for.
void judge(const FurtherRule& rule) {
    if (rule.where.empty() == rule.names.empty()) refuse("where", "either places or names");
    for (const std::string& place : rule.where)
        requirePlace(place);
    requireComponents(rule.names, "names");
    requireComponents(rule.markers, "markers");
    requireComponents(rule.holds, "holds");
    if (!rule.isForFreedesktop && !rule.isForMac) refuse("systems", "none");
    if (rule.idleDays < 0) refuse("idleDays", "less than none");
    if (rule.isExplained && rule.isCertain) refuse("certainty", "what is explained is possible");
    if (rule.measure != FurtherRule::Measure::none && !rule.isExplained)
        refuse("measure", "only of what is explained");
    if (rule.names.empty()) return;
    // A folder of a project may be anybody's: nothing but what stands beside it tells what it is.
    if (rule.markers.empty()) refuse("markers", "names need one");
    if (rule.isCertain || rule.isExplained || rule.idleDays == 0)
        refuse("names", "are possible, moved, and idle for some days");
}

}  // namespace

FurtherRule parseFurtherRule(std::string_view text) {
    FurtherRule rule;
    rule.record = parseJson(text);
    const json& object = rule.record;
    if (!object.is_object()) refuse("rule", "no object");
    for (const auto& [key, value] : object.items()) {
        if (std::ranges::find(fields, std::string_view(key)) == fields.end())
            refuse(key, "an unknown field");
    }
    rule.id = object.at("id").get<std::string>();
    requireTexts(object, "name");
    requireTexts(object, "again");
    if (object.at("group").get<std::string>().empty()) refuse("group", "an empty text");
    if (object.at("source").get<std::string>().empty()) refuse("source", "an empty text");
    for (const std::string& system : textsOf(object, "systems")) {
        if (system == "freedesktop") {
            rule.isForFreedesktop = true;
        } else if (system == "macOS") {
            rule.isForMac = true;
        } else {
            refuse("systems", "an unknown word");
        }
    }
    rule.where = textsOf(object, "where");
    rule.names = textsOf(object, "names");
    rule.markers = textsOf(object, "markers");
    rule.holds = textsOf(object, "holds");
    rule.idleDays = static_cast<int>(field<std::int64_t>(object, "idleDays"));
    rule.isCertain = isFirst(object, "certainty", "certain", "possible");
    rule.isExplained = isFirst(object, "way", "explained", "moved");
    rule.measure = measureOf(object);
    static_cast<void>(object.at("notRunning"));
    rule.notRunning = textsOf(object, "notRunning");
    judge(rule);
    return rule;
}

const std::vector<FurtherRule>& furtherRules() {
    static const std::vector<FurtherRule> rules = [] {
        std::vector<FurtherRule> parsed;
        for (const RuleFile& file : ruleFiles()) {
            try {
                parsed.push_back(parseFurtherRule(file.text));
            } catch (const std::exception&) {
                // See the header.
            }
        }
        return parsed;
    }();
    return rules;
}

}  // namespace velto
