#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

#include <nlohmann/json.hpp>

#include "cleaning/caches_never_taken.h"
#include "cleaning/further/FurtherRule.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAreArray;
using testing::IsEmpty;

json read(const std::filesystem::path& path) { return json::parse(std::ifstream(path)); }

/// As much of JSON Schema (2020-12) as the rules' schema makes use of; anything else in it fails.
class Schema {
public:
    explicit Schema(json root) : root_(std::move(root)) {}

    /// What is wrong, a line each.
    std::vector<std::string> faults(const json& value) const {
        std::vector<std::string> found;
        check(root_, value, "", found);
        return found;
    }

private:
    using Faults = std::vector<std::string>;

    bool fits(const json& schema, const json& value) const {
        Faults faults;
        check(schema, value, "", faults);
        return faults.empty();
    }

    static bool isOfType(const json& value, const std::string& type) {
        if (type == "object") return value.is_object();
        if (type == "array") return value.is_array();
        if (type == "string") return value.is_string();
        return type == "integer" && value.is_number_integer();
    }

    void check(const json& schema, const json& value, const std::string& at, Faults& out) const {
        const auto fault = [&](const std::string& what) { out.push_back(at + ": " + what); };
        for (const auto& [key, rule] : schema.items()) {
            if (key == "$ref") {
                check(root_.at(json::json_pointer(rule.get<std::string>().substr(1))), value, at,
                      out);
            } else if (key == "type") {
                if (!isOfType(value, rule)) return fault("no " + rule.get<std::string>());
            } else if (key == "enum") {
                if (std::ranges::find(rule, value) == rule.end()) fault("an unknown word");
            } else if (key == "const") {
                if (value != rule) fault("not " + rule.dump());
            } else if (key == "pattern") {
                if (value.is_string() && !std::regex_search(value.get<std::string>(),
                                                            std::regex(rule.get<std::string>())))
                    fault("not of the form " + rule.get<std::string>());
            } else if (key == "minLength" || key == "minItems") {
                const auto size =
                    value.is_string() ? value.get<std::string>().size() : value.size();
                if (size < rule.get<std::size_t>()) fault("too short");
            } else if (key == "minimum") {
                if (value < rule) fault("too small");
            } else if (key == "uniqueItems") {
                if (std::set<json>(value.begin(), value.end()).size() != value.size())
                    fault("one twice");
            } else if (key == "items") {
                for (std::size_t index = 0; value.is_array() && index < value.size(); ++index)
                    check(rule, value[index], at + "/" + std::to_string(index), out);
            } else if (key == "required") {
                for (const json& name : rule) {
                    if (!value.contains(name.get<std::string>()))
                        fault("without " + name.get<std::string>());
                }
            } else if (key == "properties") {
                for (const auto& [name, property] : rule.items()) {
                    if (value.contains(name)) check(property, value.at(name), at + "/" + name, out);
                }
            } else if (key == "additionalProperties") {
                for (const auto& [name, property] : value.items()) {
                    if (!schema.at("properties").contains(name)) fault("has " + name);
                }
            } else if (key == "oneOf") {
                const auto count =
                    std::ranges::count_if(rule, [&](const json& one) { return fits(one, value); });
                if (count != 1) fault("fits " + std::to_string(count) + " of the forms");
            } else if (key == "not") {
                if (fits(rule, value)) fault("is what it must not be");
            } else if (!std::set<std::string>{"$schema", "$defs", "title", "description"}.contains(
                           key)) {
                fault("the schema has " + key);
            }
        }
    }

    json root_;
};

const Schema& schema() {
    static const Schema one(read(std::filesystem::path(VELTO_RULES) / "schema/rule.schema.json"));
    return one;
}

TEST(RuleFiles, EveryFileFitsTheSchemaAndIsNamedForItsRule) {
    for (const RuleFile& file : ruleFiles()) {
        SCOPED_TRACE(file.name);
        EXPECT_THAT(schema().faults(json::parse(file.text)), IsEmpty());
        EXPECT_EQ(parseFurtherRule(file.text).id, file.name);
    }
}

TEST(RuleFiles, TheProgramHasEachAndNoOther) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(VELTO_RULES)) {
        if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
    }
    std::ranges::sort(names);
    std::vector<std::string> built;
    for (const RuleFile& file : ruleFiles())
        built.emplace_back(file.name);
    std::ranges::sort(built);
    EXPECT_THAT(built, ElementsAreArray(names));
    EXPECT_EQ(furtherRules().size(), names.size());
    EXPECT_GE(names.size(), 40u);
}

TEST(RuleFiles, NoRuleNamesACacheThatIsNeverTaken) {
    for (const FurtherRule& rule : furtherRules()) {
        for (const std::string& place : rule.where) {
            if (!place.starts_with("{caches}/")) continue;
            const std::string rest = place.substr(9);
            const std::string entry = rest.substr(0, rest.find('/'));
            for (const NeverTakenCache& row : cachesNeverTaken)
                EXPECT_NE(entry, row.name) << rule.id;
        }
    }
}

TEST(RuleFiles, NothingButWhatIsExplainedLiesOutsideTheHome) {
    for (const FurtherRule& rule : furtherRules()) {
        for (const std::string& place : rule.where)
            EXPECT_TRUE(rule.isExplained || !place.starts_with('/')) << rule.id << " " << place;
    }
}

