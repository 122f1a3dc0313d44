#include <exception>

#include "cleaning/further/FurtherRule.h"
#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

bool leadsDown(std::string_view path) {
    const std::string slashed = "/" + std::string(path) + "/";
    return !slashed.contains("/../") && !slashed.contains("/./") && !slashed.contains("//");
}

/// A rule that is taken names nothing but places below a beginning, or single names beside a
/// marker, and is certain of nothing that it should not be.
void judge(std::string_view input) {
    FurtherRule rule;
    try {
        rule = parseFurtherRule(input);
    } catch (const std::exception&) {
        return;  // refused
    }
    require(rule.where.empty() != rule.names.empty(), "places or names");
    for (const std::string& place : rule.where) {
        const std::size_t slash = place.find('/');
        require(slash != std::string::npos && slash + 1 < place.size(), "below its beginning");
        require(leadsDown(place.substr(slash + 1)), "down from there");
    }
    for (const auto& list : {rule.names, rule.markers, rule.holds}) {
        for (const std::string& name : list)
            require(!name.empty() && !name.contains('/') && name != "." && name != "..",
                    "one name");
    }
    if (!rule.names.empty()) {
        require(!rule.markers.empty() && rule.idleDays > 0, "a project is known and idle");
        require(!rule.isCertain && !rule.isExplained, "a project's folder is only possible");
    }
    require(!rule.isExplained || !rule.isCertain, "what is explained is never preselected");
    require(rule.measure == FurtherRule::Measure::none || rule.isExplained, "tools explain");
    require(rule.isForMac || rule.isForFreedesktop, "for a system");
    require(rule.idleDays >= 0, "whole days");
    const FurtherRule again = parseFurtherRule(
        rule.record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    require(again.where == rule.where && again.names == rule.names && again.id == rule.id,
            "what it shows is what it does");
}

const Registration registered("further_rule", judge);

}  // namespace
}  // namespace velto::fuzz
