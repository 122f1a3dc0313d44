#include "cleaning/candidates_json.h"

namespace velto {

nlohmann::json toJson(const std::vector<Candidate>& candidates) {
    nlohmann::json list = nlohmann::json::array();
    for (const Candidate& candidate : candidates) {
        list.push_back({{"ruleID", candidate.ruleID},
                        {"path", candidate.path},
                        {"gb", candidate.gb},
                        {"daysOld", candidate.daysOld},
                        {"label", candidate.label}});
    }
    return list;
}

}  // namespace velto
