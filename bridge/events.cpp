#include "bridge/events.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "analysis/disk_state_json.h"
#include "bridge/CleanupOutcome.h"
#include "bridge/json_text.h"
#include "cleaning/candidates_json.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"
#include "platform/values/write_json.h"

namespace velto::events {
namespace {

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (char character : text) {
        if (character == '"') result += '\\';
        result += character;
    }
    return result + '"';
}

std::string_view reasonWord(const Refusal::Item& item, const std::string& home) {
    switch (item.reason) {
        case TrashError::Reason::outsideHome:
            return standardizedPath(item.path).starts_with(home + "/") ? "link" : "outside";
        case TrashError::Reason::protected_:
            return "protected";
        case TrashError::Reason::notFound:
            return "gone";
        case TrashError::Reason::alreadyInTrash:
            break;
    }
    return "trash";
}

std::string_view waitWord(WaitingItem::Reason reason) {
    switch (reason) {
        case WaitingItem::Reason::refused:
            return "refused";
        case WaitingItem::Reason::unsettled:
            return "unsettled";
        case WaitingItem::Reason::absent:
            break;
    }
    return "absent";
}

}  // namespace

std::string call(std::string_view callback, std::string_view arguments) {
    return fmt::format("window.velto && window.velto.{0} && window.velto.{0}({1});", callback,
                       arguments);
}

std::string literal(const nlohmann::json& json) {
    return scriptLiteral(writeJson(json, BadText::replaced));
}

std::string scanStarted() { return call("onScanStarted", ""); }

std::string scanProgress(std::int64_t files, double gb) {
    return call("onScanProgress", fmt::format("{}, {}", files, tenths(gb)));
}

std::string analysisPhase(std::string_view phase, std::int64_t files, double gb) {
    return call("onAnalysisPhase",
                fmt::format(R"({{"phase":"{}","files":{},"gb":{}}})", phase, files, tenths(gb)));
}

std::string scanFinished() { return call("onScanFinished", ""); }

std::string analysisStopped() { return call("onAnalysisStopped", ""); }

std::string scanFailed() { return call("onScanFailed", ""); }

std::optional<std::string> setState(const DiskState& state, double stamp) {
    const auto json = encode(state);
    if (!json) return std::nullopt;
    return "window.velto && window.velto.setState(" + scriptLiteral(*json) + ", " +
           shortest(stamp) + ");";
}

std::string permissions(bool fullDiskAccess) {
    return call("onPermissions", literal({{"fda", fullDiskAccess}}));
}

std::string toast(std::string_view title, std::string_view detail) {
    return call("toast", quoted(title) + ", " + quoted(detail));
}

std::string exclusions(const std::vector<std::string>& paths) {
    return call("onExclusions", literal(pathTexts(paths)));
}

std::string system(const nlohmann::ordered_json& sample) {
    // Names of processes are whatever bytes they are.
    return call("onSystem", writeJson(sample, BadText::replaced));
}

std::string maintenance(const nlohmann::json& status) {
    return call("onMaintenance", literal(status));
}

std::string trashState(const std::vector<TrashItem>& items) {
    std::string list = "[";
    for (const TrashItem& item : items) {
        list += list.size() > 1 ? R"(,{"gb":)" : R"({"gb":)";
        appendJson(list, item.gb);
        list += R"(,"id":)";
        appendJson(list, item.id, BadText::replaced);
        list += R"(,"name":)";
        appendPathJson(list, item.name);
        list += R"(,"opID":)";
        appendJson(list, item.opID, BadText::replaced);
        list += R"(,"path":)";
        appendPathJson(list, item.originalPath);
        list += R"(,"taken":)";
        appendJson(list, item.taken);
        list += '}';
    }
    list += ']';
    return call("onTrashState", scriptLiteral(std::move(list)));
}

std::string trashWaiting(const std::vector<WaitingItem>& items) {
    auto list = nlohmann::json::array();
    for (const WaitingItem& waiting : items) {
        list.push_back({{"id", waiting.item.id},
                        {"name", pathText(waiting.item.name)},
                        {"gb", waiting.item.gb},
                        {"path", pathText(waiting.item.originalPath)},
                        {"folder", pathText(waiting.folder)},
                        {"way", waiting.way == WaitingItem::Way::out ? "out" : "in"},
                        {"reason", waitWord(waiting.reason)},
                        {"whole", waiting.isWhole}});
    }
    return call("onTrashWaiting", literal(list));
}

std::string refused(const Refusal& refusal, const std::string& home) {
    auto items = nlohmann::json::array();
    for (const Refusal::Item& item : refusal.items)
        items.push_back({{"path", pathText(item.path)}, {"reason", reasonWord(item, home)}});
    return call("onRefused", literal({{"refused", items}, {"rest", pathTexts(refusal.rest)}}));
}

std::string restoreBlocked(const RestoreBlock& block) {
    return call("onRestoreBlocked",
                literal({{"id", block.itemID}, {"path", pathText(block.obstacle)}}));
}

std::string trashEmptying(std::size_t done, std::size_t of) {
    return call("onTrashEmptying", fmt::format("{}, {}", done, of));
}

std::string trashChanged(double gb) { return call("onTrashChanged", tenths(gb)); }

std::string cleanables(const std::vector<Candidate>& candidates) {
    return call("onCleanables", literal(toJson(candidates)));
}

std::string cleanableAges(const CleaningRules::Ages& ages) {
    auto byPath = nlohmann::json::object();
    for (const auto& [path, days] : ages)
        byPath[pathText(path)] = days;
    return call("onCleanableAges", literal(byPath));
}

std::string cleanableFacts(const FactsByPath& facts) {
    auto byPath = nlohmann::json::object();
    for (const auto& [path, fact] : facts)
        byPath[pathText(path)] = {{"certain", fact.isCertain()}, {"reason", word(fact.reason)}};
    return call("onCleanableFacts", literal(byPath));
}

std::string cloudMove(const std::vector<std::string>& moved, const std::vector<std::string>& failed,
                      std::string_view direction) {
    return call("onCloudMove", literal({{"moved", pathTexts(moved)},
                                        {"failed", pathTexts(failed)},
                                        {"direction", direction}}));
}

std::string goView(std::string_view name) {
    return fmt::format("try {{ go('{}') }} catch(e) {{ console.warn(e) }}", name);
}

std::string quitting(std::string_view running) {
    return call("onQuitting", literal({{"running", running}}));
}

std::string intentEcho(std::string_view name) {
    return fmt::format("console.info('[velto] intención recibida: {}');", name);
}

std::optional<std::string> bootstrap(const DiskState& state, double stamp) {
    const auto json = encode(state);
    if (!json) return std::nullopt;
    return "window.velto = window.velto || {};\n"
           "window.velto._state = " +
           scriptLiteral(*json) +
           ";\n"
           "window.velto._stamp = " +
           shortest(stamp) +
           ";\n"
           "window.velto.setState = function(s, ts){ window.velto._state = s; "
           "if (ts) window.velto._stamp = ts; };";
}

}  // namespace velto::events
