#include "bridge/growth_events.h"

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"

namespace velto::events {
namespace {

std::string_view kindWord(GrowthChange::Kind kind) {
    switch (kind) {
        case GrowthChange::Kind::appeared:
            return "new";
        case GrowthChange::Kind::shrunk:
            return "shrunk";
        case GrowthChange::Kind::gone:
            return "gone";
        case GrowthChange::Kind::grown:
            break;
    }
    return "grown";
}

nlohmann::json sinceValue(const GrowthSince& since) {
    switch (since.kind) {
        case GrowthSince::Kind::week:
            return "week";
        case GrowthSince::Kind::month:
            return "month";
        case GrowthSince::Kind::moment:
            return since.moment;
        case GrowthSince::Kind::last:
            break;
    }
    return "last";
}

nlohmann::json records(const std::vector<GrowthChange>& changes) {
    nlohmann::json list = nlohmann::json::array();
    for (const GrowthChange& change : changes)
        list.push_back({{"path", pathText(change.path)},
                        {"bytes", change.bytes},
                        {"kind", kindWord(change.kind)}});
    return list;
}

nlohmann::json records(const std::vector<GrowthRename>& renames) {
    nlohmann::json list = nlohmann::json::array();
    for (const GrowthRename& rename : renames)
        list.push_back({{"from", pathText(rename.from)},
                        {"to", pathText(rename.to)},
                        {"bytes", rename.bytes}});
    return list;
}

}  // namespace

std::string growth(const GrowthSince& asked, const std::optional<GrowthAnswers::Answer>& answer,
                   const std::string& home) {
    const GrowthAnswers::Answer none;
    const GrowthAnswers::Answer& told = answer ? *answer : none;
    return call("onGrowth", literal({{"asked", sinceValue(asked)},
                                     {"since", told.growth.since},
                                     {"until", told.growth.until},
                                     {"available", told.available},
                                     {"home", pathText(home)},
                                     {"bytes", told.growth.bytes},
                                     {"grown", records(told.growth.grown)},
                                     {"shrunk", records(told.growth.shrunk)},
                                     {"renamed", records(told.growth.renamed)}}));
}

std::string folderGrowth(const std::string& path,
                         const std::optional<GrowthAnswers::Inside>& inside) {
    nlohmann::json folders = nlohmann::json::object();
    if (inside) {
        for (const auto& [name, bytes] : inside->folders)
            folders[pathText(name)] = bytes;
    }
    return call("onFolderGrowth", literal({{"path", pathText(path)},
                                           {"since", inside ? inside->since : 0},
                                           {"folders", std::move(folders)}}));
}

}  // namespace velto::events
