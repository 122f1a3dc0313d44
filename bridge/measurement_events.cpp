#include "bridge/measurement_events.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "bridge/json_text.h"
#include "platform/values/path_text.h"
#include "platform/values/write_json.h"

namespace velto::events {
namespace {

nlohmann::json byPathText(const SizesByKey& sizes) {
    auto object = nlohmann::json::object();
    for (const auto& [path, bytes] : sizes)
        object[pathText(path)] = bytes;
    return object;
}

}  // namespace

std::string home(const std::string& path) { return call("onHome", literal(pathText(path))); }

std::string exactListSizes(const ListDetails& details) {
    return call("onExactSizes", literal({{"files", byPathText(details.files)},
                                         {"copies", byPathText(details.copies)}}));
}

std::string exactCleanableSizes(const SizesByKey& byPath) {
    return call("onExactSizes", literal({{"cleanables", byPathText(byPath)}}));
}

std::string exactTrashSizes(const SizesByKey& byId) {
    std::string object = R"({"trash":{)";
    const char* separator = "";
    for (const auto& [id, bytes] : byId) {
        object += separator;
        appendJson(object, id, BadText::replaced);
        object += ':' + std::to_string(bytes);
        separator = ",";
    }
    object += "}}";
    return call("onExactSizes", scriptLiteral(std::move(object)));
}

std::string copyDates(const ListDetails& details) {
    SizesByKey seconds;
    for (const auto& [path, date] : details.dates)
        seconds[path] = static_cast<std::int64_t>(std::clamp(date, -1e15, 1e15));
    return call("onCopyDates", literal(byPathText(seconds)));
}

std::string linkedCopies(const ListDetails& details) {
    auto groups = nlohmann::json::object();
    for (const auto& [group, files] : details.linked) {
        auto& lists = groups[group] = nlohmann::json::array();
        for (const ListDetails::Names& names : files)
            lists.push_back(pathTexts(names));
    }
    return call("onLinkedCopies", literal(groups));
}

std::string measurement(const Measurement& measurement, const ComparisonState& comparison) {
    nlohmann::json object = toJson(measurement);
    object["compared"]["canContinue"] = comparison.canContinue;
    object["compared"]["running"] = comparison.isRunning;
    return call("onMeasurement", literal(object));
}

}  // namespace velto::events
