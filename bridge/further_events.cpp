#include "bridge/further_events.h"

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"

namespace velto::events {
namespace {

nlohmann::json record(const FurtherGroup& group) {
    nlohmann::json object = {{"rule", group.rule->record},
                             {"items", nlohmann::json::array()},
                             {"bytes", nullptr},
                             {"parts", nlohmann::json::array()}};
    for (const FurtherItem& item : group.items) {
        object["items"].push_back({{"path", pathText(item.path)},
                                   {"bytes", item.bytes},
                                   {"linked", item.linked},
                                   {"days", item.days},
                                   {"certain", item.isCertain()},
                                   {"reason", word(item.reason)}});
    }
    if (group.bytes) object["bytes"] = *group.bytes;
    for (const ToolPart& part : group.parts) {
        object["parts"].push_back(
            {{"name", part.name}, {"bytes", part.bytes}, {"command", part.command}});
    }
    return object;
}

}  // namespace

std::string furtherCleanables(const std::vector<FurtherGroup>& groups, bool asking) {
    auto records = nlohmann::json::array();
    for (const FurtherGroup& group : groups)
        records.push_back(record(group));
    return call("onFurtherCleanables", literal({{"groups", records}, {"asking", asking}}));
}

}  // namespace velto::events
