#include "analysis/Measurement.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/path_text.h"

namespace velto {
namespace {

using nlohmann::json;

constexpr std::size_t mostPaths = 20;  // of those that could not be read

json toJson(const MountedVolume& volume) {
    json object = {{"path", pathText(volume.path)}};
    if (volume.used) object["bytes"] = *volume.used;
    return object;
}

MountedVolume volumeFrom(const json& object) {
    MountedVolume volume{.path = pathBytes(field<std::string>(object, "path")),
                         .used = std::nullopt};
    if (object.contains("bytes")) volume.used = field<std::int64_t>(object, "bytes");
    return volume;
}

std::vector<std::string> pathsIn(const json& object, const char* key) {
    return pathsOfTexts(field<std::vector<std::string>>(object, key));
}

}  // namespace

std::int64_t Measurement::outside() const {
    return std::max<std::int64_t>(0, total - free - reserved - home - hidden.value_or(0));
}

void addFolders(Measurement& measurement, const FolderTree& folders, std::int64_t hiddenBytes) {
    std::int64_t measured = 0;
    for (FolderTree::Index root = 0; root < folders.rootCount(); ++root)
        measured += folders[root].bytes;
    const std::int64_t visible = std::max<std::int64_t>(0, measured - hiddenBytes);
    measurement.home = std::min(measurement.home, visible);
    measurement.hidden = measured - measurement.home;
    for (FolderTree::Index index = 0; index < folders.size(); ++index) {
        if (measurement.unreadable.paths.size() == mostPaths) break;
        const FolderFacts& own = folders[index].own;
        if (own.state != FolderState::unreadable && own.unreadable == 0) continue;
        measurement.unreadable.paths.push_back(folders.path(index));
    }
}

json toJson(const Measurement& measurement) {
    json object = {
        {"disk",
         {{"total", measurement.total},
          {"free", measurement.free},
          {"reserved", measurement.reserved},
          {"purgeable", measurement.purgeable}}},
        {"home", measurement.home},
        {"volumes", json::array()},
        {"withheld", pathTexts(measurement.withheld)},
        {"excluded", pathTexts(measurement.excluded)},
        {"unreadable",
         {{"count", measurement.unreadable.count},
          {"paths", pathTexts(measurement.unreadable.paths)}}},
        {"outside", measurement.outside()},
        {"compared",
         {{"complete", measurement.compared.complete}, {"left", measurement.compared.left}}}};
    if (measurement.hidden) object["hidden"] = *measurement.hidden;
    for (const MountedVolume& volume : measurement.volumes)
        object["volumes"].push_back(toJson(volume));
    return object;
}

Measurement measurementFromJson(const json& object) {
    const json& disk = object.at("disk");
    const json& unreadable = object.at("unreadable");
    const json& compared = object.at("compared");
    Measurement measurement{
        .total = field<std::int64_t>(disk, "total"),
        .free = field<std::int64_t>(disk, "free"),
        .reserved = field<std::int64_t>(disk, "reserved"),
        .purgeable = field<std::int64_t>(disk, "purgeable"),
        .home = field<std::int64_t>(object, "home"),
        .hidden = std::nullopt,
        .volumes = listFrom(object, "volumes", volumeFrom),
        .withheld = pathsIn(object, "withheld"),
        .excluded = pathsIn(object, "excluded"),
        .unreadable = {.count = field<std::int64_t>(unreadable, "count"),
                       .paths = pathsIn(unreadable, "paths")},
        .compared = {.complete = field<bool>(compared, "complete"),
                     .left = field<std::int64_t>(compared, "left")},
    };
    if (object.contains("hidden")) measurement.hidden = field<std::int64_t>(object, "hidden");
    return measurement;
}

}  // namespace velto
