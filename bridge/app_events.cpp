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

const char* nameOf(PackageKeeper keeper) {
    switch (keeper) {
        case PackageKeeper::flatpak:
            return "flatpak";
        case PackageKeeper::snap:
            return "snap";
        case PackageKeeper::distribution:
            break;
    }
    return "distribution";
}

const char* nameOf(PackageError::Reason reason) {
    switch (reason) {
        case PackageError::Reason::unavailable:
            return "unavailable";
        case PackageError::Reason::refused:
            return "refused";
        case PackageError::Reason::missing:
            return "missing";
        case PackageError::Reason::busy:
            return "busy";
        case PackageError::Reason::changed:
            return "changed";
        case PackageError::Reason::kept:
            return "kept";
        case PackageError::Reason::failed:
            break;
    }
    return "failed";
}

nlohmann::json endOf(const std::optional<PackageError::Reason>& failure,
                     const std::string& detail) {
    return {{"done", !failure},
            {"reason", failure ? nameOf(*failure) : ""},
            {"detail", singleLine(detail)}};
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

std::string leftBehind(const nlohmann::json& items) { return call("onLeftBehind", literal(items)); }

std::string appRemoval(const std::string& application, const nlohmann::json& removal) {
    return call("onAppRemoval", literal(pathText(application)) + ", " + literal(removal));
}

std::string uninstallProgress(std::string_view stage, double percent,
                              const std::optional<std::string>& detail) {
    std::string arguments = inQuotes(stage) + ", " + tenths(percent);
    if (detail) arguments += ", " + inQuotes(*detail);
    return call("onUninstallProgress", arguments);
}

std::string appPackage(const std::string& application, const std::optional<PackagePlan>& plan) {
    nlohmann::json record;
    if (plan) {
        record = {{"keeper", nameOf(plan->keeper)},
                  {"name", plan->name},
                  {"others", plan->others},
                  {"kept", plan->kept},
                  {"command", plan->command}};
    }
    return call("onAppPackage", literal(pathText(application)) + ", " + literal(record));
}

std::string packageRemoval(const std::string& application,
                           const std::optional<PackageError::Reason>& failure,
                           const std::string& detail) {
    return call("onPackageRemoval",
                literal(pathText(application)) + ", " + literal(endOf(failure, detail)));
}

std::string unusedRuntimes(const std::optional<PackageError::Reason>& failure,
                           const std::string& detail) {
    return call("onUnusedRuntimes", literal(endOf(failure, detail)));
}

std::string uninstallResult(const nlohmann::json& result) {
    return call("onUninstallResult", literal(result));
}

}  // namespace velto::events