/// A change that damages a good rule; neither the schema nor the program takes it.
struct Damage {
    const char* name;
    void (*change)(json& rule);
};

class DamagedRule : public testing::TestWithParam<Damage> {};

TEST_P(DamagedRule, IsRefusedByTheSchemaAndByTheProgram) {
    json rule = read(std::filesystem::path(VELTO_RULES) / "npm.json");
    ASSERT_THAT(schema().faults(rule), IsEmpty());
    GetParam().change(rule);
    EXPECT_THAT(schema().faults(rule), testing::Not(IsEmpty()));
    EXPECT_ANY_THROW(parseFurtherRule(rule.dump()));
}

void makeProject(json& rule) {
    rule.erase("where");
    rule["names"] = {"node_modules"};
    rule["markers"] = {"package.json"};
    rule["certainty"] = "possible";
    rule["idleDays"] = 90;
}

INSTANTIATE_TEST_SUITE_P(
    RuleFiles, DamagedRule,
    testing::Values(Damage{"NoIdentifier", [](json& rule) { rule.erase("id"); }},
                    Damage{"UnknownField", [](json& rule) { rule["delete"] = true; }},
                    Damage{"NoSpanishName", [](json& rule) { rule["name"].erase("es"); }},
                    Damage{"EmptyName", [](json& rule) { rule["name"]["en"] = ""; }},
                    Damage{"NothingSaysWhatMakesItAgain", [](json& rule) { rule.erase("again"); }},
                    Damage{"NoSource", [](json& rule) { rule.erase("source"); }},
                    Damage{"EmptySource", [](json& rule) { rule["source"] = ""; }},
                    Damage{"NoSystem", [](json& rule) { rule["systems"] = json::array(); }},
                    Damage{"UnknownSystem", [](json& rule) { rule["systems"] = {"windows"}; }},
                    Damage{"NoPlace", [](json& rule) { rule.erase("where"); }},
                    Damage{"NoPlaces", [](json& rule) { rule["where"] = json::array(); }},
                    Damage{"PlacesAreNoList", [](json& rule) { rule["where"] = 3; }},
                    Damage{"PlaceIsNoText", [](json& rule) { rule["where"] = {3}; }},
                    Damage{"PlacesAndNames",
                           [](json& rule) {
                               rule["names"] = {"a"};
                               rule["markers"] = {"b"};
                           }},
                    Damage{"UnknownCertainty", [](json& rule) { rule["certainty"] = "sure"; }},
                    Damage{"UnknownWay", [](json& rule) { rule["way"] = "deleted"; }},
                    Damage{"UnknownMeasure", [](json& rule) { rule["measure"] = "du"; }},
                    Damage{"IdleForHalfADay", [](json& rule) { rule["idleDays"] = 0.5; }},
                    Damage{"IdleForLessThanNothing", [](json& rule) { rule["idleDays"] = -1; }},
                    Damage{"ProgramsAreMissing", [](json& rule) { rule.erase("notRunning"); }},
                    Damage{"NamesWithoutAMarker",
                           [](json& rule) {
                               makeProject(rule);
                               rule.erase("markers");
                           }},
                    Damage{"CertainNames",
                           [](json& rule) {
                               makeProject(rule);
                               rule["certainty"] = "certain";
                           }},
                    Damage{"NamesThatNeedNotBeIdle",
                           [](json& rule) {
                               makeProject(rule);
                               rule["idleDays"] = 0;
                           }},
                    Damage{"ExplainedNames",
                           [](json& rule) {
                               makeProject(rule);
                               rule["way"] = "explained";
                           }},
                    Damage{"ANameThatLeadsElsewhere",
                           [](json& rule) {
                               makeProject(rule);
                               rule["names"] = {"../a"};
                           }}),
    [](const auto& damage) { return std::string(damage.param.name); });

TEST(RuleFiles, AGoodProjectRuleIsTakenByBoth) {
    json rule = read(std::filesystem::path(VELTO_RULES) / "npm.json");
    makeProject(rule);
    EXPECT_THAT(schema().faults(rule), IsEmpty());
    EXPECT_NO_THROW(parseFurtherRule(rule.dump()));
}

/// Places that the program must not make anything of, whatever a schema says.
TEST(RuleFiles, APlaceThatClimbsIsRefused) {
    for (const char* place : {"~/../other", "~", "{caches}", "/", "relative/a", "{nowhere}/a",
                              "~//a", "~/a/", "~/./a", "{caches}/.."}) {
        json rule = read(std::filesystem::path(VELTO_RULES) / "npm.json");
        rule["where"] = {place};
        EXPECT_THAT(schema().faults(rule), testing::Not(IsEmpty())) << place;
        EXPECT_ANY_THROW(parseFurtherRule(rule.dump())) << place;
    }
}

TEST(RuleFiles, ATextThatIsNoRuleIsRefused) {
    for (const char* text : {"", "{", "[]", "3", "null", "\"npm\"", "{}"})
        EXPECT_ANY_THROW(parseFurtherRule(text)) << text;
    std::string deep(10'000, '[');
    EXPECT_ANY_THROW(parseFurtherRule(deep));
}

}  // namespace
}  // namespace velto
