#include "cleaning/further/rule_places.h"

#include <algorithm>
#include <array>
#include <optional>

#include "cleaning/known_caches.h"
#include "platform/privacy_gate.h"
#include "platform/values/text.h"

namespace velto {
namespace {

struct LayoutWord {
    std::string_view word;
    std::string HomeLayout::*folder;
};
constexpr auto layoutWords = std::to_array<LayoutWord>({
    {"~", &HomeLayout::home},
    {"{caches}", &HomeLayout::caches},
    {"{config}", &HomeLayout::configuration},
    {"{data}", &HomeLayout::applicationSupport},
    {"{state}", &HomeLayout::applicationState},
    {"{sandboxes}", &HomeLayout::sandboxes},
    {"{library}", &HomeLayout::userLibrary},
});

std::vector<std::string> namesIn(const FileManager& files, const std::string& folder) {
    try {
        auto names = files.list(folder);
        std::ranges::sort(names);
        return names;
    } catch (const FileError&) {
        return {};  // not there, or not for us: then nothing of it is taken
    }
}

/// By its own name, wherever it lies (the caches in a sandbox are called like any other), and by
/// that of the entry of the home's caches that it lies in.
bool isNeverTaken(const HomeLayout& layout, const std::string& path) {
    if (knownCache(lastPathComponent(path)) == KnownCache::neverTaken) return true;
    if (layout.caches.empty() || !path.starts_with(layout.caches + "/")) return false;
    const std::string_view below = std::string_view(path).substr(layout.caches.size() + 1);
    return knownCache(below.substr(0, below.find('/'))) == KnownCache::neverTaken;
}

}  // namespace

std::vector<std::string> resolvedPlaces(const Platform& platform, std::string_view place,
                                        bool hasAccess) {
    const std::string_view first = place.substr(0, place.find('/'));
    std::string start;
    if (!first.empty()) {
        const auto word = std::ranges::find(layoutWords, first, &LayoutWord::word);
        if (word == layoutWords.end()) return {};
        start = platform.layout.*(word->folder);
        if (start.empty()) return {};
    }
    std::vector<std::string> paths{start};
    std::string_view rest = place.substr(first.size());
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string_view component = rest.substr(0, rest.find('/'));
        rest.remove_prefix(component.size());
        std::vector<std::string> longer;
        for (const std::string& path : paths) {
            if (component != "*") {
                longer.push_back(path + "/" + std::string(component));
                continue;
            }
            if (!hasAccess && isBehindPrivacyGate(platform.layout, path)) continue;
            for (const std::string& name : namesIn(*platform.files, path))
                longer.push_back(path + "/" + name);
        }
        paths = std::move(longer);
    }
    return paths;
}

std::vector<std::string> placesOf(const Platform& platform, const FurtherRule& rule,
                                  bool hasAccess) {
    const HomeLayout& layout = platform.layout;
    std::vector<std::string> places;
    for (const std::string& place : rule.where) {
        for (const std::string& path : resolvedPlaces(platform, place, hasAccess)) {
            const bool isWanted = path.starts_with(layout.home + "/") &&
                                  !isNeverTaken(layout, path) &&
                                  hasMarker(*platform.files, rule, parentFolder(path)) &&
                                  holdsAll(*platform.files, rule, path);
            if (isWanted) places.push_back(path);
        }
    }
    return places;
}

bool hasMarker(const FileManager& files, const FurtherRule& rule, const std::string& folder) {
    if (rule.markers.empty()) return true;
    std::optional<std::vector<std::string>> names;
    return std::ranges::any_of(rule.markers, [&](const std::string& marker) {
        if (!marker.starts_with('*')) return files.exists(folder + "/" + marker);
        if (!names) names = namesIn(files, folder);
        const std::string_view end = std::string_view(marker).substr(1);
        return std::ranges::any_of(*names, [&](const std::string& name) {
            return name.size() > end.size() && name.ends_with(end);
        });
    });
}

bool holdsAll(const FileManager& files, const FurtherRule& rule, const std::string& folder) {
    return std::ranges::all_of(
        rule.holds, [&](const std::string& name) { return files.exists(folder + "/" + name); });
}

}  // namespace velto
