#include "cleaning/candidates_json.h"

#include "platform/values/path_text.h"
#include "platform/values/text.h"

namespace velto {

nlohmann::json toJson(const std::vector<Candidate>& candidates) {
    nlohmann::json list = nlohmann::json::array();
    for (const Candidate& candidate : candidates) {
        list.push_back({{"ruleID", candidate.ruleID},
                        {"path", pathText(candidate.path)},
                        {"gb", candidate.gb},
                        {"daysOld", candidate.daysOld},
                        {"label", validUtf8(candidate.label)}});
    }
    return list;
}

}  // namespace velto
