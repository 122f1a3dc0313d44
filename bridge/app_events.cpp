#include "bridge/app_events.h"

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto::events {
namespace {

std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (char character : validUtf8(text)) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\\' || character == '"') result += '\\';
        result += byte < 0x20 || byte == 0x7F ? ' ' : character;
    }
    return result + '"';
}

}  // namespace

std::string apps(const nlohmann::json& list) { return call("onApps", literal(list)); }

std::string appSizes(const nlohmann::json& sizes) { return call("onAppSizes", literal(sizes)); }

std::string appAnalysis(const nlohmann::json& analysis) {
    return call("onAppAnalysis", literal(analysis));
}

std::string leftoverLinks(const std::string& application, const nlohmann::json& links) {
    return call("onLeftoverLinks", literal(pathText(application)) + ", " + literal(links));
}

std::string uninstallProgress(std::string_view stage, double percent,
                              const std::optional<std::string>& detail) {
    std::string arguments = inQuotes(stage) + ", " + tenths(percent);
    if (detail) arguments += ", " + inQuotes(*detail);
    return call("onUninstallProgress", arguments);
}

std::string uninstallResult(const nlohmann::json& result) {
    return call("onUninstallResult", literal(result));
}

}  // namespace velto::events
