#include "analysis/Measurement.h"

#include <algorithm>
#include <string_view>

#include <nlohmann/json.hpp>

#include "analysis/folders/saturated.h"
#include "platform/values/json_fields.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"

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

/// What the walk has measured on the home's volume. The layout's libraries may lie on another one,
/// whose figures are its own; a volume that is such a library was measured after all.
std::int64_t measuredAtHome(Measurement& measurement, const FolderTree& folders) {
    std::int64_t measured = 0;
    std::vector<std::string> elsewhere;
    for (FolderTree::Index root = 0; root < folders.rootCount(); ++root) {
        const std::string_view path = folders.name(root);
        const bool isElsewhere =
            root > 0 && std::ranges::any_of(measurement.volumes, [&](const MountedVolume& volume) {
                return isAtOrBelow(path, volume.path);
            });
        if (isElsewhere) {
            elsewhere.emplace_back(path);
        } else {
            measured = saturatedSum(measured, folders[root].bytes);
        }
    }
    std::erase_if(measurement.volumes, [&](const MountedVolume& volume) {
        return std::ranges::find(elsewhere, volume.path) != elsewhere.end();
    });
    return measured;
}

}  // namespace

std::int64_t Measurement::outside() const {
    return std::max<std::int64_t>(0, total - free - reserved - home - hidden.value_or(0));
}

void addFolders(Measurement& measurement, const FolderTree& folders, std::int64_t hiddenBytes) {
    const std::int64_t measured = measuredAtHome(measurement, folders);
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
